#pragma once

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/ado/connection.h"
#include "platform/ado/mysql/session.h"
#include "tests/support/servers.h"

namespace dorvane::ado {

/// The failure of an operation: the HRESULT thrown and the native error of the list's first entry.
struct Failure {
  std::int32_t number = 0;
  std::int32_t native_error = 0;
  bool operator==(const Failure&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Failure& failure) {
  return out << fmt::format("{:#x}/{}", static_cast<std::uint32_t>(failure.number),
                            failure.native_error);
}

template <typename Operation>
Failure FailureOf(Connection& connection, Operation operation) {
  try {
    operation();
  } catch (const RunTimeError& error) {
    if (connection.Errors().empty()) return {error.Number(), 0};
    EXPECT_EQ(connection.Errors()[0].number, error.Number());
    EXPECT_EQ(connection.Errors()[0].description, error.Description());
    return {error.Number(), connection.Errors()[0].native_error};
  }
  return {};
}

/// A database of its own for each test, on one server for the whole program.
class MySqlTest : public testing::Test {
 protected:
  static test::PrivateMySql& Server() {
    static test::PrivateMySql server({"--max-allowed-packet=16M"});
    return server;
  }

  MySqlTest() {
    Server().Query(
        fmt::format("drop database if exists {0}; create database {0} "
                    "character set utf8mb4",
                    kDatabase));
    connection_.Open(Settings());
  }

  static ConnectionSettings Settings() {
    return {.server = "127.0.0.1",
            .port = Server().Port(),
            .user_id = "root",
            .password = Server().Password(),
            .database = kDatabase};
  }

  static Failure LogOn(const ConnectionSettings& settings) {
    Connection connection(MySqlProvider());
    return FailureOf(connection, [&] { connection.Open(settings); });
  }

  void Run(std::string_view sql) { connection_.Execute(sql); }

  /// The first field of the first row, as text.
  std::string Ask(std::string_view sql) { return Ask(connection_, sql); }
  static std::string Ask(Connection& connection, std::string_view sql) {
    Recordset rows = connection.Execute(sql);
    return rows.AtEnd() ? "(no row)" : rows.Field(0).Text();
  }

  static constexpr const char* kDatabase = "ado_test";
  Connection connection_{MySqlProvider()};
};

}  // namespace dorvane::ado
