#include "mysql/to_mssql/columns.h"

#include <fmt/format.h>

#include <algorithm>

#include "endpoint/date_time_text.h"
#include "endpoint/literal_text.h"
#include "endpoint/number_literal.h"
#include "mysql/to_mssql/literals.h"
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
    {DataType::SmallInt, "int"},          {DataType::Integer, "BigInt"},
    {DataType::Single, "real"},           {DataType::Double, "float"},
    {DataType::Date, "datetime"},         {DataType::Boolean, "bit"},
    {DataType::TinyInt, "Tinyint"},       {DataType::UnsignedTinyInt, "Tinyint"},
    {DataType::UnsignedSmallInt, "int"},  {DataType::UnsignedInt, "BigInt"},
    {DataType::BigInt, "BigInt"},         {DataType::UnsignedBigInt, "numeric(20,0)"},
    {DataType::Guid, "uniqueidentifier"}, {DataType::DBDate, "datetime"},
    {DataType::DBTime, "datetime"},       {DataType::DBTimeStamp, "datetime"},
    {DataType::LongVarChar, "text"},      {DataType::LongVarWChar, "nvarchar(max)"},
    {DataType::LongVarBinary, "image"},
};

// Characters or bytes that a column of the sized types can hold.
constexpr std::int64_t kMostBytes = 8000;
constexpr std::int64_t kMostWideCharacters = 4000;

std::string Sized(std::string_view word, std::int64_t size) {
  return fmt::format("{}({})", word, size);
}

/// `word`(size), or `wide_word`(max) where that is not enough.
std::string SizedOrMax(std::string_view word, std::string_view wide_word, std::int64_t size,
                       std::int64_t most) {
  return size > most ? fmt::format("{}(max)", wide_word) : Sized(word, size);
}

/// Empty for a type that SQL Server has no text for.
std::string TypeOf(const ado::Column& col) {
  switch (col.type) {
    case DataType::Char:
    case DataType::VarChar:
      return SizedOrMax("varchar", "varchar", col.defined_size, kMostBytes);
    case DataType::WChar:
    case DataType::VarWChar:
      return SizedOrMax("nvarchar", "nvarchar", col.defined_size, kMostWideCharacters);
    case DataType::Binary:
      return SizedOrMax("binary", "varbinary", col.defined_size, kMostBytes);
    case DataType::VarBinary:
      return SizedOrMax("varbinary", "varbinary", col.defined_size, kMostBytes);
    case DataType::Currency:
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return fmt::format("numeric({},{})", col.precision, col.numeric_scale);
    default:
      break;
  }
  for (const TypeText& row : kPlainTypes) {
    if (row.type == col.type) return std::string(row.text);
  }
  return {};
}

bool IsTime(DataType type) {
  return type == DataType::Date || type == DataType::DBDate || type == DataType::DBTime ||
         type == DataType::DBTimeStamp;
}

/// CURRENT_TIMESTAMP and its kin, with or without parentheses and a precision.
bool IsCurrentTime(std::string_view value) {
  const std::string_view word = value.substr(0, value.find('('));
  const std::string_view arguments = value.substr(word.size());
  const bool has_digits_only =
      arguments.empty() || (arguments.size() >= 2 && arguments.back() == ')' &&
                            arguments.find_first_not_of("0123456789", 1) == arguments.size() - 1);
  constexpr std::string_view kWords[] = {"current_timestamp", "now", "getdate", "localtimestamp",
                                         "localtime"};
  return has_digits_only && std::ranges::any_of(kWords, [word](std::string_view known) {
           return text::EqualsIgnoringCase(word, known);
         });
}

/// The digits of a bit literal b'...', or none.
std::optional<std::string_view> BitDigits(std::string_view value) {
  if (value.size() < 3 || value.substr(0, 2) != "b'" || value.back() != '\'') return std::nullopt;
  return value.substr(2, value.size() - 3);
}

