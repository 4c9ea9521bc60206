#include "mssql/to_mysql/row_question.h"

#include <fmt/format.h>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "endpoint/row_identity.h"
#include "mssql/to_mysql/literals.h"

namespace dorvane::to_mysql {

namespace {

/// The first comparison finds the row by its index, the second one is exact. Trailing blanks count
/// in some collations.
std::string EqualText(const std::string& column, std::string_view text, bool is_padded) {
  const std::string exact = HexCode(text);
  // A CHAR column gives its values without their trailing blanks.
  const std::string trimmed =
      HexCode(is_padded ? text.substr(0, text.find_last_not_of(' ') + 1) : text);
  return fmt::format(
      "{0} in (_utf8mb4 {1}, _utf8mb4 {2}) and cast(convert({0} using utf8mb4) as binary) in ({1}, "
      "{2})",
      column, exact, trimmed);
}

}  // namespace

std::string RowQuestion(const ado::TableName& table, const std::vector<std::string>& columns,
                        const std::vector<ado::FieldInfo>& fields,
                        const std::vector<std::size_t>& positions,
                        std::span<const ado::Value> row) {
  std::string condition = "true";
  for (const std::size_t i : positions) {
    const std::string column = MySqlName(columns[i]);
    if (const auto* text = std::get_if<std::string_view>(&row[i])) {
      condition += " and ";
      condition += IsFoldedType(fields[i].type)
                       ? EqualText(column, *text, IsPaddedType(fields[i].type))
                       : fmt::format("{} = '{}'", column, Quote(*text));
    } else if (const auto* binary = std::get_if<ado::Binary>(&row[i])) {
      condition += fmt::format(" and {} = {}", column, HexCode(binary->bytes));
    }
  }
  return fmt::format("select 1 from {} where {} limit 1", MySqlTable(table), condition);
}

}  // namespace dorvane::to_mysql
