// What has arrived is compared with what was sent: after a run, and by itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::string_view kMsSqlTables =
    "create table Items (Id int not null primary key, Name nvarchar(40) null, Price "
    "decimal(9,2) null, Made datetime null, Ratio float null, Half real null, Raw "
    "varbinary(20) null, Flag bit not null, Code uniqueidentifier null, Padded char(6) null)\ngo\n"
    "insert into Items values (1, N'Łódź', 1.50, '2024-02-29 12:30:15.123', 0.1, 0.1, 0x0102, 1, "
    "'0E984725-C51C-4BF4-9960-E1C80E27ABA0', 'ab')\n"
    "insert into Items values (2, null, null, null, null, null, null, 0, null, null)\n"
    "insert into Items values (3, N'', -0.01, '1753-01-01', -1e300, 3.4e38, 0x, 1, null, '')\ngo\n"
    "create table Loose (A int null, B varchar(10) null)\ngo\n"
    "insert into Loose values (1, 'x')\ninsert into Loose values (1, 'x')\n"
    "insert into Loose values (null, null)\ngo\n";

constexpr const char* kMySqlTables =
    "create table Items (Id int not null primary key, Name varchar(40), Price decimal(9,2), Made "
    "datetime(6), Day date, Clock time(3), Ratio double, Half float, Raw varbinary(20), Flag "
    "tinyint(1), Big bigint unsigned, Kind enum('a','b'), Bits bit(3)) character set utf8mb4;"
    "insert into Items values (1, 'Łódź', 1.50, '2024-02-29 12:30:15.123456', '2024-02-29', "
    "'12:30:15.123', 0.1, 0.1, x'0102', 1, 18446744073709551615, 'b', b'101'),"
    "(2, null, null, null, null, null, null, null, null, null, null, null, null),"
    "(3, '', -0.01, '1000-01-01', '1000-01-01', '-12:00:00', -1e300, 3.4e38, x'', 0, 0, 'a', 0);"
    "create table Loose (A int, B varchar(10));"
    "insert into Loose values (1, 'x'), (1, 'x'), (null, null)";

struct Way {
  ServerKind source;
  TypeMapping types;
  int tables_at_once;
};

class VerificationTest : public testing::TestWithParam<Way> {
 protected:
  VerificationTest() : database_(Rig::Get().NewDatabases()) {
    if (FromMsSql()) {
      Rig::Get().MsSql().Script(std::string(kMsSqlTables), database_);
    } else {
      Rig::Get().MySql().Query(kMySqlTables, database_);
    }
  }
  bool FromMsSql() const { return GetParam().source == ServerKind::MsSql; }
  Job TheJob() const {
    return {.source = GetParam().source,
            .source_db = database_,
            .dest_db = database_,
            .tables = {"Items", "Loose"},
            .types = GetParam().types,
            .tables_at_once = GetParam().tables_at_once,
            .verification = Verification::Values};
  }
  void ChangeDestination(const std::string& sql) const {
    if (FromMsSql()) {
      Rig::Get().MySql().Query(sql, database_);
    } else {
      Rig::Get().MsSql().Script(sql + "\ngo\n", database_);
    }
  }
  const std::string database_;
};

TEST_P(VerificationTest, WhatArrivedIsEqualAndWhatWasChangedIsTold) {
  ProgramRun run(TheJob());
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  EXPECT_THAT(run.Log(), HasSubstr("Note - Table Items: Verified: 3 rows equal\n"));
  EXPECT_THAT(run.Log(), HasSubstr("Note - Table Loose: Verified: 3 rows equal\n"));

  ChangeDestination("update Items set Name = 'lodz' where Id = 1");
  ChangeDestination("delete from Items where Id = 2");
  ChangeDestination("insert into Loose values (1, 'x')");
  ProgramRun later(TheJob(), {}, {"--verify"});
  EXPECT_EQ(later.Wait(), 1);
  const std::string log = later.Log();
  EXPECT_THAT(log, HasSubstr("Comparison started at: "));
  EXPECT_THAT(log, HasSubstr("Verification - Table Items: 1 row is missing, 1 row is different"));
  EXPECT_THAT(log, HasSubstr("missing 2"));
  EXPECT_THAT(log, HasSubstr("different 1 (Name)"));
  EXPECT_THAT(log, HasSubstr("Verification - Table Loose: 1 row is additional. The first: "
                             "additional 1, x\n"));
  EXPECT_THAT(log, Not(HasSubstr("Converting table")));

  // In a merge further rows are no difference.
  Job merging = TheJob();
  merging.mode = convert_mode::kMerge;
  merging.tables = {"Loose"};
  ProgramRun merged(merging, {}, {"--verify"});
  EXPECT_EQ(merged.Wait(), 0) << merged.Log();
  EXPECT_THAT(merged.Log(), HasSubstr("Verified: 3 rows equal, 1 more on the destination\n"));
}

