#include "mssql/to_mysql/columns.h"

#include <fmt/format.h>

#include <algorithm>

#include "endpoint/date_time_text.h"
#include "endpoint/literal_text.h"
#include "endpoint/number_literal.h"
#include "mssql/to_mysql/literals.h"
#include "platform/text/number_text.h"

namespace dorvane {

namespace {

using ado::DataType;

struct TypeText {
  DataType type;
  std::string_view text;
};

// The types whose text does not depend on the column's measures.
constexpr TypeText kPlainTypes[] = {
    {DataType::SmallInt, "SMALLINT(6)"},
    {DataType::Integer, "INT"},
    {DataType::Single, "FLOAT"},
    {DataType::Double, "DOUBLE"},
    {DataType::Currency, "DECIMAL(19,4)"},
    {DataType::Date, "DATETIME"},
    {DataType::BStr, "LONGTEXT"},
    {DataType::Boolean, "TINYINT(1)"},
    {DataType::Variant, "LONGBLOB"},
    {DataType::TinyInt, "TINYINT(1)"},
    {DataType::UnsignedTinyInt, "TINYINT(1)"},
    {DataType::UnsignedSmallInt, "INT"},
    {DataType::UnsignedInt, "BIGINT UNSIGNED"},
    {DataType::BigInt, "BIGINT"},
    {DataType::UnsignedBigInt, "BIGINT UNSIGNED"},
    {DataType::Guid, "LONGBLOB"},
    {DataType::Binary, "BLOB"},
    {DataType::DBDate, "DATE"},
    {DataType::LongVarChar, "LONGTEXT"},
    {DataType::LongVarWChar, "LONGTEXT"},
    {DataType::VarBinary, "BLOB"},
    {DataType::LongVarBinary, "LONGBLOB"},
};

constexpr std::int64_t kTextFromSize = 256;

std::string SizedText(std::string_view word, std::int64_t size) {
  return size < kTextFromSize ? fmt::format("{}({})", word, size) : "Text";
}

/// Empty for a type that MySQL has no text for.
std::string TypeOf(const ado::Column& col) {
  switch (col.type) {
    case DataType::Char:
    case DataType::WChar:
      return SizedText("varchar", col.defined_size);
    case DataType::VarChar:
    case DataType::VarWChar:
      return SizedText("VARCHAR", col.defined_size);
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return fmt::format("DECIMAL({},{})", col.precision, col.numeric_scale);
    case DataType::DBTimeStamp:
      return FractionDigits(col) > 0 ? "DATETIME(6)" : "DATETIME";
    case DataType::DBTime:
      return FractionDigits(col) > 0 ? "TIME(6)" : "TIME";
    default:
      break;
  }
  for (const TypeText& row : kPlainTypes) {
    if (row.type == col.type) return std::string(row.text);
  }
  return {};
}

bool IsCurrentTime(std::string_view value) {
  return text::EqualsIgnoringCase(value, "getdate()");
}

std::string WithoutQuotes(std::string text) {
  std::erase(text, '\'');
  return text;
}

std::string Digits(std::string date_time) {
  std::erase_if(date_time, [](char c) { return c < '0' || c > '9'; });
  return date_time;
}

/// The literal of a default value, empty when the column gets none. Throws RunTimeError for a value
/// that cannot be converted.
std::string DefaultLiteral(DataType type, const std::string& value) {
  switch (type) {
    case DataType::SmallInt:
    case DataType::Integer:
    case DataType::TinyInt:
    case DataType::UnsignedTinyInt:
    case DataType::UnsignedSmallInt:
    case DataType::UnsignedInt:
    case DataType::BigInt:
    case DataType::UnsignedBigInt:
      return value;
    case DataType::Single:
    case DataType::Double:
    case DataType::Currency:
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return NumberText(value);
    case DataType::Boolean:
      return text::ParseBoolean(value) ? "1" : "0";
    case DataType::Date:
    case DataType::DBDate:
    case DataType::DBTime:
      if (IsCurrentTime(value)) return {};
      return "'" + DateTimeText(ParseDateTime(value)) + "'";
    case DataType::DBTimeStamp:
      if (IsCurrentTime(value)) return {};
      return Digits(DateTimeText(ParseDateTime(value)));
    case DataType::BStr:
    case DataType::Char:
    case DataType::WChar:
    case DataType::VarChar:
    case DataType::LongVarChar:
    case DataType::VarWChar:
    case DataType::LongVarWChar:
      if (text::IsNumeric(WithoutQuotes(value))) return value;
      return "'" + Quote(value) + "'";
    case DataType::Guid:
      return HexCodeGUID(value);
    case DataType::VarBinary:
    case DataType::LongVarBinary:
      return HexCode(BinaryDefaultBytes(value));
    default:
      return {};
  }
}

}  // namespace

ColumnDefinition GetColumnType(const ado::Column& col, const std::string& identity_column) {
  ColumnDefinition definition{.name = col.name, .type = TypeOf(col)};
  definition.facts.nullable = (col.attributes & ado::kColumnNullable) != 0;
  definition.facts.fraction_digits = FractionDigits(col);
  definition.is_identity = !identity_column.empty() && identity_column == col.name;
  if (definition.is_identity) definition.attributes = " primary key auto_increment";
  if (col.default_value) {
    definition.facts.default_text = DefaultLiteral(col.type, *col.default_value);
    definition.default_clause = definition.facts.default_text;
  }
  return definition;
}

}  // namespace dorvane
