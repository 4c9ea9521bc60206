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

constexpr std::int32_t kViolation = ado::hresult::kIntegrityViolation;

using Row = std::vector<ado::Value>;

/// A table "a t"(k, v) whose rows are copied.
struct MySqlCopy : testing::Test,
                   test::TransferRig<test::PlannedEndpoint<MySqlDatabase>, MsSqlDatabase> {
  MySqlCopy() {
    source.tables = {{"a t", "TABLE"}};
    dest.indexes["a_t"] = {{.name = "pk", .primary_key = true, .unique = true, .columns = {}}};
    src.SetCopyTableContent(true);
    src.SetReplaceSpaceWithUnderscore(true);
  }
  void Rows(DataType type, const std::vector<Row>& rows, bool has_identity = false) {
    source.columns["a t"] = {MakeColumn("the k", DataType::Integer), MakeColumn("v", type)};
    source.Answer("show columns from `a t`",
                  {TextResult({"Field", "Type", "Null", "Key", "Default", "Extra"},
                              {{"the k", "", "NO", "", {}, has_identity ? "auto_increment" : ""},
                               {"v", "", "YES", "", {}, ""}})});
    source.Answer("select * from `a t`",
                  {{{source.columns["a t"][0], source.columns["a t"][1]}, rows}});
    source.Answer("select count(*) as Rows_No from `a t`",
                  {TextResult({"Rows_No"}, {{source.Keep(std::to_string(rows.size()))}})});
  }
  static Row Numbered(std::int64_t key, ado::Value value) { return {key, value}; }
  std::vector<std::string> RowStatements() {
    dest.log.erase(dest.log.begin());  // the one that creates the table
    std::erase_if(dest.log, [](const std::string& sql) { return sql.starts_with("select "); });
    return dest.log;
  }
};

constexpr const char* kHead = "INSERT INTO [a_t] ([the_k], [v]) ";

TEST_F(MySqlCopy, RowByRowSendsOneInsertEachAndSwitchesIdentitiesAroundIt) {
  src.plan.strategy = CopyStrategy::RowByRow;
  const std::string head(kHead);
  Rows(DataType::VarChar, {Numbered(1, std::string_view("It's")), Numbered(2, {})});
  Transfer({"a t"});
  EXPECT_THAT(RowStatements(),
              ElementsAre(head + " VALUES(1, 'It''s')", head + " VALUES(2, NULL)"));
  EXPECT_THAT(events.events, ElementsAre("started 1 false", "table a t", "content a t 2", "rows 2",
                                         "succeeded a t", "ended"));

  dest.log.clear();
  Rows(DataType::Double, {Numbered(1, 2.0)}, true);
  Transfer({"a t"});
  EXPECT_THAT(RowStatements(),
              ElementsAre("set identity_insert [a_t] On;" + head + " VALUES(1,  2.0)",
                          "set identity_insert [a_t] Off;"));
}

TEST_F(MySqlCopy, BlocksJoinRowsOfOneKindInOneTransaction) {
  Rows(DataType::VarWChar,
       {Numbered(1, std::string_view("a")), Numbered(2, {}),
        Numbered(3, std::string_view("\u4E16")), Numbered(4, std::string_view("b"))},
       true);
  Transfer({"a t"});
  const std::string head(kHead);
  EXPECT_THAT(RowStatements(),
              ElementsAre("begin transaction;set identity_insert [a_t] On;" + head +
                              " VALUES(1, 'a'),(2, NULL),(3, N'\u4E16'),(4, 'b');"
                              "set identity_insert [a_t] Off;",
                          "commit transaction"));
}

TEST_F(MySqlCopy, ARefusedBlockLeavesTheSessionAsItWas) {
  Rows(DataType::VarChar, {Numbered(1, std::string_view("a")), Numbered(2, std::string_view("b"))},
       true);
  dest.Fail("begin transaction", Failure(kViolation, 2627, "duplicate"));
  dest.Fail("VALUES(1, 'a')", Failure(kViolation, 2627, "duplicate"));
  Transfer({"a t"});
  const auto sent = RowStatements();
  ASSERT_EQ(sent.size(), 7u);
  EXPECT_EQ(sent[1], "if @@trancount > 0 rollback transaction");
  for (const std::size_t off : {2, 4, 6}) EXPECT_EQ(sent[off], "set identity_insert [a_t] Off;");
  EXPECT_THAT(events.Of("rows"), ElementsAre("rows 2"));
  EXPECT_EQ(events.Errors().size(), 1u);
}