TEST_P(VerificationTest, CountsAreComparedAlone) {
  Job job = TheJob();
  job.verification = Verification::Counts;
  ProgramRun run(job);
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  ChangeDestination("update Items set Name = 'lodz' where Id = 1");
  ChangeDestination("delete from Loose where A is null");
  ProgramRun later(job, {}, {"--verify"});
  EXPECT_EQ(later.Wait(), 1);
  EXPECT_THAT(later.Log(), HasSubstr("Note - Table Items: Verified: 3 rows on both sides\n"));
  EXPECT_THAT(later.Log(), HasSubstr("Verification - Table Loose: the source has 3 rows, the "
                                     "destination 2\n"));
}

TEST_P(VerificationTest, TheReportHoldsWhatCameOfEachTable) {
  const TempFolder folder;
  Job job = TheJob();
  job.tables = {"Nowhere", "Items", "Loose"};
  job.reports = {folder / "r.json", folder / "r.html"};
  ProgramRun run(job);
  EXPECT_EQ(run.Wait(), 1);
  const auto report = nlohmann::json::parse(ReadFile(folder / "r.json"));
  EXPECT_EQ(report["complete"], true);
  EXPECT_EQ(report["succeeded"], false);
  EXPECT_EQ(report["rows"], 6);
  EXPECT_EQ(report["options"]["Verify"], "values");
  const auto& tables = report["tables"];
  EXPECT_EQ(tables.at(0)["name"], "Nowhere");
  EXPECT_EQ(tables.at(0)["result"], "failed");
  EXPECT_EQ(tables.at(0)["messages"].at(0)["kind"], "error");
  EXPECT_EQ(tables.at(1)["result"], "done");
  EXPECT_EQ(tables.at(1)["announced_rows"], 3);
  EXPECT_EQ(tables.at(1)["rows"], 3);
  EXPECT_GT(tables.at(1)["seconds"], 0);
  EXPECT_EQ(tables.at(1)["verification"]["equal"], true);
  EXPECT_GT(tables.at(1)["verification"]["seconds"], 0);
  EXPECT_EQ(report.dump().find("secret"), std::string::npos);
  const std::string page = ReadFile(folder / "r.html");
  EXPECT_THAT(page, HasSubstr(">Nowhere</th>"));
  EXPECT_THAT(page, Not(HasSubstr("secret")));

  // A comparison alone has a report as well, which replaces the one before.
  ChangeDestination("delete from Loose where A is null");
  job.tables = {"Loose"};
  ProgramRun later(job, {}, {"--verify"});
  EXPECT_EQ(later.Wait(), 1);
  const auto compared = nlohmann::json::parse(ReadFile(folder / "r.json"));
  EXPECT_EQ(compared["task"], "Comparison");
  EXPECT_EQ(compared["tables"].at(0)["result"], "done, with errors");
  EXPECT_THAT(std::string(compared["tables"].at(0)["verification"]["text"]),
              HasSubstr("1 row is missing"));
}

INSTANTIATE_TEST_SUITE_P(BothWays, VerificationTest,
                         testing::Values(Way{ServerKind::MsSql, TypeMapping::Classic, 1},
                                         Way{ServerKind::MsSql, TypeMapping::Exact, 2},
                                         Way{ServerKind::MySql, TypeMapping::Classic, 1},
                                         Way{ServerKind::MySql, TypeMapping::Exact, 2}),
                         [](const testing::TestParamInfo<Way>& each) {
                           return std::string(each.param.source == ServerKind::MsSql ? "ToMySql"
                                                                                     : "ToMsSql") +
                                  (each.param.types == TypeMapping::Exact ? "Exact" : "Classic");
                         });

}  // namespace
}  // namespace dorvane::test
