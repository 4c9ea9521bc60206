#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mssql/mssql_database.h"
#include "tests/endpoint/recorders.h"
#include "tests/endpoint/scripted_provider.h"

namespace dorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MsSqlConnection : public testing::Test {
 protected:
  MsSqlConnection() {
    endpoint.SetListener(&events);
    endpoint.SetServer("host");
    endpoint.SetPortNo(1433);
    endpoint.SetUserId("sa");
    endpoint.SetPassword("a;b]c");
    endpoint.SetDbName("sh;op");
  }

  /// What both kinds of run say of a refused logon.
  ConnectionFailure FailureOf(ado::Errors entries, std::int32_t number = ado::hresult::kFail) {
    server.connect_failure = ado::ProviderError(number, "test", "run-time words", entries);
    EXPECT_EQ(endpoint.OpenConnection(true), nullptr);
    if (host.connection_failures.empty()) return {};
    const ConnectionFailure failure = host.connection_failures.back();
    host.connection_failures.clear();
    EXPECT_EQ(failure.title, "MS SQL Server");
    return failure;
  }
  static ado::Errors Second(std::int32_t native) {
    return {{-1, 1, "summary", ""}, {-1, native, "server's words", ""}};
  }

  test::ScriptedServer server;
  test::HostRecorder host;
  test::EventRecorder events;
  MsSqlDatabase endpoint{host, server.Lookup()};
};

TEST_F(MsSqlConnection, StartsWithEmptySettings) {
  const MsSqlDatabase fresh(host, server.Lookup());
  EXPECT_EQ(fresh.ConvertMode(), convert_mode::kMerge);
  EXPECT_EQ(fresh.PortNo(), 0);
  EXPECT_FALSE(fresh.WinNTAuthentication() || fresh.CopyTableContent() ||
               fresh.ReplaceSpaceWithUnderscore() || fresh.ConvertRelationships());
  EXPECT_EQ(fresh.UserId() + fresh.Password() + fresh.DbName() + fresh.Server(), "");
}

TEST_F(MsSqlConnection, WritesTheConnectionStringToTheLetter) {
  ASSERT_NE(endpoint.OpenConnection(false), nullptr);
  EXPECT_EQ(ado::ConnectionString(ServerKind::MsSql, server.last_settings),
            "Provider=SQLOLEDB.1;Password=a;b]c;User ID=sa;Data Source=host;port=1433");
  ASSERT_NE(endpoint.OpenConnection(true), nullptr);
  EXPECT_EQ(ado::ConnectionString(ServerKind::MsSql, server.last_settings),
            "Provider=SQLOLEDB.1;Password=a;b]c;User ID=sa;Data Source=host;port=1433;Database="
            "sh;op");
  EXPECT_EQ(server.last_settings.password, "a;b]c");
  EXPECT_EQ(server.last_settings.database, "sh;op");
  endpoint.SetWinNTAuthentication(true);
  ASSERT_NE(endpoint.OpenConnection(false), nullptr);
  EXPECT_EQ(ado::ConnectionString(ServerKind::MsSql, server.last_settings),
            "Provider=SQLOLEDB.1;Integrated Security=SSPI;Server=host;port=1433");
  EXPECT_TRUE(server.last_settings.integrated_security);
  EXPECT_EQ(server.last_settings.database, "");
}

