#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/endpoint/transfer_rig.h"
#include "tests/support/planned_endpoint.h"

namespace dorvane {

namespace {

using ado::DataType;
using test::Failure;
using test::MakeColumn;
using test::TextResult;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t kRefused = ado::hresult::kErrorsInCommand;

using Row = std::vector<std::string>;

/// A table t(k, v) whose rows are copied; every test runs in blocks and row by row.
struct MsSqlCopy : testing::TestWithParam<CopyStrategy>,
                   test::TransferRig<test::PlannedEndpoint<MsSqlDatabase>, MySqlDatabase> {
  MsSqlCopy() {
    source.tables = {{"t", "TABLE"}};
    src.SetCopyTableContent(true);
    src.plan.strategy = GetParam();
    dest.Answer(kFactsQuery, {TextResult({"a", "b"}, {{"1", "0"}})});
  }
  void Rows(DataType type, const std::vector<std::pair<std::string_view, ado::Value>>& rows) {
    source.columns["t"] = {MakeColumn("k", DataType::VarChar), MakeColumn("v", type)};
    test::ScriptedResult result{{source.columns["t"][0], source.columns["t"][1]}, {}};
    for (const auto& [key, value] : rows) result.rows.push_back({key, value});
    source.Answer("select * from [t]", {result});
    source.Answer("select count(*) as Rows_No from [t]",
                  {TextResult({"Rows_No"}, {{source.Keep(std::to_string(rows.size()))}})});
  }
  void Texts(const std::vector<std::pair<std::string_view, std::string_view>>& rows) {
    Rows(DataType::VarChar, {rows.begin(), rows.end()});
  }
  /// Rows of this key fail.
  void Refuse(const std::string& key, const ado::ProviderError& error) {
    dest.on_row = [key, error](const Row& row) {
      if (row[0] == key) throw error;
    };
  }

  static constexpr const char* kFactsQuery =
      "select coalesce(e.transactions = 'YES', 0), (select count(*) from "
      "information_schema.triggers where event_object_schema = database() and "
      "event_object_table = 't') from information_schema.tables t left join "
      "information_schema.engines e on e.engine = t.engine where t.table_schema = database() and "
      "t.table_name = 't'";
};

TEST_P(MsSqlCopy, CopiesRowsAndCountsThem) {
  Texts({{"1", "a"}, {"2", "Null"}, {"3", "c"}});
  Transfer({"t"});
  EXPECT_THAT(dest.stored, ElementsAre(Row{"1", "a"}, Row{"2", "Null"}, Row{"3", "c"}));
  EXPECT_THAT(events.events, ElementsAre("started 1 false", "table t", "content t 3", "rows 3",
                                         "succeeded t", "ended"));
  EXPECT_THAT(dest.Sent("insert"), ElementsAre("insert `t` (k,v)"));
}

TEST_P(MsSqlCopy, AnEmptyTableRaisesItsCountAlone) {
  Texts({});
  Transfer({"t"});
  EXPECT_THAT(events.events,
              ElementsAre("started 1 false", "table t", "content t 0", "succeeded t", "ended"));
}

TEST_P(MsSqlCopy, ARefusalLeavesOutTheRowOrEndsTheCopy) {
  enum class Outcome { LeftOut, Refused, Ended };
  struct Case {
    std::int32_t native;
    Outcome in_new_table;
    Outcome in_old_table;
  };
  const Case cases[] = {
      {1062, Outcome::Refused, Outcome::LeftOut}, {1586, Outcome::Refused, Outcome::LeftOut},
      {1264, Outcome::Refused, Outcome::Refused}, {1048, Outcome::Refused, Outcome::Refused},
      {1153, Outcome::Refused, Outcome::Refused}, {1366, Outcome::Refused, Outcome::Refused},
      {1205, Outcome::Ended, Outcome::Ended},     {1146, Outcome::Ended, Outcome::Ended},
      {1142, Outcome::Ended, Outcome::Ended},     {2013, Outcome::Ended, Outcome::Ended},
  };
  const std::string message =
      "error 16 [Insertion Error] Unexpected error while transfering data of table t - ";
  for (const Case& each : cases) {
    for (const bool is_new : {true, false}) {
      SCOPED_TRACE(fmt::format("{} {}", each.native, is_new));
      dest.stored.clear();
      events.events.clear();
      host.notes.clear();
      if (!is_new) dest.Fail("Create Table", Failure(kRefused, 1050, "exists"), 1);
      Texts({{"1", "a"}, {"2", "b"}, {"3", "c"}});
      Refuse("2", Failure(kRefused, each.native, "words"));
      Transfer({"t"});
      const Outcome outcome = is_new ? each.in_new_table : each.in_old_table;
      if (outcome == Outcome::Ended) {
        EXPECT_THAT(dest.stored, ElementsAre(Row{"1", "a"}));
        EXPECT_THAT(events.Errors(), ElementsAre(message + "-2147217900 - words"));
        continue;
      }
      EXPECT_THAT(dest.stored, ElementsAre(Row{"1", "a"}, Row{"3", "c"}));
      EXPECT_THAT(events.Of("rows"), ElementsAre("rows 3"));
      if (outcome == Outcome::LeftOut) {
        EXPECT_THAT(events.Errors(), IsEmpty());
        EXPECT_THAT(host.notes,
                    testing::Contains("Table t: 1 of 3 rows were there already and were "
                                      "left out"));
      } else {
        EXPECT_THAT(events.Errors(),
                    ElementsAre(fmt::format("{}1 of 3 rows were not copied; the first: {} - words "
                                            "(row 2)",
                                            message, each.native)));
      }
    }
  }
}

TEST_P(MsSqlCopy, ForeignKeyChecksAreOnAgainHoweverAMergeEnds) {
  src.SetConvertRelationships(true);
  dest.Fail("Create Table", Failure(kRefused, 1050, "exists"));
  for (const std::int32_t native : {1062, 2013}) {
    dest.log.clear();
    Texts({{"1", "a"}, {"2", "b"}});
    Refuse("2", Failure(kRefused, native, "words"));
    Transfer({"t"});
    EXPECT_THAT(dest.Sent("set foreign"),
                ElementsAre("set foreign_key_checks = 0", "set foreign_key_checks = 1"));
  }
}

TEST_P(MsSqlCopy, ABreakingSourceEndsTheCopyBehindItsRows) {
  Texts({{"1", "a"}, {"2", "b"}});
  source.BreakResult("select * from [t]", Failure(ado::hresult::kFail, 20004, "read failed"));
  Transfer({"t"});
  EXPECT_THAT(dest.stored, ElementsAre(Row{"1", "a"}, Row{"2", "b"}));
  EXPECT_THAT(events.Errors(),
              ElementsAre("error 16 [Insertion Error] Unexpected error while transfering data of "
                          "table t - -2147467259 - read failed"));
}

INSTANTIATE_TEST_SUITE_P(Both, MsSqlCopy,
                         testing::Values(CopyStrategy::Blocks, CopyStrategy::RowByRow),
                         [](const auto& param) {
                           return param.param == CopyStrategy::Blocks ? "Blocks" : "RowByRow";
                         });

struct MsSqlCopyInBlocks : MsSqlCopy {};

TEST_P(MsSqlCopyInBlocks, SendsOneTransactionWhereTheTableTakesIt) {
  Texts({{"1", "a"}, {"2", "b"}});
  Transfer({"t"});
  EXPECT_THAT(dest.Sent("begin"), ElementsAre("begin"));
  EXPECT_THAT(dest.Sent("commit"), ElementsAre("commit"));

  for (const auto& facts : {TextResult({"a", "b"}, {{"0", "0"}}),     // no transactions
                            TextResult({"a", "b"}, {{"1", "2"}})}) {  // triggers
    dest.log.clear();
    dest.Answer(kFactsQuery, {facts});
    Transfer({"t"});
    EXPECT_THAT(dest.Sent("begin"), IsEmpty());
  }
}

INSTANTIATE_TEST_SUITE_P(Blocks, MsSqlCopyInBlocks, testing::Values(CopyStrategy::Blocks));

}  // namespace
}  // namespace dorvane