TEST_F(MySqlCopy, BatchesStayWithinBounds) {
  src.plan.strategy = CopyStrategy::Statements;
  const std::string_view text = source.Keep(std::string(5000, 'x'));
  Rows(DataType::VarChar, std::vector<Row>(600, Numbered(1, text)));
  Transfer({"a t"});
  std::size_t longest = 0;
  for (const std::string& sql : dest.log) longest = std::max(longest, sql.size());
  EXPECT_LT(longest, 600'000u);
  EXPECT_GT(dest.Sent("INSERT").size(), 3u);
}

TEST_F(MySqlCopy, NoInsertHasMoreValuesThanTheServerKeepsAPlanFor) {
  src.plan.strategy = CopyStrategy::Statements;
  const std::vector<Row> rows(2500, Numbered(1, true));
  Rows(DataType::Boolean, rows);
  Transfer({"a t"});
  const auto occurrences = [](std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at < text.size(); at = text.find(part, at + 1)) ++count;
    return count;
  };
  std::size_t stored = 0;
  for (const std::string& sql : RowStatements()) {
    for (std::size_t at = sql.find(kHead); at < sql.size();) {
      const std::size_t next = sql.find(kHead, at + 1);
      const std::size_t tuples = 1 + occurrences(sql.substr(at, next - at), "),(");
      EXPECT_LE(tuples, 500u);
      stored += tuples;
      at = next;
    }
  }
  EXPECT_EQ(stored, rows.size());
}

TEST_F(MySqlCopy, EachRefusalIsTheRowsOrEndsTheCopy) {
  const std::string prefix =
      "error 16 [MS SQL Server] Unexpected error while transfering data of table [a_t] - ";
  const auto refused = [&prefix](int number) {
    return prefix + fmt::format("1 of 3 rows were not copied; the first: {} - no (row 2)", number);
  };
  struct Case {
    bool table_exists;
    std::int32_t native_error;
    std::string error;  // empty: none
    std::vector<std::string> notes{};
    int rows = 3;  // handled
  };
  const std::vector<std::string> was_there{
      "Table a t: 1 of 3 rows were there already and were left out"};
  const Case cases[] = {
      {true, 2627, "", was_there},
      {true, 2601, "", was_there},
      {false, 2627, refused(2627)},
      {true, 515, refused(515)},
      {true, 547, refused(547)},
      {false, 8152, refused(8152)},
      {true, 50001, refused(50001)},
      // The driver calls these violations as well.
      {true, 544, prefix + "-2147217873 - no", {}, 1},
      {true, 273, prefix + "-2147217873 - no", {}, 1},
      {false, 1105, prefix + "-2147217873 - no", {}, 1},
  };
  for (const CopyStrategy strategy : {CopyStrategy::Blocks, CopyStrategy::RowByRow}) {
    src.plan.strategy = strategy;
    for (const Case& each : cases) {
      SCOPED_TRACE(each.native_error);
      events.events.clear();
      host.notes.clear();
      Rows(DataType::VarChar,
           {Numbered(1, std::string_view("a")), Numbered(2, std::string_view("b")),
            Numbered(3, std::string_view("c"))});
      const auto exists = Failure(ado::hresult::kErrorsInCommand, 2714, "exists");
      if (each.table_exists) dest.Fail("Create Table", exists, 1);
      test::ScriptedServer& server = dest;
      server.Fail("(2, 'b')", Failure(kViolation, each.native_error, "no"),
                  strategy == CopyStrategy::Blocks ? 2 : 1);
      Transfer({"a t"});
      if (each.error.empty()) {
        EXPECT_THAT(events.Errors(), IsEmpty());
      } else {
        EXPECT_THAT(events.Errors(), ElementsAre(each.error));
      }
      EXPECT_EQ(host.notes, each.notes);
      EXPECT_THAT(events.Of("rows"), ElementsAre(fmt::format("rows {}", each.rows)));
      EXPECT_THAT(events.Of("succeeded"), ElementsAre("succeeded a t"));
    }
  }
}

TEST_F(MySqlCopy, TablesThatWouldTellBlocksApartGetRows) {
  Rows(DataType::VarChar, {Numbered(1, std::string_view("a")), Numbered(2, std::string_view("b"))});
  dest.Fail("Create Table", Failure(ado::hresult::kErrorsInCommand, 2714, "exists"));
  const std::string triggers =
      "select count(*) from sys.triggers where parent_id = object_id('[a_t]')";
  const auto blocks_of_a_transfer = [this] {
    dest.log.clear();
    Transfer({"a t"});
    return dest.Sent("begin").size();
  };
  dest.Answer(triggers, {TextResult({""}, {{"0"}})});
  EXPECT_EQ(blocks_of_a_transfer(), 1u);
  dest.Answer(triggers, {TextResult({""}, {{"1"}})});
  EXPECT_EQ(blocks_of_a_transfer(), 0u);
  dest.Answer(triggers, {TextResult({""}, {{"0"}})});
  dest.keys["a_t"] = {{"fk", ado::KeyType::Foreign, "A_T", {}, {}, {}}};
  EXPECT_EQ(blocks_of_a_transfer(), 0u);
  dest.keys.clear();
  dest.Fail(triggers, Failure(ado::hresult::kErrorsInCommand, 229, "permission denied"));
  EXPECT_EQ(blocks_of_a_transfer(), 0u);
}

}  // namespace
}  // namespace dorvane
