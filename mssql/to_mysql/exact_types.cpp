#include "mssql/to_mysql/exact_types.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace dorvane::to_mysql {

namespace {

using ado::DataType;

struct TypeText {
  DataType type;
  std::string_view text;
  std::string_view change = {};
};

// The types whose text does not depend on the column's measures.
constexpr auto kPlainTypes = std::to_array<TypeText>({
    {DataType::UnsignedTinyInt, "TINYINT UNSIGNED"},
    {DataType::Boolean, "TINYINT(1)"},
    {DataType::SmallInt, "SMALLINT"},
    {DataType::Integer, "INT"},
    {DataType::BigInt, "BIGINT"},
    {DataType::Single, "FLOAT"},
    {DataType::Double, "DOUBLE"},
    {DataType::DBDate, "DATE"},
    {DataType::LongVarChar, "LONGTEXT"},
    {DataType::LongVarWChar, "LONGTEXT"},
    {DataType::LongVarBinary, "LONGBLOB"},
    {DataType::Guid, "CHAR(36) CHARACTER SET ascii"},
    {DataType::Variant, "LONGTEXT", "became LONGTEXT with the text of its values"},
});

constexpr std::string_view kWithOffset = "datetimeoffset";
constexpr std::string_view kObject = "geography";  // stands for every type that is one

constexpr std::int64_t kMostFixedSize = 255;  // of CHAR and BINARY
constexpr std::int64_t kMostDeclared = 8000;  // a larger size is that of (max)
constexpr int kMostFraction = 6;              // digits of a second

std::string Sized(std::string_view fixed, std::string_view varying, std::int64_t size) {
  return fmt::format("{}({})", size <= kMostFixedSize ? fixed : varying, size);
}

std::string VaryingOrLong(std::string_view word, std::string_view long_word, std::int64_t size) {
  return size > kMostDeclared ? std::string(long_word) : fmt::format("{}({})", word, size);
}

ExactType MomentType(std::string_view word, std::string_view fine_text, int digits, bool is_fine) {
  if (is_fine) {
    const std::string_view change =
        fine_text == "CHAR(16)" ? "became CHAR(16), since MySQL keeps six digits of a second"
                                : "became CHAR(27), since MySQL keeps six digits of a second";
    return {std::string(fine_text), digits, change};
  }
  digits = std::min(digits, kMostFraction);
  return {digits > 0 ? fmt::format("{}({})", word, digits) : std::string(word), digits};
}

}  // namespace

ExactType ExactTypeOf(const ado::Column& col, bool is_fine) {
  if (HasOffset(col)) return {"VARCHAR(34)"};
  if (IsObject(col)) return {"LONGTEXT"};
  switch (col.type) {
    case DataType::Char:
    case DataType::WChar:
      return {Sized("CHAR", "VARCHAR", col.defined_size)};
    case DataType::VarChar:
    case DataType::VarWChar:
      return {VaryingOrLong("VARCHAR", "LONGTEXT", col.defined_size)};
    case DataType::Binary:
      return {Sized("BINARY", "VARBINARY", col.defined_size)};
    case DataType::VarBinary:
      return {VaryingOrLong("VARBINARY", "LONGBLOB", col.defined_size)};
    case DataType::Currency:
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return {fmt::format("DECIMAL({},{})", col.precision, col.numeric_scale)};
    case DataType::DBTimeStamp:
      return MomentType("DATETIME", "CHAR(27)", col.numeric_scale, is_fine);
    case DataType::DBTime:
      return MomentType("TIME", "CHAR(16)", col.numeric_scale, is_fine);
    default:
      break;
  }
  const auto* plain = std::ranges::find(kPlainTypes, col.type, &TypeText::type);
  if (plain == kPlainTypes.end()) return {};
  return {std::string(plain->text), 0, plain->change};
}

bool MayBeFine(const ado::Column& col) {
  const bool has_time = col.type == DataType::DBTimeStamp || col.type == DataType::DBTime;
  return has_time && col.numeric_scale > kMostFraction;
}

bool IsObject(const ado::FieldInfo& field) {
  return field.server_type == kObject;
}

bool HasOffset(const ado::FieldInfo& field) {
  return field.server_type == kWithOffset;
}

}  // namespace dorvane::to_mysql
