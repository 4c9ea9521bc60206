#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "endpoint/names.h"
#include "mysql/to_mssql/columns.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/questions.h"
#include "mysql/to_mssql/reserved_words.h"

namespace dorvane::to_mssql {

namespace {

/// A name as it may stand outside brackets, else in brackets.
std::string Plain(const std::string& name) {
  return NeedsBrackets(name) ? MsSqlName(name) : name;
}

/// Why SQL Server has no index like this; empty when it may have.
std::string WhyNotCarried(const KeyText& key, const TableDefinition& table) {
  if (key.type == "FULLTEXT") return "full text";
  if (key.type == "SPATIAL") return "spatial";
  if (!key.has_prefix) return {};
  // The whole columns take the place of their prefixes where the server can index them.
  std::int64_t bytes = 0;
  for (const std::string& name : key.columns) {
    const ColumnDefinition* column = table.Find(name);
    const auto key_bytes = column != nullptr ? KeyBytes(column->type) : std::nullopt;
    bytes += key_bytes.value_or(kMostKeyBytes + 1);
  }
  return bytes > kMostKeyBytes ? "the beginning of a column too long for an index" : "";
}

}  // namespace

void MySqlToMsSql::AddPrimaryKeyConstraint(ado::Table& tab_src, TableDefinition& table) {
  try {
    for (const KeyText& key :
         ReadKeys(Source().Execute("show index from " + MySqlTable(tab_src.Name())))) {
      AddKey(key, table);
    }
  } catch (const RunTimeError& error) {
    ReportKey(table, "", error);
  }
}

void MySqlToMsSql::AddKey(const KeyText& key, TableDefinition& table) {
  const std::string reason = WhyNotCarried(key, table);
  if (!reason.empty()) {
    table.notes.push_back(fmt::format("index {} was not carried: {}", key.name, reason));
    return;
  }
  try {
    if (std::ranges::find(key.columns, "") != key.columns.end()) {
      throw RunTimeError(ado::kItemNotFound, "MySql", "it is over an expression");
    }
    key.IsPrimary() ? AddPrimaryKey(key, table) : AddIndex(key, table);
  } catch (const RunTimeError& error) {
    ReportKey(table, key.name, error);
  }
}

void MySqlToMsSql::AddPrimaryKey(const KeyText& key, const TableDefinition& table) {
  std::string columns;
  for (const std::string& column : key.columns) {
    columns += (columns.empty() ? "" : ",") + MsSqlName(DestName(column));
  }
  ExecuteOn(Destination(), fmt::format("alter table {} add primary key ({})",
                                       MsSqlTable(table.dest_name), columns));
}

void MySqlToMsSql::AddIndex(const KeyText& key, TableDefinition& table) {
  std::string columns;
  std::string has_values;
  for (const std::string& column : key.columns) {
    const std::string dest_column = Plain(DestName(column));
    columns += (columns.empty() ? "" : ",") + dest_column;
    const ColumnDefinition* definition = table.Find(column);
    if (definition == nullptr || !definition->facts.nullable) continue;
    has_values += (has_values.empty() ? "" : " and ") + dest_column + " is not null";
  }
  const std::string name = DestName(key.name);
  const std::string dest_table = MsSqlTable(table.dest_name);
  if (!key.is_unique) {
    ExecuteOn(Destination(),
              fmt::format("Create index {} on {}({})", MsSqlName(name), dest_table, columns));
    return;
  }
  std::string statement =
      fmt::format("Create unique index {} on {}({})", Plain(name), dest_table, columns);
  if (!has_values.empty() && RepeatsNulls(Source(), table.name, key.columns)) {
    statement += " where " + has_values;
    table.notes.push_back(fmt::format(
        "unique index {} leaves out rows with NULL, of which SQL Server takes one only", key.name));
  }
  ExecuteOn(Destination(), statement);
}

void MySqlToMsSql::ReportKey(const TableDefinition& table, const std::string& key,
                             const RunTimeError& error) {
  const auto* failure = dynamic_cast<const DestinationFailure*>(&error);
  const ado::Error* entry = failure != nullptr ? failure->Primary() : nullptr;
  RaiseError(
      fmt::format("An error occured while creating primary keys and indexes for table '{}' - {}{}",
                  table.name.Text(), key.empty() ? "" : key + ": ",
                  entry != nullptr ? entry->description : error.Description()),
      "MySQL Server");
}

void MySqlToMsSql::CheckExistingTable(ado::Table& tab_src, const TableDefinition& table) {
  if (!Options().copy_table_content) return;
  std::optional<KeyText> primary;
  try {
    const std::vector<ado::Index> indexes =
        OnDestination(Destination(), [&] { return Destination().Indexes(table.dest_name); });
    if (std::ranges::any_of(indexes, &ado::Index::unique)) return;
    const std::vector<KeyText> keys =
        ReadKeys(Source().Execute("show index from " + MySqlTable(tab_src.Name())));
    if (keys.empty() || !keys[0].IsPrimary()) {
      Host().Inform(fmt::format(
          "Table {}: it has no key, so that rows which are there already are added once more",
          table.name.Text()));
      return;
    }
    primary = keys[0];
    std::vector<std::string> columns;
    for (const std::string& column : primary->columns) columns.push_back(DestName(column));
    RehearseKey(table.dest_name, "PK", std::move(columns));
    AddPrimaryKey(*primary, table);
    Host().Inform(fmt::format("Table {}: it was there without its primary key, which was added",
                              table.name.Text()));
  } catch (const RunTimeError& error) {
    ReportKey(table, primary ? primary->name : "", error);
  }
}

}  // namespace dorvane::to_mssql