std::string BytesOfBits(std::string_view digits, std::int64_t size) {
  std::string bytes(static_cast<std::size_t>(std::max<std::int64_t>(size, 1)), '\0');
  const std::size_t bits = std::min(digits.size(), 8 * bytes.size());
  for (std::size_t bit = 0; bit < bits; ++bit) {
    if (digits[digits.size() - 1 - bit] != '1') continue;
    char& byte = bytes[bytes.size() - 1 - bit / 8];
    byte = static_cast<char>(byte | (1 << (bit % 8)));
  }
  return bytes;
}

std::string TextLiteral(std::string_view text) {
  std::string literal;
  AppendTextLiteral(literal, text);
  return literal;
}

/// The literal of a default value, empty for a type without one. Throws RunTimeError for a value
/// that cannot be converted.
std::string DefaultLiteral(const ado::Column& col, const std::string& value) {
  switch (col.type) {
    case DataType::SmallInt:
    case DataType::Integer:
    case DataType::TinyInt:
    case DataType::UnsignedTinyInt:
    case DataType::UnsignedSmallInt:
    case DataType::UnsignedInt:
    case DataType::BigInt:
    case DataType::UnsignedBigInt:
      return text::IsNumeric(value) ? value : "'" + value + "'";
    case DataType::Single:
    case DataType::Double:
    case DataType::Currency:
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return NumberText(value);
    case DataType::Boolean: {
      const auto bits = BitDigits(value);
      return text::ParseBoolean(bits ? *bits : value) ? "1" : "0";
    }
    case DataType::Date:
    case DataType::DBDate:
    case DataType::DBTime:
    case DataType::DBTimeStamp:
      return DateLiteral(ParseDateTime(value));
    case DataType::Char:
    case DataType::VarChar:
    case DataType::LongVarChar:
    case DataType::WChar:
    case DataType::VarWChar:
    case DataType::LongVarWChar:
      return text::IsNumeric(value) ? value : TextLiteral(value);
    case DataType::Binary:
    case DataType::VarBinary:
    case DataType::LongVarBinary: {
      const auto bits = BitDigits(value);
      return HexCode(bits ? BytesOfBits(*bits, col.defined_size) : BinaryDefaultBytes(value));
    }
    default:
      return {};
  }
}

/// Empty when the column gets no default.
std::string DefaultOf(const ado::Column& col, const std::string& value) {
  if (value.empty()) return {};
  if (IsTime(col.type) && IsCurrentTime(value)) return "getdate()";
  // The catalog knows an expression from a text that looks like one.
  if (!col.default_value) return {};
  return DefaultLiteral(col, value);
}

}  // namespace

std::vector<ColumnDescription> ShowColumns(ado::Connection& source,
                                           const std::string& table_reference) {
  std::vector<ColumnDescription> descriptions;
  ado::Recordset rows = source.Execute("show columns from " + table_reference);
  for (; !rows.AtEnd(); rows.MoveNext()) {
    descriptions.push_back({rows.Field("Field").Text(), rows.Field("Null").Text(),
                            rows.Field("Key").Text(), rows.Field("Default").Text(),
                            rows.Field("Extra").Text()});
  }
  return descriptions;
}

ColumnDefinition GetColumnType(const ado::Column& col,
                               const std::vector<ColumnDescription>& descriptions) {
  const auto found = std::ranges::find(descriptions, col.name, &ColumnDescription::field);
  if (found == descriptions.end()) {
    throw RunTimeError(ado::kNoCurrentRecord, "MySql", "No description of column " + col.name);
  }
  ColumnDefinition definition{.name = col.name, .type = TypeOf(col)};
  definition.facts.nullable = found->null.starts_with('Y');
  const std::string_view extra = found->extra;
  definition.is_identity = extra.substr(0, extra.find_first_of(" ,")) == "auto_increment";
  definition.is_invisible = extra.find("INVISIBLE") != std::string_view::npos;
  if (definition.is_identity) definition.attributes += " Identity";
  if (found->key == "UNI") definition.attributes += " Unique";
  definition.facts.default_text = DefaultOf(col, found->default_value);
  definition.default_clause = definition.facts.default_text;
  return definition;
}

}  // namespace dorvane
