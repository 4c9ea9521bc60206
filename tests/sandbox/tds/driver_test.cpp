#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "sandbox/tds/server.h"
#include "tests/sandbox/tds/fake_engine.h"
#include "tests/sandbox/tds/odbc_client.h"
#include "tests/sandbox/tds/sample_values.h"

namespace sandbox::tds {

namespace {

using ::testing::Contains;

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

TEST_F(Driver, VariantsShowEachValueInItsOwnType) {
  const ColumnInfo variant{.name = "v", .type = {SqlType::Variant}};
  const std::vector<std::pair<Value, std::string>> values = {
      {std::int64_t{-7}, "-7"},
      {std::int64_t{1} << 40, "1099511627776"},
      {std::string("h\u00e4 \u65e5"), "h\u00e4 \u65e5"},
  };
  engine_.batches["variants"] = [&](EngineSession&, ResultSink& sink) {
    sink.Columns({variant});
    for (const auto& [value, text] : values) sink.Row(std::vector<Value>{value});
    sink.Done(1);
  };
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    auto rows = OdbcClient(server_.Port(), Version(version)).Query("variants");
    ASSERT_EQ(rows.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) EXPECT_EQ(rows[i][0], values[i].second);
  }
}

TEST_F(Driver, DescribesColumns) {
  struct Expected {
    ColumnInfo column;
    SQLSMALLINT type;
    SQLULEN size;
    SQLSMALLINT digits;
    SQLSMALLINT nullable;
  };
  using enum SqlType;
  const std::vector<Expected> expected = {
      {{.name = "a", .type = {Int}, .nullable = false}, SQL_INTEGER, 10, 0, SQL_NO_NULLS},
      {{.name = "name with blank", .type = {NVarChar, 40}}, SQL_WVARCHAR, 40, 0, SQL_NULLABLE},
      {{.name = "\u00fc", .type = {VarChar, 8000}}, SQL_VARCHAR, 8000, 0, SQL_NULLABLE},
      {{.name = "d", .type = {Numeric, 0, 12, 5}}, SQL_NUMERIC, 12, 5, SQL_NULLABLE},
      {{.name = "t", .type = {DateTime2, 0, 0, 6}}, SQL_TYPE_TIMESTAMP, 26, 6, SQL_NULLABLE},
      {{.name = "v", .type = {VarBinary, 16}}, SQL_VARBINARY, 16, 0, SQL_NULLABLE},
  };
  std::vector<ColumnInfo> columns;
  columns.reserve(expected.size());
  for (const Expected& each : expected) columns.push_back(each.column);
  engine_.batches["describe"] = [&](EngineSession&, ResultSink& sink) {
    sink.Columns(columns);
    sink.Done(0);
  };
  OdbcClient client(server_.Port());
  client.Check(SQLExecDirect(client.Statement(), (SQLCHAR*)"describe", SQL_NTS), SQL_HANDLE_STMT,
               client.Statement());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    SQLCHAR name[64];
    SQLSMALLINT length, type, digits, nullable;
    SQLULEN size;
    SQLDescribeCol(client.Statement(), static_cast<SQLUSMALLINT>(i + 1), name, sizeof name, &length,
                   &type, &size, &digits, &nullable);
    SCOPED_TRACE(expected[i].column.name);
    EXPECT_EQ(reinterpret_cast<char*>(name), expected[i].column.name);
    EXPECT_EQ(type, expected[i].type);
    EXPECT_EQ(size, expected[i].size);
    EXPECT_EQ(digits, expected[i].digits);
    EXPECT_EQ(nullable, expected[i].nullable);
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
    EXPECT_TRUE(engine_.Calls().back().text == "long batch " + text.substr(0, text.size() - 1));
  }
}

TEST_F(Driver, ReportsErrorsWithNumberAndText) {
  engine_.batches["bad"] = [](EngineSession&, ResultSink& sink) {
    sink.Message({.number = 208, .text = "Invalid object name 'x\u00e4'.", .procedure = {}});
  };
  OdbcClient client(server_.Port());
  try {
    client.Query("bad");
    FAIL() << "no error arrived";
  } catch (const OdbcError& error) {
    EXPECT_THAT(error.natives, Contains(208));
    EXPECT_THAT(error.what(), ::testing::HasSubstr("Invalid object name 'x\u00e4'."));
  }
}

TEST_F(Driver, RefusesLoginsAsTheDriverUnderstandsThem) {
  struct Case {
    const char* settings;
    int native;
  };
  const Case cases[] = {{"TDS_Version=7.4;UID=sa;PWD=wrong", 18456},
                        {"TDS_Version=7.3;UID=nobody;PWD=secret", 18456},
                        {"TDS_Version=7.4;Database=nowhere", 4060},
                        {"TDS_Version=7.4;Encryption=require", 20017}};
  for (const Case& refused : cases) {
    SCOPED_TRACE(refused.settings);
    try {
      OdbcClient client(server_.Port(), refused.settings);
      ADD_FAILURE() << "logged in";
    } catch (const OdbcError& error) {
      EXPECT_FALSE(error.natives.empty());
      if (refused.native != 20017) {
        EXPECT_THAT(error.natives, Contains(refused.native));
      }
    }
  }
  for (const char* accepted :
       {"TDS_Version=7.4;Encryption=off", "TDS_Version=7.4;Encryption=request",
        "TDS_Version=7.3;Database=shop"}) {
    EXPECT_NO_THROW(OdbcClient(server_.Port(), accepted)) << accepted;
  }
}

TEST_F(Driver, CatalogCallsReachTheEngineWithTheirResults) {
  engine_.procedures["sp_tables"] = [](std::span<const Parameter>, ResultSink& sink) {
    sink.Columns({{.name = "TABLE_NAME", .type = {SqlType::NVarChar, 128}}});
    sink.Row(std::vector<Value>{std::string("orders")});
    sink.Done(1);
    sink.ReturnStatus(0);
  };
  OdbcClient client(server_.Port());
  SQLHSTMT statement = client.Statement();
  client.Check(SQLTables(statement, nullptr, 0, nullptr, 0, (SQLCHAR*)"o%", SQL_NTS, nullptr, 0),
               SQL_HANDLE_STMT, statement);
  EXPECT_EQ(SQLFetch(statement), SQL_SUCCESS);
  SQLCHAR name[64] = "";
  SQLGetData(statement, 1, SQL_C_CHAR, name, sizeof name, nullptr);
  EXPECT_STREQ(reinterpret_cast<char*>(name), "orders");
  EXPECT_EQ(SQLFetch(statement), SQL_NO_DATA);
  EXPECT_EQ(engine_.Calls().back().parameters.at(0).name, "@table_name");
}

TEST_F(Driver, ATimeoutEndsTheStatementAndTheConnectionGoesOn) {
  engine_.batches["wait"] = [](EngineSession& session, ResultSink&) {
    while (!session.cancel) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  };
  OdbcClient client(server_.Port());
  SQLSetStmtAttr(client.Statement(), SQL_ATTR_QUERY_TIMEOUT, reinterpret_cast<SQLPOINTER>(1), 0);
  EXPECT_THROW(client.Query("wait"), OdbcError);
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