TEST_F(MsSqlConnection, NamesTheKnownLogonFailures) {
  struct Row {
    std::int32_t native;
    std::string message;
    std::string log;
  };
  const std::string not_found =
      "MS SQL Server can not be found at that server. Make sure that you entered the correct host "
      "name";
  const std::string no_database = "Database sh;op does not exist. Please create it first.";
  const std::string no_permission =
      "the current windows user has no permission to access this server. Please make sure the "
      "current user has permission to access this server ";
  const Row rows[] = {
      {17, not_found, "Conversion Failed! " + not_found},
      {18456, "Invalid username or password. Access denied for this user.",
       "Conversion Failed! Access denied while trying to connect to MS SQL server"},
      {4060, no_database, "Conversion Failed! " + no_database},
      {911, no_database, "Conversion Failed! " + no_database},
      {18452, no_permission, "Conversion Failed! " + no_permission},
      {99, "Unkown error 99 - run-time words",
       "Conversion failed! Unknow error 99 - run-time words"},
  };
  for (const Row& row : rows) {
    const ConnectionFailure failure = FailureOf(Second(row.native));
    EXPECT_EQ(failure.message, row.message);
    EXPECT_EQ(failure.log_line, row.log);
  }
}

TEST_F(MsSqlConnection, MakesDoWithFewerEntries) {
  EXPECT_EQ(FailureOf({{-1, 18456, "x", ""}}).message,
            "Invalid username or password. Access denied for this user.");
  EXPECT_EQ(FailureOf({}, -77).message, "Unkown error -77 - run-time words");
  EXPECT_EQ(FailureOf({}, 0).log_line,
            "Conversion failed! MS SQL Server can not be found at that host. Make sure that you "
            "entered the correct host name");
}

TEST_F(MsSqlConnection, ListsDatabasesInTheServersOrder) {
  server.Answer("sp_databases",
                {test::TextResult({"DATABASE_NAME", "SIZE"}, {{"b", "1"}, {"a", "2"}})});
  EXPECT_EQ(endpoint.GetDatabases(), (NameList{"b", "a"}));
  EXPECT_EQ(host.yields, 2);
  server.Answer("sp_databases", {test::TextResult({"DATABASE_NAME"}, {})});
  EXPECT_EQ(endpoint.GetDatabases(), NameList());
}

TEST_F(MsSqlConnection, ShowsAFailedListing) {
  server.Fail("sp_databases", {-1, "test", "run-time", Second(229)});
  EXPECT_EQ(endpoint.GetDatabases(), std::nullopt);
  EXPECT_THAT(host.messages,
              ElementsAre("16 [MS SQL Server] Unexpected Error No. 229 - server's words"));
}

TEST_F(MsSqlConnection, CreatesDatabasesAndRaisesWhatTheServerSays) {
  EXPECT_TRUE(endpoint.CreateDatabase("a]b"));
  EXPECT_THAT(server.log, ElementsAre("Create Database [a]]b]"));
  EXPECT_EQ(endpoint.DbName(), "sh;op");

  for (const std::int32_t native : {1801, 262, 5105, 1234}) {
    server.Fail("Create", test::Failure(-1, native, "words"), 1);
    EXPECT_FALSE(endpoint.CreateDatabase("new"));
  }
  server.Fail("Create", {-9, "test", "run-time", {}}, 1);
  EXPECT_FALSE(endpoint.CreateDatabase("new"));
  EXPECT_THAT(
      events.events,
      ElementsAre("error 16 [MS SQL Server] Database new already exists.",
                  "error 16 [MS SQL Server] This user does not have the permission to create a new "
                  "database.",
                  "error 16 [MS SQL Server] Invalid database name!",
                  "error 16 [MS SQL Server] Unexpected Error No. 1234 - words",
                  "error 16 [MS SQL Server] Unexpected Error No. -9 - run-time"));
  EXPECT_THAT(host.messages, IsEmpty());
}

TEST_F(MsSqlConnection, ListsOnlyTables) {
  server.tables = {{"v", "VIEW"}, {"t2", "TABLE"}, {"s", "SYSTEM TABLE"}, {"t1", "TABLE"}};
  EXPECT_EQ(endpoint.GetTablesFromDatabase(), (NameList{"t2", "t1"}));
  EXPECT_EQ(server.last_settings.database, "sh;op");
  FailureOf(Second(17));
  EXPECT_EQ(endpoint.GetTablesFromDatabase(), std::nullopt);
}

}  // namespace
}  // namespace dorvane
