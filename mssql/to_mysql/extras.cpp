// What a table of the exact mapping has beside columns, keys and rows: comments and checks.

#include <fmt/format.h>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mssql/to_mysql/check_text.h"
#include "mssql/to_mysql/conversion.h"
#include "mssql/to_mysql/literals.h"
#include "platform/text/utf8.h"

namespace dorvane::to_mysql {

namespace {

// Characters of a comment.
constexpr std::size_t kMostOfColumn = 1024;
constexpr std::size_t kMostOfTable = 2048;

/// The comment as MySQL takes it; what is cut off is noted.
std::string Shortened(const std::string& comment, std::size_t most, std::string_view of,
                      std::vector<std::string>& notes) {
  std::string_view rest = comment;
  for (std::size_t i = 0; i < most && !rest.empty(); ++i) text::TakeCodePoint(rest);
  if (rest.empty()) return comment;
  notes.push_back(fmt::format("the comment of {} was cut to {} characters", of, most));
  return comment.substr(0, comment.size() - rest.size());
}

}  // namespace

void MsSqlToMySql::DescribeExtras(TableDefinition& table) {
  const std::string id = fmt::format("object_id('{}')", SqlText(SourceName(table.name)));
  // A server without these views has none of these things either.
  TryEachRow(
      Source(),
      "select coalesce(c.name, ''), convert(nvarchar(3750), p.value) from "
      "sys.extended_properties p left join sys.columns c on c.object_id = p.major_id and "
      "c.column_id = p.minor_id where p.class = 1 and p.name = 'MS_Description' and p.major_id = " +
          id,
      [&](const std::string& name, const std::string& text) {
        ColumnDefinition* column = table.Find(name);
        if (column != nullptr) {
          column->comment = Shortened(text, kMostOfColumn, "column " + name, column->notes);
        } else if (name.empty()) {
          table.comment = Shortened(text, kMostOfTable, "the table", table.notes);
        }
      });
  TryEachRow(Source(),
             "select name, definition from sys.check_constraints where is_disabled = 0 and "
             "parent_object_id = " +
                 id + " order by name",
             [&](const std::string& name, const std::string& condition) {
               table.checks.push_back({name, condition});
             });
}

std::string MsSqlToMySql::CommentClause(const std::string& comment) {
  return comment.empty() ? "" : fmt::format(" COMMENT '{}'", Quote(comment));
}

void MsSqlToMySql::CompleteTable(const TableDefinition& table) {
  const std::string name = MySqlTable(table.dest_name);
  const auto dest_name = [this](std::string_view column) { return MySqlName(DestName(column)); };
  for (const CheckDefinition& check : table.checks) {
    const std::string what = "check " + check.name;
    const std::string condition = CheckText(check.condition, dest_name);
    if (condition.empty()) {
      Host().Inform(fmt::format("Table {}: {} was left off: MySQL reads {} otherwise",
                                table.name.Text(), what, check.condition));
      continue;
    }
    ExecuteOrNote(table,
                  fmt::format("ALTER TABLE {} ADD CONSTRAINT {} CHECK {}", name,
                              MySqlName(DestName(check.name)), condition),
                  what);
  }
}

}  // namespace dorvane::to_mysql
