#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "sandbox/tds/server.h"
#include "tests/sandbox/tds/fake_engine.h"
#include "tests/sandbox/tds/odbc_client.h"
#include "tests/sandbox/tds/sample_values.h"

namespace sandbox::tds {

namespace {

const char* const kVersions[] = {"7.3", "7.4"};

class Driver : public ::testing::Test {
 protected:
  std::string Version(const char* version) { return std::string("TDS_Version=") + version; }
  void Answer(const std::string& batch, const std::vector<ColumnInfo>& columns,
              const std::vector<Value>& row) {
    engine_.batches[batch] = [=](EngineSession&, ResultSink& sink) {
      sink.Columns(columns);
      sink.Row(row);
      sink.Row(std::vector<Value>(row.size()));
      sink.Done(2);
    };
  }

  FakeEngine engine_;
  Server server_{engine_, {"sa", "secret"}, 0};
};

TEST_F(Driver, ShowsEveryTypeInEveryProtocolVersion) {
  std::vector<ColumnInfo> columns;
  std::vector<Value> row;
  for (const SampleValue& sample : SampleValues()) {
    columns.push_back({.name = sample.name, .type = sample.type});
    row.push_back(sample.value);
  }
  Answer("types", columns, row);
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    OdbcClient client(server_.Port(), Version(version));
    auto rows = client.Query("types");
    ASSERT_EQ(rows.size(), 2U);
    for (std::size_t i = 0; i < columns.size(); ++i) {
      EXPECT_EQ(rows[0][i], SampleValues()[i].text) << columns[i].name;
      EXPECT_EQ(rows[1][i], std::nullopt) << columns[i].name;
    }
  }
}

TEST_F(Driver, CarriesValuesOfManyMegabytesBothWays) {
  const std::string text = LongText(5'000'000);
  const std::string bytes(3'000'000, '\x5A');
  using enum SqlType;
  Answer("big",
         {{.name = "a", .type = {NVarChar, -1}},
          {.name = "b", .type = {NText}},
          {.name = "c", .type = {Image}}},
         {text, text, BinaryValue{bytes}});
  for (const char* version : kVersions) {
    OdbcClient client(server_.Port(), Version(version));
    auto rows = client.Query("big");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_TRUE(rows[0][0] == text);
    EXPECT_TRUE(rows[0][1] == text);
    EXPECT_EQ(rows[0][2]->size(), 2 * bytes.size());
    client.Query("long batch " + text);
    EXPECT_TRUE(engine_.Batches().back() == "long batch " + text.substr(0, text.size() - 1));
  }
}

TEST_F(Driver, ATimeoutEndsTheStatementAndTheConnectionGoesOn) {
  engine_.batches["wait"] = [](EngineSession& session, ResultSink&) {
    while (!session.cancel) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  };
  OdbcClient client(server_.Port());
  SQLSetStmtAttr(client.Statement(), SQL_ATTR_QUERY_TIMEOUT, reinterpret_cast<SQLPOINTER>(1), 0);
  EXPECT_THROW(client.Query("wait"), std::runtime_error);
  EXPECT_NO_THROW(client.Query("something else"));
}

TEST_F(Driver, AStreamIsLeftInTheMiddle) {
  engine_.batches["endless"] = [](EngineSession& session, ResultSink& sink) {
    sink.Columns({{.name = "n", .type = {SqlType::Int}}});
    const std::vector<Value> row = {std::int64_t{7}};
    while (!session.cancel) sink.Row(row);
  };
  OdbcClient client(server_.Port());
  SQLHSTMT statement = client.Statement();
  SQLExecDirect(statement, (SQLCHAR*)"endless", SQL_NTS);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(SQLFetch(statement), SQL_SUCCESS);
  SQLFreeStmt(statement, SQL_CLOSE);
  EXPECT_NO_THROW(client.Query("something else"));
}

}  // namespace
}  // namespace sandbox::tds
