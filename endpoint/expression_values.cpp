#include "endpoint/expression_values.h"

#include <algorithm>
#include <utility>

namespace dorvane {

namespace {

// Beyond these one server or the other rounds in the middle of an expression.
constexpr int kMostDigits = 38;
constexpr int kMostScale = 30;
constexpr int kIntegerDigits = 19;
constexpr int kMoneyScale = 4;

bool IsExactNumber(ValueKind kind) {
  return kind == ValueKind::Integer || kind == ValueKind::Decimal || kind == ValueKind::Money;
}

/// The kind of a number made of two; integers give way to the others, and money to decimals.
ValueKind Wider(ValueKind a, ValueKind b) {
  for (const ValueKind kind : {ValueKind::Double, ValueKind::Decimal, ValueKind::Money}) {
    if (a == kind || b == kind) return kind;
  }
  return ValueKind::Integer;
}

Operand Checked(Operand number) {
  if (number.kind == ValueKind::Integer) number.digits = std::min(number.digits, kIntegerDigits);
  Expect(number.digits <= kMostDigits && number.scale <= kMostScale);
  return number;
}

bool IsZero(std::string_view number) {
  return number.find_first_not_of("0.") == std::string_view::npos;
}

bool IsCount(const Operand& value) {
  return value.is_literal && value.kind == ValueKind::Integer && !IsZero(value.text);
}

/// For a value that gets the type of another one.
void ExpectFits(const Operand& value, const Operand& type) {
  const bool are_numbers = IsNumber(type.kind) && IsExactNumber(value.kind);
  Expect(are_numbers || value.kind == type.kind);
  switch (type.kind) {
    case ValueKind::Integer:
    case ValueKind::Decimal:
    case ValueKind::Money:
      return Expect(value.scale <= type.scale || IsZero(value.text));
    case ValueKind::Text:
      return Expect(value.digits <= type.digits);
    default:
      return Expect(type.kind == ValueKind::Double || type.kind == ValueKind::Date);
  }
}

Operand JointText(std::span<const Operand> texts) {
  Operand result{.kind = ValueKind::Text};
  for (const Operand& text : texts) {
    Expect(text.kind == ValueKind::Text);
    result.digits += text.digits;
  }
  return result;
}

Operand OneOf(std::span<const Operand> values) {
  Operand result{.kind = ValueKind::Null};
  for (const Operand& value : values) result = Unified(result, value);
  Expect(result.kind != ValueKind::Null && result.kind != ValueKind::Condition);
  return result;
}

Operand WholePart(Operand number) {
  number.digits -= std::exchange(number.scale, 0) - 1;
  return number;
}

}  // namespace

void Expect(bool holds) {
  if (!holds) throw NotTranslatable();
}

bool IsNumber(ValueKind kind) {
  return IsExactNumber(kind) || kind == ValueKind::Double;
}

void ExpectComparable(const Operand& a, const Operand& b) {
  const bool are_dates = a.kind == ValueKind::Date && b.kind == ValueKind::Date;
  Expect(are_dates || (IsNumber(a.kind) && IsNumber(b.kind)));
}

Operand Unified(const Operand& a, const Operand& b) {
  if (a.kind == ValueKind::Null) return b;
  if (b.kind == ValueKind::Null) return a;
  const bool are_numbers = IsNumber(a.kind) && IsNumber(b.kind);
  Expect(are_numbers || (a.kind == b.kind && a.kind != ValueKind::Other));
  const int scale = std::max(a.scale, b.scale);
  const int whole = std::max(a.digits - a.scale, b.digits - b.scale);
  return {.kind = are_numbers ? Wider(a.kind, b.kind) : a.kind,
          .digits = whole + scale,
          .scale = scale};
}

Operand Calculated(const Operand& left, std::string_view sign, const Operand& right) {
  Expect(IsNumber(left.kind) && IsNumber(right.kind));
  Operand result = Unified(left, right);
  if (result.kind == ValueKind::Double) return result;
  ++result.digits;
  if (sign == "*") {
    // One server alone rounds a product of money to four digits.
    Expect(left.kind != ValueKind::Money || right.kind != ValueKind::Money);
    result.digits = left.digits + right.digits + 1;
    result.scale = left.scale + right.scale;
  }
  return Checked(std::move(result));
}

Operand ResultOf(Arguments takes, std::span<const Operand> arguments) {
  const Operand& first = arguments[0];
  const auto expect = [&](std::size_t count, bool is_kind) {
    Expect(arguments.size() == count && is_kind);
  };
  switch (takes) {
    case Arguments::Number:
      expect(1, IsNumber(first.kind));
      return first;
    case Arguments::Fraction:
      expect(1, IsNumber(first.kind));
      return WholePart(first);
    case Arguments::Text:
      expect(1, first.kind == ValueKind::Text);
      return first;
    case Arguments::TextAndCounts:
      Expect(first.kind == ValueKind::Text && arguments.size() >= 2);
      Expect(std::ranges::all_of(arguments.subspan(1), IsCount));
      return first;
    case Arguments::Date:
      expect(1, first.kind == ValueKind::Date);
      return {.kind = ValueKind::Integer, .digits = 4};
    case Arguments::Texts:
      return JointText(arguments);
    case Arguments::Alternatives:
      return OneOf(arguments);
    case Arguments::Replacement:
      Expect(arguments.size() == 2);
      ExpectFits(arguments[1], first);
      return first;
    case Arguments::Choice:
      expect(3, first.kind == ValueKind::Condition);
      return OneOf(arguments.subspan(1));
  }
  throw NotTranslatable();
}

Operand NumberLiteral(const std::string& text) {
  Operand number{.text = text, .kind = ValueKind::Integer, .is_literal = true};
  if (text.find('e') != std::string::npos) {
    number.kind = ValueKind::Double;
    return number;
  }
  number.digits = static_cast<int>(text.size());
  if (const auto point = text.find('.'); point != std::string::npos) {
    number.kind = ValueKind::Decimal;
    --number.digits;
    number.scale = static_cast<int>(text.size() - point - 1);
  }
  Expect(number.kind == ValueKind::Decimal || number.digits < kIntegerDigits);
  return Checked(std::move(number));
}

bool CanBeStoredAs(const Operand& value, ValueKind column) {
  switch (column) {
    case ValueKind::Double:
      return IsNumber(value.kind);
    case ValueKind::Decimal:
      return IsExactNumber(value.kind);
    case ValueKind::Money:
      return IsExactNumber(value.kind) && value.scale <= kMoneyScale;
    case ValueKind::Integer:
    case ValueKind::Text:
    case ValueKind::Date:
      return value.kind == column;
    default:
      return false;
  }
}

}  // namespace dorvane
