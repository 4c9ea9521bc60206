#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mysql/mysql_database.h"
#include "tests/endpoint/recorders.h"
#include "tests/endpoint/scripted_provider.h"

namespace dorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MySqlConnection : public testing::Test {
 protected:
  MySqlConnection() {
    endpoint.SetListener(&events);
    endpoint.SetServer("host");
    endpoint.SetPortNo(3306);
    endpoint.SetUserId("root");
    endpoint.SetPassword("a;b`c");
    endpoint.SetDbName("shop");
  }
  ConnectionFailure FailureOf(ado::Errors entries) {
    server.connect_failure = ado::ProviderError(-77, "test", "run-time words", entries);
    EXPECT_EQ(endpoint.OpenConnection(true), nullptr);
    if (host.connection_failures.empty()) return {};
    EXPECT_EQ(host.connection_failures.back().title, "MySQL Server");
    return host.connection_failures.back();
  }

  test::ScriptedServer server;
  test::HostRecorder host;
  test::EventRecorder events;
  MySqlDatabase endpoint{host, server.Lookup()};
};

TEST_F(MySqlConnection, WritesTheConnectionStringToTheLetter) {
  ASSERT_NE(endpoint.OpenConnection(false), nullptr);
  EXPECT_EQ(ado::ConnectionString(ServerKind::MySql, server.last_settings),
            "Driver={MySql ODBC 3.51 Driver};Password=a;b`c;User ID=root;Server=host;port=3306;"
            "option=16387");
  ASSERT_NE(endpoint.OpenConnection(true), nullptr);
  EXPECT_THAT(ado::ConnectionString(ServerKind::MySql, server.last_settings),
              testing::EndsWith(";option=16387;Database=shop"));
  EXPECT_EQ(server.last_settings.password, "a;b`c");
}

TEST_F(MySqlConnection, KnowsNoWindowsAccounts) {
  const auto expect_refusal = [](auto access) {
    try {
      access();
      FAIL();
    } catch (const RunTimeError& error) {
      EXPECT_EQ(error.Number(), 11);
      EXPECT_EQ(error.Source(), "MySql");
      EXPECT_EQ(error.Description(), "Invalid Property Access");
    }
  };
  expect_refusal([&] { endpoint.WinNTAuthentication(); });
  expect_refusal([&] { endpoint.SetWinNTAuthentication(true); });
}

TEST_F(MySqlConnection, NamesTheKnownLogonFailures) {
  struct Row {
    std::int32_t native;
    std::string message;
    std::string log;
  };
  const std::string not_found =
      "MySQL Server can not be found at that server. Make sure that you entered the correct host "
      "name";
  const Row rows[] = {
      {2003, not_found, "Conversion Failed! " + not_found},
      {2017, not_found, "Conversion Failed! " + not_found},
      {1045, "Invalid username or password. Access denied for this user.",
       "Conversion Failed! Access denied while trying to connect to MySQL server"},
      {1049, "Database shop does not exist. Please create it first.",
       "Conversion Failed! Database shop does not exist in MySQL Server. Please create it first."},
      {2026, "Unknown Error No. 2026 - first",
       "Conversion Failed! Unkown error -77 - firstrun-time words"},
  };
  for (const Row& row : rows) {
    const ConnectionFailure failure =
        FailureOf({{-1, row.native, "first", ""}, {-1, 17, "second", ""}});
    EXPECT_EQ(failure.message, row.message);
    EXPECT_EQ(failure.log_line, row.log);
  }
  EXPECT_EQ(FailureOf({}).message, "Unknown Error No. -77 - run-time words");
  EXPECT_EQ(FailureOf({}).log_line, "Conversion Failed! Unkown error -77 - run-time words");
}

TEST_F(MySqlConnection, ListsDatabasesAndEveryCatalogEntry) {
  server.Answer("show databases", {test::TextResult({"Database"}, {{"b"}, {"a"}})});
  EXPECT_EQ(endpoint.GetDatabases(), (NameList{"b", "a"}));
  server.tables = {{"v", "VIEW"}, {"t", "TABLE"}};
  EXPECT_EQ(endpoint.GetTablesFromDatabase(), (NameList{"v", "t"}));

  server.Fail("show databases", test::Failure(-1, 1227, "no right"));
  EXPECT_EQ(endpoint.GetDatabases(), std::nullopt);
  EXPECT_THAT(host.messages, ElementsAre("16 [MySQL Server] Unknown error no. 1227 - no right"));
}

TEST_F(MySqlConnection, ShowsWhyADatabaseWasNotCreated) {
  EXPECT_TRUE(endpoint.CreateDatabase("a`b"));
  EXPECT_THAT(server.log, ElementsAre("Create Database `a``b`"));
  for (const std::int32_t native : {1007, 1044, 1102, 1234}) {
    server.Fail("Create", test::Failure(-1, native, "words"), 1);
    EXPECT_FALSE(endpoint.CreateDatabase("new"));
  }
  server.Fail("Create", {-9, "test", "run-time", {}}, 1);
  EXPECT_FALSE(endpoint.CreateDatabase("new"));
  EXPECT_THAT(
      host.messages,
      ElementsAre(
          "16 [MySQL Server] Database new already exists.",
          "16 [MySQL Server] This user does not have the permission to create a new database.",
          "16 [MySQL Server] Invalid database name!",
          "16 [MySQL Server] Unknown Error No. 1234 - words",
          "16 [MySQL Server] Unknown Error No. -9 - run-time"));
  EXPECT_THAT(events.events, IsEmpty());
}

}  // namespace
}  // namespace dorvane
