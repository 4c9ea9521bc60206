// Columns that the source computes: kept computed, or their values where that cannot be. And
// columns that are more than their type.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr std::string_view kLines = R"(
create table [Order Line](id int identity(1, 1) not null primary key, price decimal(10,2), qty int,
  [first] nvarchar(30), [last] varchar(30), born datetime,
  [line total] as ([price] * [qty]) persisted,
  who as ([first] + N' ''' + [last]),
  [size] as (case when [qty] > 10 then 'big' when [qty] is null then null else 'small' end),
  age as (2000 - year([born])),
  halves as ([qty] / 2),
  code as ([id] * 10) persisted)
create index ix_total on [Order Line]([line total], [first])
create table Plain(id int not null primary key, a int, b int, sum_of as ([a] + [b]))
go
insert [Order Line](price, qty, [first], [last], born) values
  (1.25, 3, N'Zoë', 'Ann', '1990-05-06'), (0.1, 11, null, 'Bo', null),
  (null, null, N'漢', '', '2001-01-01')
insert Plain(id, a, b) values (1, 2, 3), (2, null, 5)
go
)";

void ExpectSuccess(ProgramRun& run) {
  EXPECT_EQ(run.Wait(), 0) << run.Log();
}

Job ToMySql(const std::string& database, NameList tables) {
  return {.source_db = database,
          .dest_db = database,
          .tables = std::move(tables),
          .verification = Verification::Values,
          .computed_columns = ComputedColumns::Generated};
}

Job ToMsSql(const std::string& database, NameList tables) {
  Job job = ToMySql(database, std::move(tables));
  job.source = ServerKind::MySql;
  return job;
}

/// "name extra" of the columns that a MySQL table computes.
std::string GeneratedOf(const std::string& table, const std::string& database) {
  return Rig::Get().MySqlValue(
      fmt::format("select group_concat(concat(column_name, ' ', substring_index(extra, ' ', 1)) "
                  "order by ordinal_position) from information_schema.columns where table_schema = "
                  "database() and table_name = '{}' and extra like '% GENERATED%'",
                  table),
      database);
}

TEST(ComputedColumns, StayComputedOnMySqlWhereBothMeanTheSame) {
  Rig& rig = Rig::Get();
  const std::string database = rig.NewDatabases();
  rig.MsSql().Script(std::string(kLines), database);
  for (const TypeMapping types : {TypeMapping::Classic, TypeMapping::Exact}) {
    Job job = ToMySql(database, {"Order Line", "Plain"});
    job.types = types;
    ProgramRun run(job);
    ExpectSuccess(run);
    EXPECT_THAT(run.Log(),
                AllOf(HasSubstr("Table Order Line: column halves holds its values and is not "
                                "computed: MySQL may compute ([qty]/(2)) otherwise"),
                      HasSubstr("Table Order Line: column code holds its values and is not "
                                "computed: MySQL refused: "),
                      HasSubstr("Table Order Line: Verified: 3 rows equal"),
                      HasSubstr("Table Plain: Verified: 2 rows equal")));
    EXPECT_EQ(GeneratedOf("Order Line", database),
              "line total STORED,who VIRTUAL,size VIRTUAL,age VIRTUAL");
    EXPECT_THAT(rig.MySqlValue("show create table `Order Line`", database),
                HasSubstr("KEY `ix_total` (`line total`,`first`)"));
  }
  rig.MySqlValue(
      "insert into `Order Line`(price, qty, `first`, `last`, born, halves, code) values "
      "(2.5, 4, 'a', 'b', '1980-01-01', 2, 40)",
      database);
  EXPECT_EQ(rig.MySqlValue("select concat_ws('|', `line total`, who, size, age) from `Order Line` "
                           "where id = 4",
                           database),
            "10.00|a 'b|small|20");
}

TEST(ComputedColumns, OfAnExistingTableAreLeftOut) {
  Rig& rig = Rig::Get();
  const std::string database = rig.NewDatabases();
  rig.MsSql().Script(std::string(kLines), database);
  rig.MySqlValue(
      "create table Plain(id int primary key, a int, b int, sum_of int generated always "
      "as (a + b) virtual)",
      database);
  Job job = ToMySql(database, {"Plain"});
  job.mode = convert_mode::kMerge;
  job.computed_columns = ComputedColumns::Values;
  ProgramRun there(job);
  ExpectSuccess(there);
  EXPECT_THAT(there.Log(), HasSubstr("Table Plain: column sum_of was left out: the destination "
                                     "itself gives its values"));
  EXPECT_THAT(there.Log(), HasSubstr("Verified: 2 rows equal"));

  rig.MySqlValue("insert into Plain(id, a, b) values (3, 10, 20)", database);
  Job back = ToMsSql(database, {"Plain"});
  back.mode = convert_mode::kMerge;
  ProgramRun again(back);
  ExpectSuccess(again);
  EXPECT_THAT(again.Log(), HasSubstr("Verified: 3 rows equal"));
  EXPECT_THAT(again.Log(), Not(HasSubstr("was left out: the")));
  EXPECT_EQ(rig.MsSqlValue("select sum_of from Plain where id = 3", database), "30");
}

