#include "mysql/to_mssql/rehearsed_server.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

#include "endpoint/failure.h"
#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "platform/ado/items.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

constexpr std::int32_t kConstraintError = 547;
constexpr std::int32_t kDuplicate = 1505;
constexpr const char* kDefaults =
    "select c.name, 'default ' + d.definition from sys.default_constraints d join sys.columns c on "
    "c.object_id = d.parent_object_id and c.column_id = d.parent_column_id where "
    "d.parent_object_id = ";
// Of one column each, which the server names with them.
constexpr const char* kColumnChecks =
    "select c.name, 'constraint [' + replace(k.name, ']', ']]') + '] check ' + k.definition from "
    "sys.check_constraints k join sys.columns c on c.object_id = k.parent_object_id and "
    "c.column_id = k.parent_column_id where k.is_disabled = 0 and k.parent_object_id = ";
constexpr const char* kTableChecks =
    "select name, definition from sys.check_constraints where is_disabled = 0 and "
    "parent_column_id = 0 and parent_object_id = ";
constexpr std::int64_t kMostDeclared = 8000;  // a larger size is that of (max)

constexpr std::array<std::string_view, 6> kSized{"char",     "varchar", "nchar",
                                                 "nvarchar", "binary",  "varbinary"};
constexpr std::array<std::string_view, 2> kDecimals{"decimal", "numeric"};
constexpr std::array<std::string_view, 3> kTimes{"datetime2", "time", "datetimeoffset"};

std::string TypeOf(const ado::Column& column) {
  const std::string& word = column.server_type;
  const auto is_among = [&](const auto& words) {
    return std::ranges::find(words, word) != words.end();
  };
  if (is_among(kDecimals)) {
    return fmt::format("{}({},{})", word, column.precision, column.numeric_scale);
  }
  if (is_among(kTimes)) return fmt::format("{}({})", word, column.numeric_scale);
  if (!is_among(kSized)) return word;
  return column.defined_size > kMostDeclared ? word + "(max)"
                                             : fmt::format("{}({})", word, column.defined_size);
}

bool IsFilled(const ado::Column& column) {
  return column.kind.computed.empty() && !column.kind.is_given;
}

/// As it stands in the definition of a temporary table.
std::string Definition(const ado::Column& column) {
  const bool is_text = !column.kind.collation.empty();
  const bool is_nullable = (column.attributes & ado::kColumnNullable) != 0;
  return fmt::format("{} {}{}{}", MsSqlName(column.name), TypeOf(column),
                     is_text ? " collate " + column.kind.collation : "",
                     is_nullable ? " null" : " not null");
}

std::string List(const std::vector<std::string>& columns) {
  std::string list;
  for (const std::string& column : columns) list += (list.empty() ? "" : ", ") + MsSqlName(column);
  return list;
}

std::string ObjectId(const ado::TableName& table) {
  return fmt::format("object_id(N'{}')", SqlText(MsSqlTable(table)));
}

}  // namespace

std::vector<std::string> RehearsedMsSql::CopyOf(const ado::TableName& table,
                                                const std::string& copy, bool gives_identity) {
  std::vector<ado::Column> columns = connection_.Columns(table);
  std::erase_if(columns, [](const ado::Column& column) { return !IsFilled(column); });
  std::map<std::string, std::string> clauses;  // behind a column's type
  for (const char* question : {kDefaults, kColumnChecks}) {
    TryEachRow(connection_, question + ObjectId(table),
               [&](const std::string& column, const std::string& clause) {
                 clauses[column] += " " + clause;
               });
  }
  std::string definition;
  for (const ado::Column& column : columns) {
    definition += (definition.empty() ? "" : ", ") + Definition(column) + clauses[column.name];
    if (column.identity && !gives_identity) definition += " identity";
  }
  std::vector<std::string> statements{fmt::format("create table {} ({})", copy, definition)};
  const auto add = [&](const std::string& what) {
    statements.push_back(fmt::format("alter table {} add {}", copy, what));
  };
  for (const ado::Index& index : connection_.Indexes(table)) {
    const bool tells_rows_apart = index.primary_key || (index.unique && index.filter.empty());
    const bool is_filled = std::ranges::all_of(index.columns, [&](const std::string& name) {
      return std::ranges::find(columns, name, &ado::Column::name) != columns.end();
    });
    if (!tells_rows_apart || !is_filled) continue;
    add(fmt::format("{} ({})", index.primary_key ? "primary key" : "unique", List(index.columns)));
  }
  TryEachRow(connection_, kTableChecks + ObjectId(table),
             [&](const std::string& name, const std::string& condition) {
               add(fmt::format("constraint {} check {}", MsSqlName(name), condition));
             });
  return statements;
}

