#pragma once

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/platform/ado/failure.h"
#include "tests/support/servers.h"

namespace dorvane::ado {

/// A connection to a server, one of a kind for the whole program; a database of its own for each
/// test.
class ServerTest : public testing::Test {
 protected:
  using Rows = std::vector<std::vector<std::string>>;

  static test::PrivateMySql& MySql() {
    static test::PrivateMySql server({"--max-allowed-packet=16M"});
    return server;
  }
  static test::SandboxServer& MsSql() {
    static test::SandboxServer server({"shop"});
    return server;
  }

  /// The methods that a server keeps passwords by, as the end of a CREATE USER statement.
  static std::vector<std::string> PasswordMethods(const test::PrivateMySql& server) {
    if (!server.IsMariaDb()) {
      return {"with caching_sha2_password by 'secret'", "with sha256_password by 'secret'"};
    }
    server.Query("install soname 'auth_ed25519'");
    return {"via mysql_native_password using password('secret')",
            "via ed25519 using password('secret')"};
  }

  explicit ServerTest(ServerKind kind)
      : kind_(kind),
        settings_{.server = "127.0.0.1",
                  .port = IsMySql() ? MySql().Port() : MsSql().Port(),
                  .user_id = Either("root", "sa"),
                  .password = "secret"},
        connection_(InstalledProvider(kind)) {
    static int databases = 0;
    connection_.Open(settings_);
    settings_.database = fmt::format("own{}", ++databases);
    Run("create database " + settings_.database + Either(" character set utf8mb4", ""));
    connection_.Close();
    connection_.Open(settings_);
  }

  bool IsMySql() const { return kind_ == ServerKind::MySql; }
  /// What differs between the two.
  template <typename T>
  T Either(T on_mysql, T on_mssql) const {
    return IsMySql() ? on_mysql : on_mssql;
  }

  /// The numbers from 1 to `count`, at most 100,000, as a derived table with the column "seq".
  static std::string Numbers(int count) {
    constexpr std::string_view kDigits =
        "(select 0 as d union all select 1 union all select 2 union all select 3 union all "
        "select 4 union all select 5 union all select 6 union all select 7 union all select 8 "
        "union all select 9)";
    return fmt::format(
        "(select * from (select 1 + a.d + 10 * b.d + 100 * c.d + 1000 * e.d + 10000 * f.d as seq "
        "from {0} a cross join {0} b cross join {0} c cross join {0} e cross join {0} f) n where "
        "seq <= {1})",
        kDigits, count);
  }

  Failure LogOn(const ConnectionSettings& settings) const {
    Connection connection(InstalledProvider(kind_));
    return FailureOf(connection, [&] { connection.Open(settings); });
  }

  void Run(std::string_view sql) { connection_.Execute(sql); }
  void RunAll(const std::vector<std::string>& statements) {
    for (const std::string& sql : statements) Run(sql);
  }
  Failure FailureOfSql(std::string_view sql) {
    return FailureOf(connection_, [&] { RowsOf(connection_.Execute(sql)); });
  }

  /// The rest of a result as text, NULL as "NULL".
  static Rows RowsOf(Recordset result) {
    Rows rows;
    for (; !result.AtEnd(); result.MoveNext()) {
      std::vector<std::string>& row = rows.emplace_back();
      for (std::size_t i = 0; i < result.FieldCount(); ++i) {
        row.push_back(result.Field(i).IsNull() ? "NULL" : result.Field(i).Text());
      }
    }
    return rows;
  }
  Rows RowsOf(std::string_view sql) { return RowsOf(connection_.Execute(sql)); }
  /// The first field of the first row.
  std::string Ask(std::string_view sql) { return Ask(connection_, sql); }
  static std::string Ask(Connection& connection, std::string_view sql) {
    return RowsOf(connection.Execute(sql)).at(0).at(0);
  }

  const ServerKind kind_;
  ConnectionSettings settings_;  // of the connection
  Connection connection_;
};

/// What both providers promise.
class BothServers : public ServerTest, public testing::WithParamInterface<ServerKind> {
 protected:
  BothServers() : ServerTest(GetParam()) {}
};

inline std::string NameOfKind(const testing::TestParamInfo<ServerKind>& kind) {
  return kind.param == ServerKind::MySql ? "MySql" : "MsSql";
}

inline const auto kBothServers = testing::Values(ServerKind::MySql, ServerKind::MsSql);

}  // namespace dorvane::ado
