#include "tests/faults/stage.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace dorvane::test {

Stage::Stage() {
  disk_.Use(true);
  my_sql_.emplace(std::vector<std::string>{"--innodb-flush-log-at-trx-commit=2"});
  ms_sql_.emplace(std::vector<std::string>{"source"});
  disk_.Use(false);
  my_sql_proxy_.emplace(my_sql_->Port(), ServerKind::MySql);
  ms_sql_proxy_.emplace(ms_sql_->Port(), ServerKind::MsSql);
  ms_sql_->Script(ReadFile(TABLES_FOLDER "/tables_of_mssql.sql"), "source");
  my_sql_->Query("create database source character set utf8mb4");
  my_sql_->Query(ReadFile(TABLES_FOLDER "/tables_of_mysql.sql"), "source");
}

PrivateServer& Stage::ServerOf(ServerKind server) {
  if (server == ServerKind::MySql) return *my_sql_;
  return *ms_sql_;
}

void Stage::Execute(ServerKind server, const std::string& sql) const {
  ado::Connection connection(ado::InstalledProvider(server));
  connection.Open(Settings(server, server == ServerKind::MySql ? "" : "master"));
  connection.Execute(sql);
}

std::string Stage::NewDatabase(ServerKind server) {
  const std::string name = fmt::format("run{}", ++databases_);
  Execute(server, "create database " + name +
                      (server == ServerKind::MySql ? " character set utf8mb4" : ""));
  return name;
}

void Stage::DropDatabase(ServerKind server, const std::string& database) {
  // A server may take its time to notice that a session has ended, and one that had a full disk may
  // keep what it could not finish.
  for (int tries = 0; tries < 40; ++tries) {
    try {
      return Execute(server, "drop database " + database);
    } catch (const RunTimeError&) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  }
}

ado::ConnectionSettings Stage::Settings(ServerKind server, const std::string& database) const {
  const bool is_my_sql = server == ServerKind::MySql;
  return {.server = "127.0.0.1",
          .port = is_my_sql ? my_sql_->Port() : ms_sql_->Port(),
          .user_id = is_my_sql ? "root" : "sa",
          .password = "secret",
          .database = database};
}

std::vector<std::string> Stage::ContentOf(ServerKind server, const std::string& database,
                                          const std::string& table, bool with_indexes) const {
  ado::Connection connection(ado::InstalledProvider(server));
  connection.Open(Settings(server, database));
  const std::vector<ado::Index> indexes = connection.Indexes(table);
  const bool has_key = std::ranges::any_of(indexes, &ado::Index::primary_key);
  std::vector<std::string> content{has_key ? "a primary key" : "no primary key"};
  if (with_indexes) content.push_back(fmt::format("{} indexes", indexes.size()));
  ado::Recordset rows =
      connection.Execute("select Id, Note, Amount from " + table + " order by Id");
  for (; !rows.AtEnd(); rows.MoveNext()) {
    content.push_back(
        fmt::format("{} {} {}", rows.Field(0).Text(), rows.Field(1).Text(), rows.Field(2).Text()));
  }
  return content;
}

}  // namespace dorvane::test
