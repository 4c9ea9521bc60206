// What a table of the exact mapping has beside columns, keys and rows: comments, checks, and where
// its AUTO_INCREMENT stands.

#include <fmt/format.h>

#include <charconv>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/check_text.h"
#include "mysql/to_mssql/conversion.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

/// The next value that a table definition tells of; it tells of none before the first row.
std::string NextValue(std::string_view definition) {
  constexpr std::string_view kWord = "AUTO_INCREMENT=";
  const auto options = definition.rfind('\n');
  const auto at = definition.find(kWord, options == std::string_view::npos ? 0 : options);
  if (at == std::string_view::npos) return "1";
  const std::string_view digits = definition.substr(at + kWord.size());
  return std::string(digits.substr(0, digits.find_first_not_of("0123456789")));
}

/// The checks of a table, whose catalog differs between servers.
constexpr std::string_view kChecks[] = {
    "select constraint_name, check_clause from information_schema.check_constraints where "
    "constraint_schema = database() and table_name = {} order by constraint_name",
    "select c.constraint_name, c.check_clause from information_schema.check_constraints c join "
    "information_schema.table_constraints t on t.constraint_schema = c.constraint_schema and "
    "t.constraint_name = c.constraint_name where t.constraint_type = 'CHECK' and "
    "t.table_schema = database() and t.table_name = {} order by c.constraint_name"};

}  // namespace

void MySqlToMsSql::DescribeExtras(TableDefinition& table) {
  const std::string name = HexCode(table.name.name);
  TryEachRow(Source(),
             fmt::format("select column_name, column_comment from information_schema.columns where "
                         "table_schema = database() and table_name = {0} and column_comment <> '' "
                         "union all select '', table_comment from information_schema.tables where "
                         "table_schema = database() and table_name = {0}",
                         name),
             [&](const std::string& column, const std::string& comment) {
               ColumnDefinition* definition = table.Find(column);
               (definition != nullptr ? definition->comment : table.comment) = comment;
             });
  for (const std::string_view query : kChecks) {
    // An old server has no checks.
    if (TryEachRow(Source(), fmt::format(fmt::runtime(query), name),
                   [&](const std::string& check, const std::string& condition) {
                     table.checks.push_back({check, FromCatalog(condition)});
                   })) {
      break;
    }
  }
  for (ColumnDefinition& column : table.columns) {
    if (!column.is_identity) continue;
    TryEachRow(Source(), "show create table " + MySqlTable(table.name),
               [&](const std::string&, const std::string& definition) {
                 column.next_value = NextValue(definition);
               });
    const std::size_t end = column.attributes.find(" Identity") + 9;
    if (!column.next_value.empty()) {
      column.attributes.insert(end, fmt::format("({},1)", column.next_value));
    }
  }
}

void MySqlToMsSql::CompleteTable(const TableDefinition& table) {
  for (const CheckDefinition& check : table.checks) {
    const std::string what = "check " + check.name;
    const std::string condition = CheckText(check.condition);
    if (condition.empty()) {
      Host().Inform(fmt::format("Table {}: {} was left off: SQL Server reads {} otherwise",
                                table.name.Text(), what, check.condition));
      continue;
    }
    // A check of a column bears its column's name, which is no name of its own.
    const std::string name =
        table.Find(check.name) != nullptr ? "" : "constraint " + MsSqlName(DestName(check.name));
    ExecuteOrNote(table,
                  fmt::format("alter table {} add {} check ({})", MsSqlTable(table.dest_name), name,
                              DestNames(condition)),
                  what);
  }
  if (!table.comment.empty()) AddComment(table, "", table.comment);
  for (const ColumnDefinition& column : table.columns) {
    if (!column.comment.empty()) AddComment(table, column.name, column.comment);
  }
  if (table.Identity() != nullptr) Reseed(table);
}

void MySqlToMsSql::AddComment(const TableDefinition& table, const std::string& column,
                              const std::string& comment) {
  std::string statement = fmt::format(
      "declare @schema sysname; set @schema = object_schema_name(object_id(N'{}')); "
      "exec sp_addextendedproperty N'MS_Description', N'{}', N'schema', @schema, N'table', N'{}'",
      SqlText(MsSqlTable(table.dest_name)), SqlText(comment), SqlText(table.dest_name.name));
  if (!column.empty()) {
    statement += fmt::format(", N'column', N'{}'", SqlText(DestName(column)));
  }
  ExecuteOrNote(table, statement,
                column.empty() ? "the table's comment" : "the comment of column " + column);
}

void MySqlToMsSql::Reseed(const TableDefinition& table) {
  const std::string& next_value = table.Identity()->next_value;
  std::uint64_t next = 0;
  std::from_chars(next_value.data(), next_value.data() + next_value.size(), next);
  if (next == 0) return;
  // An empty table gives its seed first, whatever it is told here.
  const std::string name = MsSqlTable(table.dest_name);
  ExecuteOrNote(table,
                fmt::format("if exists(select 1 from {}) dbcc checkident (N'{}', reseed, {})", name,
                            SqlText(name), next - 1),
                "the next identity value " + next_value);
}

}  // namespace dorvane::to_mssql
