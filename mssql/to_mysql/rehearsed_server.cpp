#include "mssql/to_mysql/rehearsed_server.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "endpoint/failure.h"
#include "endpoint/names.h"
#include "mssql/to_mysql/literals.h"

namespace dorvane::to_mysql {

namespace {

constexpr std::int32_t kDuplicate = 1062;
constexpr std::int32_t kNoSuchParent = 1452;

std::string List(const std::vector<std::string>& columns) {
  std::string list;
  for (const std::string& column : columns) list += (list.empty() ? "" : ", ") + MySqlName(column);
  return list;
}

/// The line of a table's definition that makes the key.
std::string LineOf(std::string_view definition, const ado::Key& key) {
  const std::string begin = fmt::format("CONSTRAINT {} FOREIGN KEY", MySqlName(key.name));
  const std::size_t at = definition.find(begin);
  if (at == std::string_view::npos) return begin;
  std::string_view line = definition.substr(at);
  line = line.substr(0, line.find('\n'));
  if (line.ends_with(',')) line.remove_suffix(1);
  return std::string(line);
}

/// The names of a definition's checks by their conditions.
std::map<std::string, std::string> ChecksIn(std::string_view definition) {
  constexpr std::string_view kConstraint = " CONSTRAINT ";
  constexpr std::string_view kCheck = " CHECK ";
  std::map<std::string, std::string> names;
  while (!definition.empty()) {
    std::string_view line = definition.substr(0, definition.find('\n'));
    definition.remove_prefix(std::min(line.size() + 1, definition.size()));
    const std::size_t at = line.find(kConstraint);
    if (at == std::string_view::npos) continue;
    line.remove_prefix(at + kConstraint.size());
    std::string name = TakeTableName(line).name;
    if (line.ends_with(',')) line.remove_suffix(1);
    if (line.starts_with(kCheck)) names[std::string(line)] = std::move(name);
  }
  return names;
}

}  // namespace

std::string RehearsedMySql::DefinitionOf(const std::string& quoted_name) {
  return connection_.Execute("show create table " + quoted_name).Field(1).Text();
}

std::map<std::string, std::string> RehearsedMySql::RenamedChecks(const ado::TableName& table,
                                                                 const std::string& copy) {
  std::map<std::string, std::string> renamed;
  const std::map<std::string, std::string> names = ChecksIn(DefinitionOf(MySqlTable(table)));
  for (const auto& [condition, name] : ChecksIn(DefinitionOf(copy))) {
    const auto own = names.find(condition);
    if (own != names.end() && own->second != name) renamed[name] = own->second;
  }
  return renamed;
}

std::vector<std::string> RehearsedMySql::CopyOf(const ado::TableName& table,
                                                const std::string& copy, bool /*gives_identity*/) {
  // What is rolled back must be gone from the copy, whatever the table's engine.
  return {fmt::format("create temporary table {} like {}", copy, MySqlTable(table)),
          fmt::format("alter table {} engine = innodb", copy)};
}

std::string RehearsedMySql::CopyOfColumns(const ado::TableName& table, const std::string& copy,
                                          const std::vector<std::string>& columns) {
  return fmt::format("create temporary table {} select {} from {} limit 0", copy, List(columns),
                     MySqlTable(table));
}

std::vector<std::string> RehearsedMySql::GivenColumns(const ado::TableName& table) {
  ado::Recordset counted = connection_.Execute(
      fmt::format("select column_name from information_schema.columns where table_schema = {} and "
                  "table_name = '{}' and extra like '%auto_increment%'",
                  SchemaText(table), Quote(table.name)));
  if (counted.AtEnd()) return {};
  return {counted.Field(0).Text()};
}

bool RehearsedMySql::HasTriggers(const ado::TableName& table) {
  ado::Recordset triggers = connection_.Execute(
      fmt::format("select 1 from information_schema.triggers where event_object_schema = {} and "
                  "event_object_table = '{}' and event_manipulation = 'INSERT'",
                  SchemaText(table), Quote(table.name)));
  return !triggers.AtEnd();
}

std::optional<ado::ProviderError> RehearsedMySql::SharedKey(
    const ado::TableName& table, const std::string& /*name*/,
    const std::vector<std::string>& columns) {
  const std::string list = List(columns);
  ado::Recordset shared = connection_.Execute(
      fmt::format("select concat_ws('-', {0}), version() from {1} group by {0} having count(*) > 1 "
                  "limit 1",
                  list, MySqlTable(table)));
  if (shared.AtEnd()) return std::nullopt;
  const bool is_maria_db = shared.Field(1).Text().find("MariaDB") != std::string::npos;
  return Refusal(ServerKind::MySql, kDuplicate,
                 fmt::format("Duplicate entry '{}' for key '{}PRIMARY'", shared.Field(0).Text(),
                             is_maria_db ? "" : table.name + "."));
}

ErrorSummary RehearsedMySql::Orphan(const ado::TableName& table, const std::string& key) {
  const std::string database =
      table.IsBare() ? connection_.Execute("select database()").Field(0).Text() : table.schema;
  return {kNoSuchParent,
          fmt::format("Cannot add or update a child row: a foreign key constraint fails ({}, {})",
                      MySqlTable({database, table.name}), key)};
}

ErrorSummary RehearsedMySql::LackOfParent(const ado::TableName& table, const ado::Key& key) {
  return Orphan(table, LineOf(DefinitionOf(MySqlTable(table)), key));
}

ErrorSummary RehearsedMySql::LackOfParents(const ado::TableName& table, const ado::Key& key) {
  std::vector<std::string> columns;
  std::vector<std::string> related;
  for (const ado::KeyColumn& column : key.columns) {
    columns.push_back(column.name);
    related.push_back(column.related_column);
  }
  return Orphan(
      table, fmt::format("CONSTRAINT {} FOREIGN KEY ({}) REFERENCES {} ({})", MySqlName(key.name),
                         List(columns), MySqlTable(key.related_table), List(related)));
}

}  // namespace dorvane::to_mysql
