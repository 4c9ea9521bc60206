#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "endpoint/names.h"
#include "mysql/to_mssql/columns.h"
#include "mysql/to_mssql/conversion.h"

namespace dorvane::to_mssql {

namespace {

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

std::string KeyColumns(const ado::Index& index) {
  std::string columns;
  for (const std::string& column : index.columns) {
    columns += (columns.empty() ? "" : ", ") + MsSqlName(column);
  }
  return columns;
}

}  // namespace

// Without its identity, whose values come with the rows in any case.
std::vector<std::string> MySqlToMsSql::CopyOfExisting(const ado::TableName& dest_name,
                                                      const std::string& copy) {
  std::vector<ado::Column> columns = Destination().Columns(dest_name);
  std::erase_if(columns, [](const ado::Column& column) { return !IsFilled(column); });
  std::string definition;
  for (const ado::Column& column : columns) {
    const bool is_text = !column.kind.collation.empty();
    definition +=
        fmt::format("{}{} {}{}{}", definition.empty() ? "" : ", ", MsSqlName(column.name),
                    TypeOf(column), is_text ? " collate " + column.kind.collation : "",
                    (column.attributes & ado::kColumnNullable) != 0 ? " null" : " not null");
  }
  std::vector<std::string> statements{fmt::format("create table {} ({})", copy, definition)};
  for (const ado::Index& index : Destination().Indexes(dest_name)) {
    const bool tells_rows_apart = index.primary_key || (index.unique && index.filter.empty());
    const bool is_filled = std::ranges::all_of(index.columns, [&](const std::string& name) {
      return std::ranges::find(columns, name, &ado::Column::name) != columns.end();
    });
    if (!tells_rows_apart || !is_filled) continue;
    statements.push_back(fmt::format("alter table {} add {} ({})", copy,
                                     index.primary_key ? "primary key" : "unique",
                                     KeyColumns(index)));
  }
  return statements;
}

/// By a key that is longer in them than an index takes.
bool MySqlToMsSql::MayRefuseRows(const TableDefinition& table,
                                 const std::vector<ado::FieldInfo>& /*fields*/) {
  const auto may_be_long = [&](const ado::Index& index) {
    std::int64_t bytes = 0;
    for (const std::string& name : index.columns) {
      const ColumnDefinition* column = table.Find(name);
      if (column != nullptr) bytes += KeyBytes(column->type).value_or(0);
    }
    return bytes > kMostKeyBytes;
  };
  return std::ranges::any_of(SourceCatalog().TableByName(table.name.Text()).Indexes(), may_be_long);
}

}  // namespace dorvane::to_mssql
