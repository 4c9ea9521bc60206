#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Conversion, UnderscoresGoIntoEveryNameButTheEvents) {
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  rig.MsSql().Script(
      "create table [Order Details] ([Line No] int not null, [Unit Price] money null, "
      "constraint [PK Order Details] primary key ([Line No]))\ngo\n"
      "create index [IX Unit Price] on [Order Details] ([Unit Price])\ngo\n"
      "insert into [Order Details] values (1, 2.5)\ngo\n",
      db);
  ProgramRun run(
      {.source_db = db, .dest_db = db, .tables = {"Order Details"}, .underscores = true});
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  EXPECT_THAT(run.Log(), HasSubstr("Converting table 'Order Details' ..... \nDone!\n"));
  EXPECT_EQ(rig.MySqlValue("select Unit_Price from Order_Details", db), "2.5000");
  EXPECT_THAT(rig.MySqlValue("show create table Order_Details", db),
              HasSubstr("KEY `IX_Unit_Price` (`Unit_Price`)"));
}

TEST(Conversion, AMissingTableFailsTheRunAndTheNextIsConverted) {
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  rig.MsSql().Script("create table Here (Id int not null)\ngo\ninsert into Here values (1)\ngo\n",
                     db);
  ProgramRun run({.source_db = db, .dest_db = db, .tables = {"Nowhere", "Here"}});
  EXPECT_EQ(run.Wait(), 1);
  EXPECT_THAT(run.Log(),
              HasSubstr("Converting table 'Nowhere' ..... \nTable Conversion - Failed to convert "
                        "table Nowhere 3265: "));
  EXPECT_THAT(run.Log(), HasSubstr("Converting table 'Here' ..... \nDone!\n"));
}

TEST(Conversion, MergeLeavesOutDuplicatesOfThatKeyOnly) {
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  rig.MsSql().Script(
      "create table T (Id int not null primary key, V nvarchar(20) null)\ngo\n"
      "insert into T values (1, N'one'), (2, N'two'), (3, N'three')\ngo\n",
      db);
  rig.MySql().Query(
      "create table T (Id int not null primary key, V varchar(20)); "
      "insert into T values (2, 'kept'), (9, 'mine')",
      db);
  ProgramRun run({.source_db = db, .dest_db = db, .tables = {"T"}, .mode = convert_mode::kMerge});
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  EXPECT_EQ(rig.MySqlValue("select group_concat(Id, V order by Id) from T", db),
            "1one,2kept,3three,9mine");
}

TEST(Conversion, AValueTheColumnCannotTakeIsReportedNotCut) {
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  rig.MsSql().Script(
      "create table T (Id int not null primary key, V varchar(20) null)\ngo\n"
      "insert into T values (1, 'short'), (2, 'much too long'), (3, 'x')\ngo\n",
      db);
  rig.MySql().Query("create table T (Id int not null primary key, V varchar(6))", db);
  ProgramRun run({.source_db = db, .dest_db = db, .tables = {"T"}, .mode = convert_mode::kMerge});
  EXPECT_EQ(run.Wait(), 1);
  EXPECT_THAT(run.Log(), HasSubstr("Insertion Error - Unexpected error while transfering data of "
                                   "table T - 1 of 3 rows were not copied; the first: 1406 - "));
  EXPECT_THAT(run.Log(), HasSubstr("Done, with errors.\n"));
  EXPECT_EQ(rig.MySqlValue("select count(*) from T", db), "2");
}

TEST(Conversion, TheUsersOwnDriverSettingsDoNotMatter) {
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  rig.MsSql().Script(
      "create table T (V nvarchar(20) null)\ngo\ninsert into T values (N'я漢')\ngo\n", db);
  const TempFolder home;
  std::ofstream(home / ".odbc.ini") << "[127.0.0.1]\nDriver=nonsense\nServer=10.255.255.1\n";
  std::ofstream(home / ".freetds.conf")
      << "[global]\ntds version = 5.0\nclient charset = ISO-8859-1\nport = 1\ntext size = 1\n"
         "[127.0.0.1]\nhost = 10.255.255.1\n";
  std::ofstream(home / ".my.cnf") << "[client]\nuser=nobody\nport=1\nsocket=/nowhere\n";
  const std::string conf = (home / ".freetds.conf").string();
  ProgramRun run({.source_db = db, .dest_db = db, .tables = {"T"}},
                 {{"HOME", home.Path().string()},
                  {"FREETDSCONF", conf},
                  {"FREETDS", conf},
                  {"TDSVER", "4.2"},
                  {"TDSPORT", "1"},
                  {"TDSHOST", "10.255.255.1"},
                  {"ODBCINI", (home / ".odbc.ini").string()},
                  {"LC_ALL", "C"}});
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  EXPECT_EQ(rig.MySqlValue("select hex(V) from T", db), "D18FE6BCA2");
}

}  // namespace
}  // namespace dorvane::test
