#include "mysql/to_mssql/literal_shape.h"

#include <algorithm>

#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

using Kind = LiteralShape::Kind;

// Digits of the server's widest decimal, and of those that become a float of the same value
// whatever their scale.
constexpr int kMostDecimalDigits = 38;
constexpr int kMostFloatDigits = 15;
// Characters that a text keeps when the server makes it Unicode text of the sized type.
constexpr std::size_t kMostWideCharacters = 4000;

bool IsNumber(ado::DataType type) {
  using ado::DataType;
  constexpr DataType kNumbers[] = {
      DataType::SmallInt,         DataType::Integer,     DataType::Single,
      DataType::Double,           DataType::Currency,    DataType::Boolean,
      DataType::Decimal,          DataType::TinyInt,     DataType::UnsignedTinyInt,
      DataType::UnsignedSmallInt, DataType::UnsignedInt, DataType::BigInt,
      DataType::UnsignedBigInt,   DataType::Numeric,     DataType::VarNumeric,
  };
  return std::ranges::find(kNumbers, type) != std::end(kNumbers);
}

bool IsText(Kind kind) {
  return kind == Kind::Text || kind == Kind::LongText || kind == Kind::NationalText;
}

/// The shape of a list of two kinds of text; none when one of them would be cut.
bool JoinTexts(LiteralShape& shape, const LiteralShape& other) {
  if (shape.kind == other.kind) return true;
  const auto has = [&](Kind kind) { return shape.kind == kind || other.kind == kind; };
  if (has(Kind::LongText) && has(Kind::NationalText)) return false;
  shape = {has(Kind::LongText) ? Kind::LongText : Kind::NationalText};
  return true;
}

LiteralShape ShapeOfNumber(std::string_view literal) {
  literal.remove_prefix(std::min(literal.find_first_not_of(" -"), literal.size()));
  if (literal.empty() || !(text::IsDigit(literal.front()) || literal.front() == '.')) {
    return {Kind::Other};
  }
  LiteralShape shape{Kind::Integer};
  for (const char c : literal) {
    if (text::IsDigit(c)) {
      ++(shape.kind == Kind::Integer ? shape.integer_digits : shape.scale);
    } else if (c == '.') {
      shape.kind = Kind::Decimal;
    } else if (c == 'e') {
      return {Kind::Float};
    } else {
      return {Kind::Other};
    }
  }
  return shape.kind == Kind::Integer ? LiteralShape{Kind::Integer} : shape;
}

}  // namespace

LiteralShape ShapeOf(std::string_view literal) {
  if (literal == "NULL") return {};
  if (literal.starts_with('\'')) {
    return {literal.size() <= kMostWideCharacters ? Kind::Text : Kind::LongText};
  }
  if (literal.starts_with("N'")) return {Kind::NationalText};
  if (literal.starts_with("0x")) return {Kind::Binary};
  return ShapeOfNumber(literal);
}

bool Join(LiteralShape& shape, const LiteralShape& other, ado::DataType type) {
  if (other.kind == Kind::Null) return true;
  if (shape.kind == Kind::Null) {
    shape = other;
    return true;
  }
  // A column of text or bytes shows the scale and the width of the numbers that it is given.
  const auto is_number = [](Kind kind) {
    return kind == Kind::Integer || kind == Kind::Decimal || kind == Kind::Float;
  };
  if (is_number(shape.kind) && !IsNumber(type)) return false;
  // Beside a float the server turns a decimal into a float, as a float column does.
  const bool has_float = shape.kind == Kind::Float || other.kind == Kind::Float;
  const bool has_decimal = shape.kind == Kind::Decimal || other.kind == Kind::Decimal;
  if (has_float && has_decimal && type == ado::DataType::Double) {
    shape = {Kind::Float};
    return true;
  }
  if (IsText(shape.kind) && IsText(other.kind)) return JoinTexts(shape, other);
  if (shape.kind != other.kind || shape.kind == Kind::Other) return false;
  if (shape.kind != Kind::Decimal) return true;

  const int integer_digits = std::max(shape.integer_digits, other.integer_digits);
  const int scale = std::max(shape.scale, other.scale);
  const bool is_float_column = type == ado::DataType::Double || type == ado::DataType::Single;
  const int most = is_float_column ? kMostFloatDigits : kMostDecimalDigits;
  if (integer_digits + scale > most) return false;
  shape.integer_digits = integer_digits;
  shape.scale = scale;
  return true;
}

}  // namespace dorvane::to_mssql
