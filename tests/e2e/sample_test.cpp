#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/e2e/rig.h"
#include "tools/compare.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const NameList kTables = {"Departments", "Employees",   "Countries", "Warehouses",    "Products",
                          "Stocks",      "Shipments",   "Couriers",  "Order Details", "Every Type",
                          "Pictures",    "Suggestions", "Readings"};

std::size_t Occurrences(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// The sample company on both servers, converted once and shared by the tests below.
class Sample : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    Rig& rig = Rig::Get();
    database_ = rig.NewDatabases();
    std::string script = ReadFile(SAMPLE_DATABASE);
    if (!rig.MySql().IsMariaDb()) {
      // MySQL takes no default for what that column becomes, a BLOB.
      const std::string of_barcode = " default (0x0AFF)";
      script.erase(script.find(of_barcode), of_barcode.size());
    }
    rig.MsSql().Script(script, database_);
    ProgramRun run({.source_db = database_,
                    .dest_db = database_,
                    .tables = kTables,
                    .relationships = true,
                    .verification = Verification::Values});
    status_ = run.Wait();
    log_ = run.Log();
  }

  static std::string MySql(const std::string& query) {
    return Rig::Get().MySqlValue(query, database_);
  }
  static std::string Rows() {
    std::string rows;
    for (const std::string& table : kTables) {
      rows += table + " " + MySql("select count(*) from `" + table + "`") + "\n";
    }
    return rows;
  }

  static std::string database_;
  static std::string log_;
  static int status_;
};

std::string Sample::database_;
std::string Sample::log_;
int Sample::status_ = -1;

TEST_F(Sample, ConvertsEveryTableAndTellsOfTheRuleThatMySqlLacks) {
  EXPECT_EQ(Occurrences(log_, "Done!\n"), kTables.size()) << log_;
  EXPECT_EQ(Occurrences(log_, "Error"), 0u) << log_;
  EXPECT_THAT(log_, HasSubstr("Note - Table Couriers: SET DEFAULT of relationship "));
  EXPECT_EQ(Occurrences(log_, " equal\n"), kTables.size()) << log_;
  EXPECT_EQ(status_, 0);
}

TEST_F(Sample, ASecondMergeAddsNothingAndASecondOverwriteEndsWithTheSameRows) {
  const std::string rows = Rows();
  for (const std::int16_t mode : {convert_mode::kMerge, convert_mode::kOverwrite}) {
    ProgramRun run({.source_db = database_, .dest_db = database_, .tables = kTables, .mode = mode});
    EXPECT_EQ(run.Wait(), 0) << run.Log();
    EXPECT_EQ(Rows(), rows);
  }
}

TEST_F(Sample, ComesBackEqualInAllThatBothServersHold) {
  Rig& rig = Rig::Get();
  const std::string again = rig.NewMsSqlDatabase();
  ProgramRun run(
      {.source = ServerKind::MySql, .source_db = database_, .dest_db = again, .tables = kTables});
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  EXPECT_EQ(Occurrences(run.Log(), "Done!\n"), kTables.size()) << run.Log();

  ado::Connection first(ado::OdbcProvider());
  ado::Connection last(ado::OdbcProvider());
  first.Open(rig.MsSqlSettings(database_));
  last.Open(rig.MsSqlSettings(again));
  const Comparison comparison = CompareDatabases(first, last);
  EXPECT_EQ(comparison.tables.size(), kTables.size());
  EXPECT_THAT(comparison.faults, IsEmpty());

  const std::string rows = rig.MsSqlValue("select count(*) from Readings", again);
  for (const std::int16_t mode : {convert_mode::kMerge, convert_mode::kOverwrite}) {
    ProgramRun second({.source = ServerKind::MySql,
                       .source_db = database_,
                       .dest_db = again,
                       .tables = kTables,
                       .mode = mode});
    EXPECT_EQ(second.Wait(), 0) << second.Log();
    EXPECT_EQ(rig.MsSqlValue("select count(*) from Readings", again), rows);
  }
}

}  // namespace
}  // namespace dorvane::test
