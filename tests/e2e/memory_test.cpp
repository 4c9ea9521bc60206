#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

constexpr bool kSanitized =
#if defined(__SANITIZE_ADDRESS__)
    true;
#else
    false;
#endif

/// Two tables of narrow rows, one ten times the other.
void MakeTables(const std::string& database) {
  Rig::Get().MsSql().Script(
      "create table Digits (d int not null)\ngo\n"
      "insert into Digits values (0),(1),(2),(3),(4),(5),(6),(7),(8),(9)\ngo\n"
      "create table Rows50000 (Id int not null primary key, Name varchar(30) null, Amount "
      "float)\ngo\n"
      "create table Rows500000 (Id int not null primary key, Name varchar(30) null, Amount "
      "float)\ngo\n"
      "insert into Rows500000 select n.Id, 'row', n.Id / 4.0 from (select a.d + 10*b.d + 100*c.d + "
      "1000*e.d + 10000*f.d + 100000*g.d as Id from Digits a cross join Digits b cross join Digits "
      "c "
      "cross join Digits e cross join Digits f cross join Digits g where g.d < 5) n\ngo\n"
      "insert into Rows50000 select * from Rows500000 where Id < 50000\ngo\n",
      database);
}

TEST(Memory, StaysFlatHoweverLongTheTable) {
  if (kSanitized) GTEST_SKIP() << "the sanitizers' own memory hides the program's";
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  MakeTables(db);
  ProgramRun small({.source_db = db, .dest_db = db, .tables = {"Rows50000"}});
  EXPECT_EQ(small.Wait(), 0) << small.Log();
  ProgramRun large({.source_db = db, .dest_db = db, .tables = {"Rows500000"}});
  EXPECT_EQ(large.Wait(), 0) << large.Log();
  EXPECT_EQ(rig.MySqlValue("select count(*), sum(Id) from Rows500000", db), "500000\t124999750000");
  EXPECT_LT(large.PeakKiB(), 64 * 1024);
  EXPECT_LT(large.PeakKiB(), small.PeakKiB() * 11 / 10);

  const std::string back = rig.NewMsSqlDatabase();
  ProgramRun reverse(
      {.source = ServerKind::MySql, .source_db = db, .dest_db = back, .tables = {"Rows500000"}});
  EXPECT_EQ(reverse.Wait(std::chrono::seconds(300)), 0) << reverse.Log();
  EXPECT_EQ(rig.MsSqlValue("select count(*) from Rows500000", back), "500000");
  EXPECT_LT(reverse.PeakKiB(), 64 * 1024);
}

TEST(Memory, StaysFlatInAPreviewOfAMerge) {
  if (kSanitized) GTEST_SKIP() << "the sanitizers' own memory hides the program's";
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  MakeTables(db);
  const Job job{
      .source_db = db, .dest_db = db, .tables = {"Rows500000"}, .mode = convert_mode::kMerge};
  ProgramRun run(job);
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  // Rows that are there and such that are not come by turns.
  rig.MySqlValue("delete from Rows500000 where Id > 100000", db);
  ProgramRun preview(job, {}, {"--preview"});
  EXPECT_EQ(preview.Wait(), 1);
  EXPECT_THAT(preview.Output(), testing::HasSubstr("100001 of 500000 rows were there already"));
  EXPECT_LT(preview.PeakKiB(), 64 * 1024);
}

TEST(Memory, HoldsALongValueFourTimesAtMost) {
  if (kSanitized) GTEST_SKIP() << "the sanitizers' own memory hides the program's";
  constexpr long kMiB = 1024;
  constexpr long kLength = 40;
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  rig.MySqlValue(fmt::format("create table Bytes(Id int primary key, V longblob) select 1 as Id, "
                             "repeat('16 bytes of it .', {0} << 16) as V",
                             kLength),
                 db);
  rig.MySqlValue(fmt::format("create table Texts(Id int primary key, V longtext) select 1 as Id, "
                             "repeat('16 signs of it .', {0} << 16) as V",
                             kLength),
                 db);
  for (const std::string table : {"Bytes", "Texts"}) {
    ProgramRun run(
        {.source = ServerKind::MySql, .source_db = db, .dest_db = db, .tables = {table}});
    EXPECT_EQ(run.Wait(), 0) << run.Log();
    EXPECT_LT(run.PeakKiB(), (64 + 4 * kLength) * kMiB) << table << " to SQL Server";
    rig.MySqlValue("drop table " + table, db);
  }
  ProgramRun back({.source_db = db, .dest_db = db, .tables = {"Bytes"}});
  EXPECT_EQ(back.Wait(), 0) << back.Log();
  EXPECT_LT(back.PeakKiB(), (64 + 4 * kLength) * kMiB) << "to MySQL";
  EXPECT_EQ(rig.MySqlValue("select length(V) from Bytes", db), std::to_string(kLength << 20));
}

}  // namespace
}  // namespace dorvane::test
