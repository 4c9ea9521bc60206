// What both endpoints say of connections, and how they find and make databases.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/endpoint/recorders.h"
#include "tests/endpoint/scripted_provider.h"
#include "tests/support/table.h"

namespace dorvane {

namespace {

using test::TextResult;
using testing::ElementsAre;
using testing::IsEmpty;

class Connections : public testing::TestWithParam<ServerKind> {
 protected:
  Connections() {
    if (IsMsSql()) {
      endpoint_ = std::make_unique<MsSqlDatabase>(host_, server_.Lookup());
    } else {
      endpoint_ = std::make_unique<MySqlDatabase>(host_, server_.Lookup());
    }
    endpoint_->SetListener(&events_);
    endpoint_->SetServer("host");
    endpoint_->SetPortNo(1433);
    endpoint_->SetUserId("sa");
    endpoint_->SetPassword("a;b]c");
    endpoint_->SetDbName("sh;op");
  }

  bool IsMsSql() const { return GetParam() == ServerKind::MsSql; }
  std::string Title() const { return IsMsSql() ? "MS SQL Server" : "MySQL Server"; }
  std::string StringOf(bool with_database) {
    EXPECT_NE(endpoint_->OpenConnection(with_database), nullptr);
    return ado::ConnectionString(GetParam(), server_.last_settings);
  }

  /// What both kinds of run say of a refused logon.
  ConnectionFailure FailureOf(ado::Errors entries, std::int32_t number = -77) {
    server_.connect_failure =
        ado::ProviderError(number, "test", "run-time words", std::move(entries));
    EXPECT_EQ(endpoint_->OpenConnection(true), nullptr);
    if (host_.connection_failures.empty()) return {};
    EXPECT_EQ(host_.connection_failures.back().title, Title());
    return host_.connection_failures.back();
  }
  /// The entries among which this one counts.
  ado::Errors Among(std::int32_t native) const {
    const ado::Error counts{-1, native, "words", ""};
    const ado::Error other{-1, 1, "others", ""};
    return IsMsSql() ? ado::Errors{other, counts} : ado::Errors{counts, other};
  }

