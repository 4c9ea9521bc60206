#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "sandbox/values/convert.h"
#include "sandbox/values/convert_parts.h"
#include "sandbox/values/decimal.h"
#include "sandbox/values/errors.h"

namespace sandbox {
namespace conversion {

namespace {

struct IntegerRange {
  SqlType type;
  std::int64_t low, high;
  const char* storage_name;  // in message 244
};
constexpr std::array kIntegerRanges{
    IntegerRange{SqlType::TinyInt, 0, 255, "INT1"},
    IntegerRange{SqlType::SmallInt, INT16_MIN, INT16_MAX, "INT2"},
    IntegerRange{SqlType::Int, INT32_MIN, INT32_MAX, "INT4"},
    IntegerRange{SqlType::BigInt, INT64_MIN, INT64_MAX, "INT8"},
};

const IntegerRange& RangeOf(SqlType type) {
  return kIntegerRanges[static_cast<std::size_t>(type) -
                        static_cast<std::size_t>(SqlType::TinyInt)];
}

std::int64_t FromLittleBytes(std::string_view bytes, std::size_t size) {
  std::uint64_t number = 0;  // binary converts from its last bytes, highest first
  if (bytes.size() > size) bytes.remove_prefix(bytes.size() - size);
  for (const char c : bytes) number = number << 8 | static_cast<unsigned char>(c);
  if (size == 4) return static_cast<std::int32_t>(number);
  if (size == 2) return static_cast<std::int16_t>(number);
  return static_cast<std::int64_t>(number);
}

// The server speaks of numeric whatever the column was called.
const char* ExactName(const TypeInfo& type) {
  return type.type == SqlType::Decimal ? "numeric" : TypeName(type);
}

std::int64_t CheckRange(std::int64_t number, const TypeInfo& from, const TypeInfo& to) {
  const IntegerRange& range = RangeOf(to.type);
  if (number >= range.low && number <= range.high) return number;
  if (IsInteger(from.type) && to.type != SqlType::Int) Raise(220, TypeName(to), number);
  Raise(8115, IsInteger(from.type) ? "expression" : TypeName(from), TypeName(to));
}

std::int64_t TextToInteger(std::string_view text, const TypeInfo& from, const TypeInfo& to) {
  const std::string_view digits = Trim(text);
  if (digits.empty()) return 0;
  std::string_view number = digits.front() == '+' ? digits.substr(1) : digits;
  std::int64_t value = 0;
  const auto [end, failure] = std::from_chars(number.data(), number.data() + number.size(), value);
  const bool overflow = failure == std::errc::result_out_of_range;
  const bool syntax = !overflow && (failure != std::errc() || end != number.data() + number.size());
  if (syntax) {
    if (to.type == SqlType::BigInt) Raise(8114, TypeName(from), TypeName(to));
    Raise(245, TypeName(from), text, TypeName(to));
  }
  const IntegerRange& range = RangeOf(to.type);
  if (overflow || value < range.low || value > range.high) {
    if (to.type == SqlType::BigInt) Raise(8115, "expression", TypeName(to));
    if (to.type == SqlType::Int) Raise(248, TypeName(from), text);
    Raise(244, TypeName(from), text, range.storage_name);
  }
  return value;
}

std::int64_t DoubleToInteger(double number, const TypeInfo& to) {
  const double whole = std::trunc(number);
  const IntegerRange& range = RangeOf(to.type);
  const bool fits = whole >= static_cast<double>(range.low) &&
                    (to.type == SqlType::BigInt ? whole < 9223372036854775808.0
                                                : whole <= static_cast<double>(range.high));
  if (!fits) Raise(232, TypeName(to), fmt::format("{:.6f}", number));
  return static_cast<std::int64_t>(whole);
}

std::int64_t DecimalToInteger(const DecimalValue& number, const TypeInfo& from,
                              const TypeInfo& to) {
  // Money rounds to whole numbers, decimals are cut.
  Int128 whole = number.unscaled / PowerOfTen(number.scale);
  if (IsMoney(from.type)) whole = Rescale(number, 0)->unscaled;
  const IntegerRange& range = RangeOf(to.type);
  if (whole < range.low || whole > range.high) Raise(8115, ExactName(from), TypeName(to));
  return static_cast<std::int64_t>(whole);
}

std::optional<double> TextToDouble(std::string_view text) {
  std::string_view number = Trim(text);
  if (!number.empty() && number.front() == '+') number.remove_prefix(1);
  double value = 0;
  const auto [end, failure] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (end != number.data() + number.size() || number.empty()) return std::nullopt;
  if (failure == std::errc::result_out_of_range) return std::nullopt;
  if (!std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<DecimalValue> TextToMoney(std::string_view text) {
  std::string cleaned;
  for (const char c : Trim(text)) {
    if (c != ',' && c != '$') cleaned += c;
  }
  return cleaned.empty() ? DecimalValue{0, 4} : ParseDecimal(cleaned);
}

DecimalValue ExactSource(const Value& value, const TypeInfo& from, const TypeInfo& to) {
  switch (value.index()) {
    case 1:
      return {std::get<bool>(value) ? 1 : 0, 0};
    case 2:
      return {std::get<std::int64_t>(value), 0};
    case 3: {
      const auto number = DecimalFromDouble(std::get<double>(value), to.scale);
      if (!number) Raise(8115, ExactName(from), ExactName(to));
      return *number;
    }
    case 4:
      return std::get<DecimalValue>(value);
    case 5: {
      const std::string& text = std::get<std::string>(value);
      const auto number = IsMoney(to.type) ? TextToMoney(text) : ParseDecimal(Trim(text));
      if (number) return *number;
      if (IsMoney(to.type)) Raise(235);
      Raise(8114, TypeName(from), ExactName(to));
    }
    default:
      Raise(206, TypeName(from), TypeName(to));
  }
}

}  // namespace

Value ToInteger(const Value& value, const TypeInfo& from, const TypeInfo& to) {
  switch (value.index()) {
    case 1:
      return std::int64_t{std::get<bool>(value)};
    case 2:
      return CheckRange(std::get<std::int64_t>(value), from, to);
    case 3:
      return DoubleToInteger(std::get<double>(value), to);
    case 4:
      return DecimalToInteger(std::get<DecimalValue>(value), from, to);
    case 5:
      return TextToInteger(std::get<std::string>(value), from, to);
    case 6: {
      const std::size_t size = static_cast<std::size_t>(Facts(to.type).length);
      return FromLittleBytes(std::get<BinaryValue>(value).bytes, size);
    }
    default:
      Raise(206, TypeName(from), TypeName(to));
  }
}

Value ToBit(const Value& value, const TypeInfo& from) {
  switch (value.index()) {
    case 1:
      return value;
    case 2:
      return std::get<std::int64_t>(value) != 0;
    case 3:
      return std::get<double>(value) != 0;
    case 4:
      return std::get<DecimalValue>(value).unscaled != 0;
    case 5: {
      const std::string& text = std::get<std::string>(value);
      const std::string_view word = Trim(text);
      if (word.size() == 4 && (word[0] | 32) == 't') return true;
      if (word.size() == 5 && (word[0] | 32) == 'f') return false;
      const auto number =
          word.empty() ? DecimalValue{} : ParseDecimal(word).value_or(DecimalValue{0, -1});
      if (number.scale != 0) Raise(245, TypeName(from), text, "bit");
      return number.unscaled != 0;
    }
    case 6: {
      const std::string& bytes = std::get<BinaryValue>(value).bytes;
      return std::any_of(bytes.begin(), bytes.end(), [](char c) { return c != 0; });
    }
    default:
      Raise(206, TypeName(from), "bit");
  }
}

Value ToExact(const Value& value, const TypeInfo& from, const TypeInfo& to) {
  const auto number = Rescale(ExactSource(value, from, to), to.scale);
  const bool money_range =
      to.type == SqlType::Money
          ? number && number->unscaled >= INT64_MIN && number->unscaled <= INT64_MAX
      : to.type == SqlType::SmallMoney
          ? number && number->unscaled >= INT32_MIN && number->unscaled <= INT32_MAX
          : number && FitsPrecision(*number, to.precision);
  if (!money_range) {
    const char* source = IsMoney(to.type) && !IsText(from.type) ? "expression" : ExactName(from);
    Raise(8115, source, ExactName(to));
  }
  return *number;
}

Value ToApproximate(const Value& value, const TypeInfo& from, const TypeInfo& to) {
  double number = 0;
  switch (value.index()) {
    case 1:
      number = std::get<bool>(value) ? 1 : 0;
      break;
    case 2:
      number = static_cast<double>(std::get<std::int64_t>(value));
      break;
    case 3:
      number = std::get<double>(value);
      break;
    case 4:
      number = ToDouble(std::get<DecimalValue>(value));
      break;
    case 5: {
      const auto parsed = TextToDouble(std::get<std::string>(value));
      const bool empty = Trim(std::get<std::string>(value)).empty();
      if (!parsed && !empty) Raise(8114, TypeName(from), TypeName(to));
      number = parsed.value_or(0);
      break;
    }
    default:
      Raise(206, TypeName(from), TypeName(to));
  }
  if (to.type == SqlType::Float) return number;
  const auto single = static_cast<float>(number);
  if (!std::isfinite(single)) Raise(232, "real", fmt::format("{:.6f}", number));
  return static_cast<double>(single);
}

}  // namespace conversion

}  // namespace sandbox
