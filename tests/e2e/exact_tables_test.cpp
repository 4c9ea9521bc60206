// What tables have beside columns and rows in the exact mapping: rules, checks, comments, and where
// their identities stand.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string Convert(ServerKind source, const std::string& from, const std::string& to,
                    NameList tables) {
  ProgramRun run({.source = source,
                  .source_db = from,
                  .dest_db = to,
                  .tables = std::move(tables),
                  .relationships = true,
                  .types = TypeMapping::Exact});
  EXPECT_EQ(run.Wait(), 0) << run.Log() << run.Output();
  return run.Log();
}

TEST(ExactTables, SqlServerToMySqlAndBack) {
  Rig& rig = Rig::Get();
  const std::string first = rig.NewDatabases();
  const std::string last = rig.NewMsSqlDatabase();
  rig.MsSql().Script(
      "create table Parent (Id int identity(10,1) not null primary key, Price money not null, "
      "Half int null, Kind nvarchar(9) null, constraint CK_Price check (Price >= 0), constraint "
      "CK_Kind check (Kind in (N'a''b', N'\u4E16')), constraint CK_Half check (Half / 2 > 1), "
      "constraint CK_Like check (Kind not like '[0-9]%'))\n"
      "insert into Parent (Price, Half, Kind) values (1, 9, N'\u4E16'), (2, null, null), "
      "(3, null, null)\ndelete from Parent where Id = 12\n"
      "create table Child (Id int identity(5,1) not null primary key, Parent int null references "
      "Parent (Id) on delete set null)\n"
      "exec sp_addextendedproperty 'MS_Description', N'It''s \u4E16', 'schema', 'dbo', 'table', "
      "'Parent'\n"
      "exec sp_addextendedproperty 'MS_Description', N'no \\ less', 'schema', 'dbo', 'table', "
      "'Parent', 'column', 'Price'\ngo\n",
      first);
  const std::string log = Convert(ServerKind::MsSql, first, first, {"Parent", "Child"});
  EXPECT_THAT(
      log, AllOf(HasSubstr("check CK_Half was left off"), HasSubstr("check CK_Like was left off"),
                 Not(HasSubstr("CK_Price")), Not(HasSubstr("CK_Kind"))));
  EXPECT_THAT(rig.MySqlValue("show create table Parent", first),
              AllOf(HasSubstr("AUTO_INCREMENT=13"), HasSubstr("CK_Price"), HasSubstr("CK_Kind"),
                    HasSubstr("COMMENT='It''s \u4E16'"), HasSubstr("COMMENT 'no")));
  EXPECT_THAT(rig.MySqlValue("show create table Child", first),
              AllOf(HasSubstr("AUTO_INCREMENT=5"), HasSubstr("ON DELETE SET NULL")));

  Convert(ServerKind::MySql, first, last, {"Parent", "Child"});
  rig.MsSql().Script(
      "insert into Parent (Price) values (5)\ninsert into Child (Parent) values (10)\n"
      "delete from Parent where Id = 10\ngo\n",
      last);
  EXPECT_EQ(rig.MsSqlValue("select max(Id) from Parent", last), "13");
  EXPECT_EQ(rig.MsSqlValue("select Id from Child where Parent is null", last), "5");
  EXPECT_EQ(rig.MsSqlValue("select convert(nvarchar(40), value) from sys.extended_properties "
                           "where major_id = object_id('Parent') order by minor_id",
                           last),
            "It's \u4E16\nno \\ less");
  for (const char* refused : {"insert into Parent (Price) values (-1)",
                              "insert into Parent (Price, Kind) values (1, N'other')"}) {
    EXPECT_THROW(rig.MsSql().Script(std::string(refused) + "\ngo\n", last), std::runtime_error)
        << refused;
  }
}