std::string RehearsedMsSql::CopyOfColumns(const ado::TableName& table, const std::string& copy,
                                          const std::vector<std::string>& columns) {
  std::string definition;
  for (const ado::Column& column : connection_.Columns(table)) {
    const auto is_it = [&](const std::string& name) {
      return text::EqualsIgnoringCase(name, column.name);
    };
    if (std::ranges::none_of(columns, is_it)) continue;
    definition += (definition.empty() ? "" : ", ") + Definition(column);
  }
  return fmt::format("create table {} ({})", copy, definition);
}

std::vector<std::string> RehearsedMsSql::GivenColumns(const ado::TableName& table) {
  std::vector<std::string> columns;
  for (const ado::Column& column : connection_.Columns(table)) {
    if (column.identity || !IsFilled(column)) columns.push_back(column.name);
  }
  return columns;
}

std::string RehearsedMsSql::FullName(const ado::TableName& table) {
  if (!table.IsBare()) return table.Text();
  return connection_.Execute("select schema_name()").Field(0).Text() + "." + table.name;
}

bool RehearsedMsSql::HasTriggers(const ado::TableName& table) {
  ado::Recordset triggers = connection_.Execute(
      "select 1 from sys.triggers where is_disabled = 0 and parent_id = " + ObjectId(table));
  return !triggers.AtEnd();
}

std::optional<ado::ProviderError> RehearsedMsSql::SharedKey(
    const ado::TableName& table, const std::string& name, const std::vector<std::string>& columns) {
  const std::string list = List(columns);
  ado::Recordset shared = connection_.Execute(
      fmt::format("select {0} from {1} group by {0} having count(*) > 1", list, MsSqlTable(table)));
  if (shared.AtEnd()) return std::nullopt;
  std::string values;
  for (std::size_t i = 0; i < shared.FieldCount(); ++i) {
    values += (i == 0 ? "" : ", ") + shared.Field(i).Text();
  }
  shared.Close();
  return Refusal(
      ServerKind::MsSql, kDuplicate,
      fmt::format("The CREATE UNIQUE INDEX statement terminated because a duplicate key was found "
                  "for the object name '{}' and the index name '{}'. The duplicate key value is "
                  "({}).",
                  FullName(table), name, values));
}

ErrorSummary RehearsedMsSql::LackOfParent(const ado::TableName& table, const ado::Key& key) {
  return Orphan("INSERT", table, key);
}

ErrorSummary RehearsedMsSql::LackOfParents(const ado::TableName& table, const ado::Key& key) {
  return Orphan("ALTER TABLE", table, key);
}

ErrorSummary RehearsedMsSql::Orphan(std::string_view statement, const ado::TableName& table,
                                    const ado::Key& key) {
  const bool is_same = text::EqualsIgnoringCase(table.Text(), key.related_table.Text());
  const std::string column =
      key.columns.size() == 1 ? fmt::format(", column '{}'", key.columns[0].related_column) : "";
  return {kConstraintError,
          fmt::format("The {} statement conflicted with the FOREIGN KEY{} constraint \"{}\". "
                      "The conflict occurred in database \"{}\", table \"{}\"{}.",
                      statement, is_same ? " SAME TABLE" : "", key.name,
                      connection_.Execute("select db_name()").Field(0).Text(),
                      FullName(key.related_table), column)};
}

}  // namespace dorvane::to_mssql