TEST(ComputedColumns, StayComputedOnSqlServerWhereBothMeanTheSame) {
  Rig& rig = Rig::Get();
  const std::string database = rig.NewDatabases();
  rig.MySqlValue(
      "create table Line(id int auto_increment primary key, price decimal(10,2), qty int unsigned, "
      "`first` varchar(30), `last` varchar(30), big int, day_of date,"
      "`line total` decimal(20,2) as (price * qty) stored,"
      "who varchar(70) as (concat(`first`, ' » ''', `last`)) virtual,"
      "size varchar(5) as (if(qty > 10, 'big', 'small')) virtual,"
      "square bigint as (big * big) stored,"
      "born int as (year(day_of)) virtual,"
      "halves decimal(12,4) as (qty / 2) virtual,"
      "is_big tinyint as (qty > 10) virtual,"
      "unique key (`line total`), key who (who))",
      database);
  rig.MySqlValue(
      "insert into Line(price, qty, `first`, `last`, big, day_of) values (1.25, 3, 'Zoë', 'Ann', "
      "2000000000, '1990-05-06'), (0.1, 11, null, 'Bo', -3, null), (null, null, '漢', '', null, "
      "'2001-01-01')",
      database);
  for (const TypeMapping types : {TypeMapping::Classic, TypeMapping::Exact}) {
    Job job = ToMsSql(database, {"Line"});
    job.types = types;
    ProgramRun run(job);
    ExpectSuccess(run);
    EXPECT_THAT(run.Log(), HasSubstr("column halves holds its values and is not computed: SQL "
                                     "Server may compute "));
    EXPECT_THAT(run.Log(), HasSubstr("Verified: 3 rows equal"));
    const bool is_exact = types == TypeMapping::Exact;
    EXPECT_EQ(rig.MsSqlValue("select name + ' ' + convert(varchar(1), is_persisted) from "
                             "sys.computed_columns where object_id = object_id('Line') order by "
                             "column_id",
                             database),
              std::string("line total 1\nwho 0\nsize 0\nsquare 1") + (is_exact ? "\nborn 0" : ""));
    EXPECT_EQ(rig.MsSqlValue("select count(*) from sys.indexes i join sys.index_columns k on "
                             "k.object_id = i.object_id and k.index_id = i.index_id join "
                             "sys.computed_columns c on c.object_id = k.object_id and c.column_id "
                             "= k.column_id where i.object_id = object_id('Line')",
                             database),
              "2");
  }
}

constexpr std::string_view kKinds = R"(
create type Price from decimal(12,3) not null
go
create table Kind(id int not null primary key, price Price, thin int sparse null,
  card varchar(20) masked with (function = 'default()'),
  guid uniqueidentifier rowguidcol not null default newid(), any_value sql_variant,
  moment datetimeoffset(3),
  since datetime2(0) generated always as row start hidden not null,
  until datetime2(0) generated always as row end hidden not null,
  period for system_time (since, until))
go
insert Kind(id, price, thin, card, guid, any_value, moment) values
  (1, 1.250, null, '1234-5678', '6F9619FF-8B86-D011-B42D-00C04FC964FF', 7,
   '2020-01-02 03:04:05.123 +02:00')
insert Kind(id, price, thin, card, guid, any_value, moment) values
  (2, 0, 5, null, '6F9619FF-8B86-D011-B42D-00C04FC964FE', N'漢', null)
go
)";

TEST(ColumnKinds, ArriveAsTheirTypes) {
  Rig& rig = Rig::Get();
  const std::string database = rig.NewDatabases();
  rig.MsSql().Script(std::string(kKinds), database);
  Job job = ToMySql(database, {"Kind"});
  job.types = TypeMapping::Exact;
  ProgramRun run(job);
  ExpectSuccess(run);
  EXPECT_THAT(run.Log(), AllOf(HasSubstr("Verified: 2 rows equal"),
                               HasSubstr("column card is masked on the source")));
  EXPECT_EQ(rig.MySqlValue("select group_concat(replace(column_type, '(11)', '') order by "
                           "ordinal_position separator "
                           "' ') from information_schema.columns where table_schema = database() "
                           "and table_name = 'Kind'",
                           database),
            "int decimal(12,3) int varchar(20) char(36) longtext varchar(34) datetime "
            "datetime");
  EXPECT_EQ(rig.MySqlValue("select concat_ws('|', price, card, guid, any_value, moment) from Kind "
                           "order by id",
                           database),
            "1.250|1234-5678|6F9619FF-8B86-D011-B42D-00C04FC964FF|7|2020-01-02T03:04:05.123+02:00\n"
            "0.000|6F9619FF-8B86-D011-B42D-00C04FC964FE|漢");

  // The server gives the period anew, and a row version as well.
  rig.MsSql().Script("alter table Kind add version rowversion\ngo\ndelete Kind where id = 2\ngo\n",
                     database);
  rig.MySqlValue("alter table Kind add version varbinary(8)", database);
  Job back = ToMsSql(database, {"Kind"});
  back.types = TypeMapping::Exact;
  back.mode = convert_mode::kMerge;
  back.verification = Verification::Counts;
  ProgramRun again(back);
  ExpectSuccess(again);
  EXPECT_THAT(again.Log(), AllOf(HasSubstr("column since was left out: the destination itself"),
                                 HasSubstr("column until was left out: the destination itself"),
                                 HasSubstr("column version was left out: the destination itself"),
                                 HasSubstr("Verified: 2 rows on both sides")));
}

}  // namespace
}  // namespace dorvane::test
