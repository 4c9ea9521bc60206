#include "mysql/to_mssql/row_question.h"

#include <fmt/format.h>

#include "endpoint/names.h"
#include "endpoint/row_identity.h"
#include "mysql/to_mssql/literals.h"

namespace dorvane::to_mssql {

namespace {

/// The characters of a text as bytes, which no collation folds.
std::string Bytes(std::string_view text, bool is_padded) {
  // A CHAR of MySQL comes without the blanks that a char of the destination has.
  return fmt::format("cast(cast({} as nvarchar(4000)) as varbinary(8000))",
                     is_padded ? fmt::format("rtrim({})", text) : std::string(text));
}

/// The first comparison finds the row by its index, the second one is exact.
std::string EqualText(const std::string& column, std::string_view literal, bool is_padded) {
  return fmt::format("{} = {} and {} = {}", column, literal, Bytes(column, is_padded),
                     Bytes(literal, is_padded));
}

}  // namespace

std::string RowQuestion(const ado::TableName& table, const std::vector<std::string>& columns,
                        const std::vector<ado::FieldInfo>& fields,
                        const std::vector<std::size_t>& positions,
                        std::span<const ado::Value> row) {
  std::string condition = "1 = 1";
  for (const std::size_t i : positions) {
    if (ado::IsNull(row[i])) continue;
    std::string literal;
    AppendDataValue(literal, row[i], {});
    const std::string column = MsSqlName(columns[i]);
    condition += " and ";
    condition += IsFoldedType(fields[i].type)
                     ? EqualText(column, literal, IsPaddedType(fields[i].type))
                     : fmt::format("{} = {}", column, literal);
  }
  return fmt::format("select top 1 1 from {} where {}", MsSqlTable(table), condition);
}

}  // namespace dorvane::to_mssql