  test::ScriptedServer server_;
  test::HostRecorder host_;
  test::EventRecorder events_;
  std::unique_ptr<IDatabase> endpoint_;
};

INSTANTIATE_TEST_SUITE_P(, Connections, testing::Values(ServerKind::MsSql, ServerKind::MySql),
                         [](const auto& kind) {
                           return kind.param == ServerKind::MsSql ? "MsSql" : "MySql";
                         });

TEST_P(Connections, WriteTheirStringToTheLetter) {
  const std::string plain =
      IsMsSql() ? "Provider=SQLOLEDB.1;Password=a;b]c;User ID=sa;Data Source=host;port=1433"
                : "Driver={MySql ODBC 3.51 Driver};Password=a;b]c;User ID=sa;Server=host;port=1433;"
                  "option=16387";
  EXPECT_EQ(StringOf(false), plain);
  EXPECT_EQ(StringOf(true), plain + ";Database=sh;op");
  EXPECT_EQ(server_.last_settings.password, "a;b]c");
  EXPECT_EQ(server_.last_settings.database, "sh;op");
}

TEST_P(Connections, OnlySqlServerKnowsWindowsAccounts) {
  if (IsMsSql()) {
    endpoint_->SetWinNTAuthentication(true);
    EXPECT_EQ(StringOf(false),
              "Provider=SQLOLEDB.1;Integrated Security=SSPI;Server=host;port=1433");
    EXPECT_TRUE(server_.last_settings.integrated_security);
    return;
  }
  const std::function<void()> accesses[] = {[&] { endpoint_->WinNTAuthentication(); },
                                            [&] { endpoint_->SetWinNTAuthentication(true); }};
  for (const auto& access : accesses) {
    try {
      access();
      FAIL();
    } catch (const RunTimeError& error) {
      EXPECT_EQ(error.Number(), 11);
      EXPECT_EQ(error.Source(), "MySql");
      EXPECT_EQ(error.Description(), "Invalid Property Access");
    }
  }
}

TEST_P(Connections, NameTheKnownLogonFailures) {
  const auto unquoted = [](const std::string& cell) { return cell.substr(1, cell.size() - 2); };
  for (const auto& cells : test::ReadTable("endpoint/logon_failures.txt")) {
    if ((cells.at(0) == "mssql") != IsMsSql()) continue;
    const ConnectionFailure failure = FailureOf(Among(std::stoi(cells.at(1))));
    EXPECT_EQ(failure.message, unquoted(cells.at(2)));
    EXPECT_EQ(failure.log_line, unquoted(cells.at(3)));
  }
}

TEST_P(Connections, MakeDoWithFewerEntries) {
  EXPECT_EQ(FailureOf({{-1, IsMsSql() ? 18456 : 1045, "x", ""}}).message,
            "Invalid username or password. Access denied for this user.");
  EXPECT_EQ(FailureOf({}).message, IsMsSql() ? "Unkown error -77 - run-time words"
                                             : "Unknown Error No. -77 - run-time words");
  EXPECT_EQ(FailureOf({}, 0).log_line,
            IsMsSql() ? "Conversion failed! MS SQL Server can not be found at that host. Make sure "
                        "that you entered the correct host name"
                      : "Conversion Failed! Unkown error 0 - run-time words");
}

TEST_P(Connections, ListDatabasesInTheServersOrder) {
  const std::string question = IsMsSql() ? "sp_databases" : "show databases";
  server_.Answer(question, {TextResult({"DATABASE_NAME"}, {{"b"}, {"a"}})});
  EXPECT_EQ(endpoint_->GetDatabases(), (NameList{"b", "a"}));
  EXPECT_EQ(host_.yields, IsMsSql() ? 2 : 0);
  server_.Answer(question, {TextResult({"DATABASE_NAME"}, {})});
  EXPECT_EQ(endpoint_->GetDatabases(), NameList());

  server_.Fail(question, {-1, "test", "run-time", Among(229)});
  EXPECT_EQ(endpoint_->GetDatabases(), std::nullopt);
  EXPECT_THAT(host_.messages,
              ElementsAre(IsMsSql() ? "16 [MS SQL Server] Unexpected Error No. 229 - words"
                                    : "16 [MySQL Server] Unknown error no. 229 - words"));
}

TEST_P(Connections, ListTables) {
  server_.tables = {{"v", "VIEW"}, {"t2", "TABLE"}, {"t1", "TABLE"}};
  EXPECT_EQ(endpoint_->GetTablesFromDatabase(),
            IsMsSql() ? (NameList{"t2", "t1"}) : (NameList{"v", "t2", "t1"}));
  EXPECT_EQ(server_.last_settings.database, "sh;op");
  FailureOf(Among(17));
  EXPECT_EQ(endpoint_->GetTablesFromDatabase(), std::nullopt);
}

TEST_P(Connections, CreateDatabasesOrSayWhyNot) {
  EXPECT_TRUE(endpoint_->CreateDatabase("a]`b"));
  EXPECT_THAT(server_.log,
              ElementsAre(IsMsSql() ? "Create Database [a]]`b]" : "Create Database `a]``b`"));
  EXPECT_EQ(endpoint_->DbName(), "sh;op");

  const std::vector<std::int32_t> known =
      IsMsSql() ? std::vector{1801, 262, 5105, 1234} : std::vector{1007, 1044, 1102, 1234};
  for (const std::int32_t native : known) {
    server_.Fail("Create", test::Failure(-1, native, "words"), 1);
    EXPECT_FALSE(endpoint_->CreateDatabase("new"));
  }
  server_.Fail("Create", {-9, "test", "run-time", {}}, 1);
  EXPECT_FALSE(endpoint_->CreateDatabase("new"));

  const std::string head = (IsMsSql() ? "error 16 [" : "16 [") + Title() + "] ";
  const std::string unknown = IsMsSql() ? "Unexpected Error No. " : "Unknown Error No. ";
  EXPECT_THAT(IsMsSql() ? events_.events : host_.messages,
              ElementsAre(head + "Database new already exists.",
                          head + "This user does not have the permission to create a new database.",
                          head + "Invalid database name!", head + unknown + "1234 - words",
                          head + unknown + "-9 - run-time"));
  EXPECT_THAT(IsMsSql() ? host_.messages : events_.events, IsEmpty());
}

TEST(FreshEndpoint, HasEmptySettings) {
  test::HostRecorder host;
  const MsSqlDatabase fresh(host);
  EXPECT_EQ(fresh.ConvertMode(), convert_mode::kMerge);
  EXPECT_EQ(fresh.PortNo(), 0);
  EXPECT_FALSE(fresh.WinNTAuthentication() || fresh.CopyTableContent() ||
               fresh.ReplaceSpaceWithUnderscore() || fresh.ConvertRelationships());
  EXPECT_EQ(fresh.UserId() + fresh.Password() + fresh.DbName() + fresh.Server(), "");
}

}  // namespace
}  // namespace dorvane
