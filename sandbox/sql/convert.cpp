#include "sandbox/sql/convert.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <random>

#include "sandbox/sql/datetime_text.h"
#include "sandbox/sql/decimal.h"
#include "sandbox/sql/errors.h"
#include "sandbox/storage/code_page.h"
#include "sandbox/storage/encoding.h"

namespace sandbox {
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

std::string_view Trim(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
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

// ---- to integers

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

std::int64_t DateToInteger(const DateTimeValue& value) {
  return value.days - kDaysTo1900 + (value.ticks > kTicksPerDay / 2 ? 1 : 0);
}

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
    case 7:
      return CheckRange(DateToInteger(std::get<DateTimeValue>(value)), from, to);
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

// ---- to exact and approximate numbers

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
    case 6:
      return {FromLittleBytes(std::get<BinaryValue>(value).bytes, 8), IsMoney(to.type) ? 4 : 0};
    case 7: {
      const auto& time = std::get<DateTimeValue>(value);
      const double days = static_cast<double>(time.days - kDaysTo1900) +
                          static_cast<double>(time.ticks) / static_cast<double>(kTicksPerDay);
      return *DecimalFromDouble(days, to.scale);
    }
    default:
      Raise(206, TypeName(from), TypeName(to));
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
    case 7: {
      const auto& time = std::get<DateTimeValue>(value);
      number = static_cast<double>(time.days - kDaysTo1900) +
               static_cast<double>(time.ticks) / static_cast<double>(kTicksPerDay);
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

// ---- to dates and times

Value ToDateTime(const Value& value, const TypeInfo& from, const TypeInfo& to) {
  DateTimeValue time;
  if (const auto* text = std::get_if<std::string>(&value)) {
    const ParsedDateTime parsed = ParseDateTime(Trim(*text));
    if (parsed.problem == DateProblem::Syntax) Raise(241);
    const bool old = to.type == SqlType::DateTime || to.type == SqlType::SmallDateTime;
    if (parsed.problem == DateProblem::Range) {
      if (!old) Raise(241);
      Raise(242, TypeName(from), TypeName(to));
    }
    time = parsed.value;
    if (to.type != SqlType::DateTimeOffset && time.offset_minutes != 0 && old) Raise(241);
  } else if (const auto* moment = std::get_if<DateTimeValue>(&value)) {
    time = *moment;
    if (from.type == SqlType::Time && to.type != SqlType::Time) {
      time.days = static_cast<std::int32_t>(kDaysTo1900);
    }
  } else {
    const bool whole = to.type == SqlType::DateTime || to.type == SqlType::SmallDateTime;
    if (!whole || value.index() > 4) Raise(206, TypeName(from), TypeName(to));
    const double days = std::get<double>(ToApproximate(value, from, FloatType()));
    if (std::fabs(days) > 4e6) Raise(8115, "expression", TypeName(to));
    const double day = std::floor(days);
    time.days = static_cast<std::int32_t>(day + static_cast<double>(kDaysTo1900));
    time.ticks = static_cast<std::int64_t>((days - day) * static_cast<double>(kTicksPerDay));
  }
  const auto fitted = FitDateTime(time, to);
  if (!fitted) Raise(242, TypeName(from), TypeName(to));
  return *fitted;
}

// ---- to text and bytes

std::string DoubleText(double number, bool single, int style) {
  const int digits = style == 3 ? 17 : style == 2 ? 16 : style == 1 ? 8 : 6;
  std::string text = style == 1 || style == 2
                         ? fmt::format("{:.{}e}", number, digits - 1)
                         : fmt::format("{:.{}g}", number, single && style == 3 ? 9 : digits);
  const std::size_t e = text.find('e');
  if (e != std::string::npos && text.size() - e < 5) text.insert(e + 2, 5 - (text.size() - e), '0');
  return text;
}

std::string MoneyText(const DecimalValue& number, int style) {
  if (style == 2 || style == 126) return DecimalText(number);
  std::string text = DecimalText(*Rescale(number, 2));
  if (style != 1) return text;
  for (std::ptrdiff_t at = static_cast<std::ptrdiff_t>(text.find('.')) - 3;
       at > (text[0] == '-' ? 1 : 0); at -= 3) {
    text.insert(static_cast<std::size_t>(at), ",");
  }
  return text;
}

std::string HexText(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text += fmt::format("{:02X}", static_cast<unsigned char>(c));
  return text;
}

std::string ToText(const Value& value, const TypeInfo& from, const TypeInfo& to, int style) {
  switch (value.index()) {
    case 1:
      return std::get<bool>(value) ? "1" : "0";
    case 2:
      return fmt::format("{}", std::get<std::int64_t>(value));
    case 3:
      return DoubleText(std::get<double>(value), from.type == SqlType::Real, style);
    case 4: {
      const auto& number = std::get<DecimalValue>(value);
      return IsMoney(from.type) ? MoneyText(number, style) : DecimalText(number);
    }
    case 5:
      return std::get<std::string>(value);
    case 6: {
      const std::string& bytes = std::get<BinaryValue>(value).bytes;
      if (style == 1) return "0x" + HexText(bytes);
      if (style == 2) return HexText(bytes);
      return IsUnicode(to.type) ? FromUtf16(bytes) : FromCodePage(bytes);
    }
    case 7: {
      const auto text = DateTimeText(std::get<DateTimeValue>(value), from, style);
      if (!text) Raise(8114, TypeName(from), TypeName(to));
      return *text;
    }
    default:
      return GuidText(std::get<GuidValue>(value));
  }
}

std::size_t CountCharacters(std::string_view text, bool unicode) {
  return unicode ? Utf16Length(text) : CodePointCount(text);
}

// Numbers that the text type is too short for are refused, or shown as "*".
void CheckNumberFits(const Value& value, const TypeInfo& from, const TypeInfo& to,
                     std::string& text) {
  if (to.length < 0 || text.size() <= static_cast<std::size_t>(to.length)) return;
  if (!IsNumber(from.type)) {
    if (from.type == SqlType::UniqueIdentifier) Raise(8115, "uniqueidentifier", TypeName(to));
    return;
  }
  const bool small = value.index() == 2 && from.type != SqlType::BigInt && !IsUnicode(to.type);
  if (!small) Raise(8115, IsInteger(from.type) ? "expression" : TypeName(from), TypeName(to));
  text = "*";
}

Value FitText(std::string text, const TypeInfo& to, bool storing) {
  const bool unicode = IsUnicode(to.type);
  if (!unicode) text = KeepCodePage(text);
  const bool fixed = to.type == SqlType::Char || to.type == SqlType::NChar;
  if (to.length < 0) return text;
  const auto limit = static_cast<std::size_t>(to.length);
  if (text.size() > limit) {
    const std::size_t count = CountCharacters(text, unicode);
    if (count > limit) {
      std::string kept(Prefix(text, limit, unicode));
      const std::string_view rest = std::string_view(text).substr(kept.size());
      const bool blanks = rest.find_first_not_of(' ') == std::string_view::npos;
      if (storing && !blanks) throw Truncation{kept};
      text = std::move(kept);
    }
  }
  if (fixed) text.append(limit - std::min(limit, CountCharacters(text, unicode)), ' ');
  return text;
}

std::string ToBytes(const Value& value, const TypeInfo& from, const TypeInfo& to, int style) {
  const auto big_endian = [](std::int64_t number, int size) {
    std::string bytes(static_cast<std::size_t>(size), '\0');
    for (std::size_t i = bytes.size(); i-- > 0; number >>= 8)
      bytes[i] = static_cast<char>(number & 0xFF);
    return bytes;
  };
  switch (value.index()) {
    case 1:
      return std::string(1, std::get<bool>(value) ? '\1' : '\0');
    case 2:
      return big_endian(std::get<std::int64_t>(value), Facts(from.type).length);
    case 4:
      if (IsMoney(from.type)) {
        return big_endian(static_cast<std::int64_t>(std::get<DecimalValue>(value).unscaled),
                          Facts(from.type).length);
      }
      Raise(257, TypeName(from), TypeName(to));
    case 5: {
      const std::string& text = std::get<std::string>(value);
      if (style != 1 && style != 2) return IsUnicode(from.type) ? ToUtf16(text) : ToCodePage(text);
      std::string_view digits = Trim(text);
      if (style == 1 && digits.substr(0, 2) != "0x") Raise(8114, TypeName(from), TypeName(to));
      if (style == 1) digits.remove_prefix(2);
      std::string bytes;
      if (digits.size() % 2 == 1) Raise(8114, TypeName(from), TypeName(to));
      for (std::size_t i = 0; i < digits.size(); i += 2) {
        unsigned byte = 0;
        const auto [end, failure] =
            std::from_chars(digits.data() + i, digits.data() + i + 2, byte, 16);
        if (end != digits.data() + i + 2) Raise(8114, TypeName(from), TypeName(to));
        bytes += static_cast<char>(byte);
      }
      return bytes;
    }
    case 6:
      return std::get<BinaryValue>(value).bytes;
    case 8: {
      const auto& guid = std::get<GuidValue>(value).bytes;
      static constexpr std::array kOrder{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
      std::string bytes;
      for (const int at : kOrder) bytes += static_cast<char>(guid[at]);
      return bytes;
    }
    default:
      Raise(257, TypeName(from), TypeName(to));
  }
}

Value FitBytes(std::string bytes, const TypeInfo& from, const TypeInfo& to, bool storing) {
  const bool fixed = to.type == SqlType::Binary || to.type == SqlType::Timestamp;
  if (to.length < 0) return BinaryValue{std::move(bytes)};
  const auto limit = static_cast<std::size_t>(to.length);
  const bool number = IsNumber(from.type);
  if (bytes.size() > limit) {
    const bool zeros = bytes.find_first_not_of('\0', limit) == std::string::npos;
    if (storing && !zeros) throw Truncation{""};
    bytes = number ? bytes.substr(bytes.size() - limit) : bytes.substr(0, limit);
  }
  if (fixed && bytes.size() < limit) {
    number ? bytes.insert(0, limit - bytes.size(), '\0') : bytes.append(limit - bytes.size(), '\0');
  }
  return BinaryValue{std::move(bytes)};
}

Value ToGuid(const Value& value, const TypeInfo& from) {
  GuidValue guid{};
  if (std::holds_alternative<GuidValue>(value)) return value;
  if (const auto* binary = std::get_if<BinaryValue>(&value)) {
    static constexpr std::array kOrder{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    for (std::size_t i = 0; i < 16 && i < binary->bytes.size(); ++i) {
      guid.bytes[kOrder[i]] = static_cast<unsigned char>(binary->bytes[i]);
    }
    return guid;
  }
  const auto* held = std::get_if<std::string>(&value);
  if (!held) Raise(206, TypeName(from), "uniqueidentifier");
  std::string_view text = Trim(*held);
  if (!text.empty() && text.front() == '{') text = text.substr(1, 36);
  static constexpr std::array kDashes{8, 13, 18, 23};
  if (text.size() < 36) Raise(8169);
  std::size_t byte = 0;
  for (std::size_t i = 0; i < 36;) {
    if (std::find(kDashes.begin(), kDashes.end(), static_cast<int>(i)) != kDashes.end()) {
      if (text[i++] != '-') Raise(8169);
      continue;
    }
    unsigned number = 0;
    const auto [end, failure] = std::from_chars(text.data() + i, text.data() + i + 2, number, 16);
    if (failure != std::errc() || end != text.data() + i + 2) Raise(8169);
    guid.bytes[byte++] = static_cast<unsigned char>(number);
    i += 2;
  }
  return guid;
}

Value ConvertAny(const Value& value, const TypeInfo& from, const TypeInfo& to, int style,
                 bool storing) {
  if (std::holds_alternative<std::monostate>(value)) return value;
  if (to.type == SqlType::Variant) return value;
  if (from.type == SqlType::Variant)
    return ConvertAny(value, VariantBase(value), to, style, storing);
  if (to.type == SqlType::Bit) return ToBit(value, from);
  if (IsInteger(to.type)) return ToInteger(value, from, to);
  if (IsExact(to.type)) return ToExact(value, from, to);
  if (IsApproximate(to.type)) return ToApproximate(value, from, to);
  if (IsTemporal(to.type)) return ToDateTime(value, from, to);
  if (to.type == SqlType::UniqueIdentifier) return ToGuid(value, from);
  if (IsBinary(to.type)) return FitBytes(ToBytes(value, from, to, style), from, to, storing);
  std::string text = ToText(value, from, to, style);
  if (!IsText(from.type)) CheckNumberFits(value, from, to, text);
  return FitText(std::move(text), to, storing);
}

}  // namespace

bool FitsInteger(std::int64_t number, SqlType type) {
  const IntegerRange& range = RangeOf(type);
  return number >= range.low && number <= range.high;
}

std::string GuidText(const GuidValue& guid) {
  std::string text;
  for (std::size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += fmt::format("{:02X}", guid.bytes[i]);
  }
  return text;
}

Value Convert(const Value& value, const TypeInfo& from, const TypeInfo& to, int style) {
  return ConvertAny(value, from, to, style, false);
}

Value ConvertToStore(const Value& value, const TypeInfo& from, const TypeInfo& to) {
  return ConvertAny(value, from, to, 0, true);
}

void CheckConvertible(const TypeInfo& from, const TypeInfo& to, bool is_explicit) {
  if (from.type == to.type || from.type == SqlType::Variant || to.type == SqlType::Variant) return;
  const bool text = IsText(from.type), text_to = IsText(to.type);
  const auto refuse = [&](int number) { Raise(number, TypeName(from), TypeName(to)); };
  const bool temporal = IsTemporal(from.type), temporal_to = IsTemporal(to.type);
  if (temporal && IsNumber(to.type)) {
    const bool old = from.type == SqlType::DateTime || from.type == SqlType::SmallDateTime;
    if (!old) refuse(is_explicit ? 529 : 206);
    if (!is_explicit) refuse(257);
  }
  if (temporal_to && IsNumber(from.type)) {
    const bool old = to.type == SqlType::DateTime || to.type == SqlType::SmallDateTime;
    if (!old) refuse(is_explicit ? 529 : 206);
  }
  if (from.type == SqlType::UniqueIdentifier && !text_to && !IsBinary(to.type)) refuse(206);
  if (to.type == SqlType::UniqueIdentifier && !text && !IsBinary(from.type)) refuse(206);
  if (text && IsBinary(to.type) && !is_explicit) refuse(257);
  if (IsLong(from) && Facts(from.type).length != 0 && IsNumber(to.type))
    refuse(is_explicit ? 529 : 206);
  if (Facts(to.type).length == 2147483647 && to.type == SqlType::Text && IsNumber(from.type)) {
    refuse(is_explicit ? 529 : 206);
  }
  if (IsBinary(from.type) && IsApproximate(to.type)) refuse(is_explicit ? 529 : 206);
}

std::string ValueText(const Value& value, const TypeInfo& type) {
  if (std::holds_alternative<std::monostate>(value)) return "NULL";
  if (type.type == SqlType::Variant) return ValueText(value, VariantBase(value));
  if (const auto* binary = std::get_if<BinaryValue>(&value)) {
    return "0x" + fmt::format("{}", HexText(binary->bytes));
  }
  return ToText(value, type, {SqlType::NVarChar, -1, 0, 0}, 0);
}

TypeInfo VariantBase(const Value& value) {
  switch (value.index()) {
    case 1:
      return BitType();
    case 2: {
      const std::int64_t number = std::get<std::int64_t>(value);
      return number >= INT32_MIN && number <= INT32_MAX ? IntType() : BigIntType();
    }
    case 3:
      return FloatType();
    case 4:
      return DecimalType(38, std::get<DecimalValue>(value).scale);
    case 6:
      return VarBinary(std::get<BinaryValue>(value).bytes.size());
    case 7:
      return {SqlType::DateTime2, 0, 27, 7};
    case 8:
      return {SqlType::UniqueIdentifier, 0, 0, 0};
    default:
      return NVarChar(4000);
  }
}

}  // namespace sandbox