TEST(ExactTables, AutoIncrementStandsWhereItStoodAfterRowsAreGone) {
  Rig& rig = Rig::Get();
  const std::string name = rig.NewDatabases();
  rig.MySql().Query(
      "create table Rows_ (Id int unsigned auto_increment primary key, V int) comment 'kept'; "
      "insert into Rows_ (V) values (1), (2), (3); delete from Rows_ where Id > 1; "
      "create table `Empty` (Id bigint auto_increment primary key) auto_increment = 700",
      name);
  Convert(ServerKind::MySql, name, name, {"Rows_", "Empty"});
  rig.MsSql().Script("insert into Rows_ (V) values (9)\ninsert into Empty default values\ngo\n",
                     name);
  EXPECT_EQ(rig.MsSqlValue("select max(Id) from Rows_", name), "4");
  EXPECT_EQ(rig.MsSqlValue("select Id from Empty", name), "700");
}

TEST(ExactTables, WideRowsAndKeysAreCutAsFarAsMySqlNeeds) {
  Rig& rig = Rig::Get();
  const std::string name = rig.NewDatabases();
  rig.MsSql().Script(
      "create table Wide (Id int not null primary key, A nvarchar(4000) null, B varchar(8000) "
      "null, "
      "C varbinary(8000) null, D nvarchar(4000) null, K nvarchar(800) null)\n"
      "create index IX on Wide (K)\n"
      "insert into Wide values (1, N'a', 'b', 0x0C, replicate(N'\u4E16', 4000), N'k')\ngo\n",
      name);
  const std::string log = Convert(ServerKind::MsSql, name, name, {"Wide"});
  EXPECT_THAT(log, HasSubstr("column B became Text, since the row was too wide"));
  EXPECT_EQ(rig.MySqlValue("select length(D), hex(C), K from Wide", name), "12000\t0C\tk");
  EXPECT_THAT(rig.MySqlValue("show create table Wide", name), HasSubstr("KEY `IX` (`K`"));
}

// Not the exact types' business, but these tables need nothing else.
TEST(KeysThatDifferInCase, KeepTheirRowsInEitherDirection) {
  Rig& rig = Rig::Get();
  const std::string name = rig.NewDatabases();
  rig.MsSql().Script(
      "create table Codes (Code nvarchar(9) collate Latin1_General_CS_AS not null primary key, "
      "Other nvarchar(9) collate Latin1_General_CS_AS not null unique)\n"
      "create table Uses (Id int not null primary key, Code nvarchar(9) collate "
      "Latin1_General_CS_AS null references Codes (Code))\n"
      "insert into Codes values (N'a', N'x'), (N'A', N'Y')\n"
      "insert into Uses values (1, N'A')\ngo\n",
      name);
  const std::string last = rig.NewMsSqlDatabase();
  const auto convert = [](ServerKind source, const std::string& from, const std::string& to) {
    ProgramRun run({.source = source,
                    .source_db = from,
                    .dest_db = to,
                    .tables = {"Codes", "Uses"},
                    .relationships = true});
    EXPECT_EQ(run.Wait(), 0) << run.Log() << run.Output();
    return run.Log();
  };
  EXPECT_THAT(convert(ServerKind::MsSql, name, name),
              AllOf(HasSubstr("column Code has the collation utf8mb4_bin"),
                    Not(HasSubstr("column Other has the collation"))));
  EXPECT_THAT(convert(ServerKind::MySql, name, last),
              HasSubstr("column Code has the collation Latin1_General_100_BIN2"));
  EXPECT_EQ(rig.MsSqlValue("select count(*) from Codes where Code in (N'a', N'A')", last), "2");
  EXPECT_EQ(rig.MsSqlValue("select count(*) from Uses where Code = N'A'", last), "1");
}

TEST(HiddenColumns, OfAPeriodAreConvertedWithTheirValues) {
  Rig& rig = Rig::Get();
  const std::string name = rig.NewDatabases();
  rig.MsSql().Script(
      "create table T (Id int not null primary key, V nvarchar(9) null, "
      "S datetime2(3) generated always as row start hidden not null, "
      "E datetime2(3) generated always as row end hidden not null, "
      "period for system_time (S, E))\n"
      "insert into T (Id, V) values (1, N'v')\ngo\n",
      name);
  Convert(ServerKind::MsSql, name, name, {"T"});
  EXPECT_EQ(rig.MySqlValue("select V, E from T", name), "v\t9999-12-31 23:59:59.999");
}

}  // namespace
}  // namespace dorvane::test
