#include "platform/ado/odbc/described_column.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/ado/odbc/default_expression.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

/// An identifier's text as its values have it.
std::string Braced(std::string guid) {
  constexpr std::size_t kBareSize = 36;
  std::ranges::transform(guid, guid.begin(), [](char c) { return text::ToUpper(c); });
  return guid.size() == kBareSize ? "{" + guid + "}" : guid;
}

/// "(NULL)", which is no other default than none.
bool IsNullLiteral(std::string_view expression) {
  return text::EqualsIgnoringCase(text::Trim(expression, "() "), "null");
}

}  // namespace

Column DescribeColumn(const ColumnDescription& description) {
  const ServerType& type = FindServerType(description.type_name, description.type_code);
  Column column;
  static_cast<FieldInfo&>(column) = DescribeField(type, description.size);
  column.name = description.name;
  if (type.is_fixed) column.attributes |= kColumnFixed;
  if (description.is_nullable) column.attributes |= kColumnNullable;
  if (const auto& expression = description.default_expression) {
    column.default_value = DefaultValue(*expression);
    if (type.fetch_type == FetchType::Guid && column.default_value) {
      column.default_value = Braced(*std::move(column.default_value));
    }
    if (!column.default_value && !IsNullLiteral(*expression)) column.other_default = *expression;
  }
  return column;
}

}  // namespace dorvane::ado::odbc
