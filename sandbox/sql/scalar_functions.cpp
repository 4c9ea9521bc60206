#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "sandbox/sql/convert.h"
#include "sandbox/sql/datetime_text.h"
#include "sandbox/sql/decimal.h"
#include "sandbox/sql/errors.h"
#include "sandbox/sql/functions.h"
#include "sandbox/storage/code_page.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/storage/server_folder.h"
#include "sandbox/storage/text_order.h"

namespace sandbox {
namespace {

using Types = std::span<const TypeInfo>;
using Call = const FunctionCall&;

constexpr TypeInfo kLongText{SqlType::NVarChar, -1, 0, 0};

std::string Text(Call call, std::size_t i) {
  return std::get<std::string>(Convert(call.values[i], call.types[i], kLongText));
}
std::int64_t Integer(Call call, std::size_t i) {
  return std::get<std::int64_t>(Convert(call.values[i], call.types[i], BigIntType()));
}
double Real(Call call, std::size_t i) {
  return std::get<double>(Convert(call.values[i], call.types[i], FloatType()));
}
bool Unicode(Call call) {
  return IsUnicode(call.types[0].type);
}

TypeInfo ReturnInt(Types) {
  return IntType();
}
TypeInfo ReturnBigInt(Types) {
  return BigIntType();
}
TypeInfo ReturnFloat(Types) {
  return FloatType();
}
TypeInfo ReturnDateTime(Types) {
  return DateTimeType();
}
TypeInfo ReturnGuid(Types) {
  return {SqlType::UniqueIdentifier, 0, 0, 0};
}
TypeInfo ReturnText(Types types) {
  const bool unicode = !types.empty() && IsUnicode(types[0].type);
  if (types.empty() || !IsText(types[0].type)) return {SqlType::VarChar, 8000, 0, 0};
  return {unicode ? SqlType::NVarChar : SqlType::VarChar, types[0].length, 0, 0};
}
TypeInfo ReturnLongest(Types types) {
  TypeInfo type = ReturnText(types);
  if (type.length > 0) type.length = IsUnicode(type.type) ? 4000 : 8000;
  return type;
}
TypeInfo ReturnRounded(Types types) {
  return IsInteger(types[0].type) || types[0].type == SqlType::Bit
             ? (types[0].type == SqlType::BigInt ? BigIntType() : IntType())
         : IsText(types[0].type) || types[0].type == SqlType::Real ? FloatType()
                                                                   : types[0];
}
TypeInfo ReturnAbove(Types types) {
  const TypeInfo type = ReturnRounded(types);
  return IsExact(type.type) && !IsMoney(type.type) ? TypeInfo{type.type, 0, type.precision, 0}
                                                   : type;
}
TypeInfo ReturnDateAdd(Types types) {
  return IsTemporal(types[2].type) ? types[2] : DateTimeType();
}

std::size_t Units(std::string_view text, bool utf16) {
  return utf16 ? Utf16Length(text) : CodePointCount(text);
}

std::string TrimRight(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}
std::string TrimLeft(std::string text) {
  return text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
}

std::string Slice(std::string_view text, std::int64_t start, std::int64_t length, bool utf16) {
  if (length < 0) Raise(15034, "Invalid length parameter passed to the function.");
  const std::int64_t end = std::min<std::int64_t>(start + length, INT32_MAX);
  const std::int64_t first = std::max<std::int64_t>(start, 1);
  if (end <= first) return "";
  const std::string_view upto = Prefix(text, static_cast<std::size_t>(end - 1), utf16);
  const std::string_view before = Prefix(upto, static_cast<std::size_t>(first - 1), utf16);
  return std::string(upto.substr(before.size()));
}

Value Substring(Call call) {
  const std::int64_t start = std::clamp<std::int64_t>(Integer(call, 1), -INT32_MAX, INT32_MAX);
  const std::int64_t length = std::min<std::int64_t>(Integer(call, 2), INT32_MAX);
  if (const auto* binary = std::get_if<BinaryValue>(&call.values[0])) {
    const std::int64_t size = static_cast<std::int64_t>(binary->bytes.size());
    const std::int64_t first = std::clamp<std::int64_t>(start, 1, size + 1);
    const std::int64_t end = std::clamp<std::int64_t>(start + length, first, size + 1);
    return BinaryValue{binary->bytes.substr(static_cast<std::size_t>(first - 1),
                                            static_cast<std::size_t>(end - first))};
  }
  return Slice(Text(call, 0), start, length, Unicode(call));
}

TypeInfo ReturnSubstring(Types types) {
  if (IsBinary(types[0].type)) return {SqlType::VarBinary, types[0].length, 0, 0};
  return ReturnText(types);
}

Value Left(Call call) {
  return Slice(Text(call, 0), 1, Integer(call, 1), Unicode(call));
}
Value Right(Call call) {
  const std::string text = Text(call, 0);
  const auto size = static_cast<std::int64_t>(Units(text, Unicode(call)));
  const std::int64_t count = std::min(size, Integer(call, 1));
  return Slice(text, size - count + 1, count, Unicode(call));
}

Value Replace(Call call) {
  const std::string text = Text(call, 0), what = Text(call, 1), with = Text(call, 2);
  if (what.empty()) return text;
  const std::string folded = LowerText(text), sought = LowerText(what);
  // Folding keeps the byte length of all letters of the code page; else search as written.
  const std::string& haystack = folded.size() == text.size() ? folded : text;
  const std::string& needle = folded.size() == text.size() ? sought : what;
  std::string result;
  std::size_t at = 0;
  for (std::size_t found = haystack.find(needle); found != std::string::npos;
       found = haystack.find(needle, at)) {
    result.append(text, at, found - at);
    result += with;
    at = found + needle.size();
  }
  return result.append(text, at, std::string::npos);
}

Value CharIndex(Call call) {
  const std::string what = LowerText(Text(call, 0)), text = LowerText(Text(call, 1));
  std::size_t from = 0;
  if (call.values.size() > 2) {
    const std::int64_t start = std::max<std::int64_t>(1, Integer(call, 2));
    from = Prefix(text, static_cast<std::size_t>(start - 1), true).size();
  }
  const std::size_t found = what.empty() ? std::string::npos : text.find(what, from);
  if (found == std::string::npos) return std::int64_t{0};
  return static_cast<std::int64_t>(Utf16Length(std::string_view(text).substr(0, found))) + 1;
}

Value PatIndex(Call call) {
  std::string pattern = Text(call, 0);
  const std::string text = Text(call, 1);
  const bool anywhere = !pattern.empty() && pattern.front() == '%';
  if (anywhere) pattern.erase(0, 1);
  std::string_view rest = text;
  std::int64_t position = 1;
  while (true) {
    if (MatchesPattern(rest, pattern)) return position;
    if (rest.empty() || !anywhere) return std::int64_t{0};
    NextCodePoint(rest);
    ++position;
  }
}

Value Replicate(Call call) {
  const std::string text = Text(call, 0);
  const std::int64_t count = Integer(call, 1);
  if (count < 0) return std::monostate();
  std::int64_t limit = call.types[0].length < 0        ? INT32_MAX
                       : IsUnicode(call.types[0].type) ? 4000
                                                       : 8000;
  limit = text.empty() ? 0 : limit / static_cast<std::int64_t>(Units(text, Unicode(call)));
  std::string result;
  result.reserve(text.size() * static_cast<std::size_t>(std::min(count, limit)));
  for (std::int64_t i = 0; i < std::min(count, limit); ++i) result += text;
  return result;
}

Value Reverse(Call call) {
  const std::string text = Text(call, 0);
  std::string result;
  for (std::string_view rest = text; !rest.empty();) {
    std::string one;
    AppendUtf8(one, NextCodePoint(rest));
    result.insert(0, one);
  }
  return result;
}

Value Length(Call call) {
  if (const auto* binary = std::get_if<BinaryValue>(&call.values[0])) {
    return static_cast<std::int64_t>(binary->bytes.size());
  }
  return static_cast<std::int64_t>(Utf16Length(TrimRight(Text(call, 0))));
}

Value DataLength(Call call) {
  const TypeInfo type =
      call.types[0].type == SqlType::Variant ? VariantBase(call.values[0]) : call.types[0];
  if (IsText(type.type)) {
    const std::string text = Text(call, 0);
    return static_cast<std::int64_t>(IsUnicode(type.type) ? Utf16Length(text) * 2
                                                          : CodePointCount(text));
  }
  if (const auto* binary = std::get_if<BinaryValue>(&call.values[0])) {
    return static_cast<std::int64_t>(binary->bytes.size());
  }
  return static_cast<std::int64_t>(MaxLength(type));
}

Value Round(Call call) {
  const auto digits = static_cast<int>(std::clamp<std::int64_t>(Integer(call, 1), -38, 38));
  const bool cut = call.values.size() > 2 && Integer(call, 2) != 0;
  const Value value = Convert(call.values[0], call.types[0], call.result);
  if (const auto* real = std::get_if<double>(&value)) {
    const double power = std::pow(10.0, digits);
    return (cut ? std::trunc(*real * power) : std::round(*real * power)) / power;
  }
  DecimalValue number;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) number.unscaled = *integer;
  if (const auto* exact = std::get_if<DecimalValue>(&value)) number = *exact;
  const int drop = number.scale - digits;
  if (drop <= 0) return value;
  if (drop > 38) return Convert(std::int64_t{0}, IntType(), call.result);
  const Int128 power = PowerOfTen(drop);
  const Int128 whole =
      cut ? number.unscaled / power : Rescale({number.unscaled, drop}, 0)->unscaled;
  number.unscaled = whole * power;
  return Convert(number, DecimalType(38, number.scale), call.result);
}

Value Above(Call call, bool ceiling) {
  const Value value = call.values[0];
  if (const auto* exact = std::get_if<DecimalValue>(&value)) {
    const Int128 power = PowerOfTen(exact->scale);
    Int128 whole = exact->unscaled / power;
    const Int128 rest = exact->unscaled % power;
    if (ceiling && rest > 0) ++whole;
    if (!ceiling && rest < 0) --whole;
    return Convert(DecimalValue{whole, 0}, DecimalType(38, 0), call.result);
  }
  if (std::holds_alternative<std::int64_t>(value)) return value;
  const double real = Real(call, 0);
  return ceiling ? std::ceil(real) : std::floor(real);
}

Value Absolute(Call call) {
  Value value = Convert(call.values[0], call.types[0], call.result);
  if (auto* integer = std::get_if<std::int64_t>(&value)) {
    if (*integer == INT64_MIN) Raise(8115, "expression", "bigint");
    *integer = std::abs(*integer);
    return Convert(value, BigIntType(), call.result);
  }
  if (auto* real = std::get_if<double>(&value)) *real = std::fabs(*real);
  if (auto* exact = std::get_if<DecimalValue>(&value); exact && exact->unscaled < 0) {
    exact->unscaled = -exact->unscaled;
  }
  return value;
}

Value Sign(Call call) {
  const double number = Real(call, 0);
  const std::int64_t sign = number > 0 ? 1 : number < 0 ? -1 : 0;
  return Convert(sign, IntType(), call.result);
}

// ---- dates

constexpr std::array<std::pair<std::string_view, std::string_view>, 34> kDateUnits{
    {{"year", "year"},
     {"yy", "year"},
     {"yyyy", "year"},
     {"quarter", "quarter"},
     {"qq", "quarter"},
     {"q", "quarter"},
     {"month", "month"},
     {"mm", "month"},
     {"m", "month"},
     {"day", "day"},
     {"dd", "day"},
     {"d", "day"},
     {"dayofyear", "dayofyear"},
     {"dy", "dayofyear"},
     {"y", "dayofyear"},
     {"week", "week"},
     {"wk", "week"},
     {"ww", "week"},
     {"weekday", "weekday"},
     {"dw", "weekday"},
     {"hour", "hour"},
     {"hh", "hour"},
     {"minute", "minute"},
     {"mi", "minute"},
     {"n", "minute"},
     {"second", "second"},
     {"ss", "second"},
     {"s", "second"},
     {"millisecond", "millisecond"},
     {"ms", "millisecond"},
     {"microsecond", "microsecond"},
     {"mcs", "microsecond"},
     {"nanosecond", "nanosecond"},
     {"ns", "nanosecond"}}};

struct TickUnit {
  std::string_view name;
  std::int64_t ticks;
};
constexpr std::array kTickUnits{TickUnit{"week", 7 * kTicksPerDay},
                                TickUnit{"day", kTicksPerDay},
                                TickUnit{"dayofyear", kTicksPerDay},
                                TickUnit{"weekday", kTicksPerDay},
                                TickUnit{"hour", 3600 * kTicksPerSecond},
                                TickUnit{"minute", 60 * kTicksPerSecond},
                                TickUnit{"second", kTicksPerSecond},
                                TickUnit{"millisecond", 10'000},
                                TickUnit{"microsecond", 10}};

DateTimeValue Moment(Call call, std::size_t i) {
  if (const auto* time = std::get_if<DateTimeValue>(&call.values[i])) return *time;
  const bool text = IsText(call.types[i].type);
  const TypeInfo type = text ? TypeInfo{SqlType::DateTime2, 0, 27, 7} : DateTimeType();
  return std::get<DateTimeValue>(Convert(call.values[i], call.types[i], type));
}

Value DateAdd(Call call) {
  const TypeInfo type = IsTemporal(call.types[2].type) ? call.types[2] : DateTimeType();
  return AddToDate(Text(call, 0), Integer(call, 1), Moment(call, 2), type);
}

std::int64_t MonthNumber(const CivilDate& date) {
  return date.year * 12 + date.month - 1;
}

Value DateDiff(Call call) {
  const std::string unit = Text(call, 0);
  const DateTimeValue from = Moment(call, 1), to = Moment(call, 2);
  const CivilDate a = ToCivil(from.days), b = ToCivil(to.days);
  if (unit == "year") return std::int64_t{b.year - a.year};
  if (unit == "month") return MonthNumber(b) - MonthNumber(a);
  if (unit == "quarter") return MonthNumber(b) / 3 - MonthNumber(a) / 3;
  if (unit == "week") return std::int64_t{(to.days + 1) / 7 - (from.days + 1) / 7};
  std::int64_t ticks = 1;
  for (const TickUnit& entry : kTickUnits) {
    if (entry.name == unit) ticks = entry.ticks;
  }
  // Whole boundaries count, not whole spans.
  const Int128 x = (Int128{from.days} * kTicksPerDay + from.ticks) / ticks;
  const Int128 y = (Int128{to.days} * kTicksPerDay + to.ticks) / ticks;
  const Int128 count = (y - x) * (unit == "nanosecond" ? 100 : 1);
  if (call.result.type == SqlType::Int && (count > INT32_MAX || count < INT32_MIN)) {
    Raise(8115, "expression", "int");
  }
  return static_cast<std::int64_t>(count);
}

std::int64_t Part(std::string_view unit, const DateTimeValue& value) {
  const CivilDate date = ToCivil(value.days);
  const std::int64_t seconds = value.ticks / kTicksPerSecond;
  const std::int64_t day_of_year = value.days - FromCivil({date.year, 1, 1}) + 1;
  const std::int64_t first_weekday = (FromCivil({date.year, 1, 1}) + 1) % 7;
  const std::array<std::pair<std::string_view, std::int64_t>, 13> parts{{
      {"year", date.year},
      {"quarter", (date.month + 2) / 3},
      {"month", date.month},
      {"day", date.day},
      {"dayofyear", day_of_year},
      {"week", (day_of_year - 1 + first_weekday) / 7 + 1},
      {"weekday", (value.days + 1) % 7 + 1},
      {"hour", seconds / 3600},
      {"minute", seconds / 60 % 60},
      {"second", seconds % 60},
      {"millisecond", value.ticks / 10'000 % 1000},
      {"microsecond", value.ticks / 10 % 1'000'000},
      {"nanosecond", value.ticks % kTicksPerSecond * 100},
  }};
  for (const auto& [name, number] : parts) {
    if (name == unit) return number;
  }
  return 0;
}

Value DatePart(Call call) {
  return Part(Text(call, 0), Moment(call, 1));
}
Value Year(Call call) {
  return Part("year", Moment(call, 0));
}
Value Month(Call call) {
  return Part("month", Moment(call, 0));
}
Value Day(Call call) {
  return Part("day", Moment(call, 0));
}

Value DateName(Call call) {
  static constexpr std::array kDays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};
  static constexpr std::array kMonthNames{"January",   "February", "March",    "April",
                                          "May",       "June",     "July",     "August",
                                          "September", "October",  "November", "December"};
  const std::string unit = Text(call, 0);
  const std::int64_t number = Part(unit, Moment(call, 1));
  if (unit == "weekday") return std::string(kDays[static_cast<std::size_t>(number - 1)]);
  if (unit == "month") return std::string(kMonthNames[static_cast<std::size_t>(number - 1)]);
  return std::to_string(number);
}

Value GetDate(Call call) {
  const std::int64_t now = NowTicks();
  const DateTimeValue value{static_cast<std::int32_t>(now / kTicksPerDay), now % kTicksPerDay, 0};
  return Convert(value, {SqlType::DateTime2, 0, 27, 7}, call.result);
}

Value NewId(Call) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  GuidValue guid{};
  for (unsigned char& byte : guid.bytes) byte = static_cast<unsigned char>(random());
  guid.bytes[6] = static_cast<unsigned char>((guid.bytes[6] & 0x0F) | 0x40);
  guid.bytes[8] = static_cast<unsigned char>((guid.bytes[8] & 0x3F) | 0x80);
  return guid;
}

Value Random(Call) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  return std::uniform_real_distribution<double>(0, 1)(random);
}

Value Checksum(Call call) {
  std::uint32_t hash = 2166136261u;
  for (std::size_t i = 0; i < call.values.size(); ++i) {
    for (const char c : LowerText(ValueText(call.values[i], call.types[i]))) {
      hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    }
  }
  return std::int64_t{static_cast<std::int32_t>(hash)};
}

Value Character(Call call) {
  const std::int64_t code = Integer(call, 0);
  if (code < 0 || code > 255) return std::monostate();
  return FromCodePage(std::string(1, static_cast<char>(code)));
}
Value WideCharacter(Call call) {
  const std::int64_t code = Integer(call, 0);
  if (code < 0 || code > 65535 || (code >= 0xD800 && code < 0xE000)) return std::monostate();
  std::string text;
  AppendUtf8(text, static_cast<char32_t>(code));
  return text;
}
Value CodeOf(Call call) {
  const std::string text = Text(call, 0);
  if (text.empty()) return std::monostate();
  std::string_view rest = text;
  const bool wide = std::string_view(Text(call, 0)).size() && IsUnicode(call.types[0].type);
  if (wide) return static_cast<std::int64_t>(NextCodePoint(rest));
  return std::int64_t{static_cast<unsigned char>(ToCodePage(text)[0])};
}

Value QuoteName(Call call) {
  std::string text = "[";
  for (const char c : Text(call, 0)) text.append(c == ']' ? 2 : 1, c);
  return text + "]";
}

Value Concat(Call call) {
  std::string text;
  for (std::size_t i = 0; i < call.values.size(); ++i) {
    if (call.values[i].index() != 0) text += Text(call, i);
  }
  return text;
}

Value Stuff(Call call) {
  const std::string text = Text(call, 0);
  const std::int64_t start = Integer(call, 1), length = Integer(call, 2);
  const auto size = static_cast<std::int64_t>(Utf16Length(text));
  if (start < 1 || start > size || length < 0) return std::monostate();
  return Slice(text, 1, start - 1, true) + Text(call, 3) +
         Slice(text, start + length, INT32_MAX, true);
}

Value IsNumericText(Call call) {
  if (IsNumber(call.types[0].type)) return std::int64_t{1};
  try {
    Convert(Text(call, 0), kLongText, FloatType());
    return std::int64_t{TrimRight(Text(call, 0)).empty() ? 0 : 1};
  } catch (const SqlError&) {
    return std::int64_t{0};
  }
}

Value IsDateText(Call call) {
  const bool valid =
      IsTemporal(call.types[0].type) || ParseDateTime(Text(call, 0)).problem == DateProblem::None;
  return std::int64_t{valid};
}

template <double (*F)(double)>
Value RealFunction(Call call) {
  return F(Real(call, 0));
}

Value Power(Call call) {
  const double result = std::pow(Real(call, 0), Real(call, 1));
  if (!std::isfinite(result)) Raise(8115, "expression", TypeName(call.result));
  return Convert(result, FloatType(), call.result);
}

Value SquareRoot(Call call) {
  if (Real(call, 0) < 0) Raise(15034, "An invalid floating point operation occurred.");
  return std::sqrt(Real(call, 0));
}

const std::array kFunctions{
    ScalarFunction{"abs", 1, 1, ReturnRounded, Absolute},
    ScalarFunction{"ascii", 1, 1, ReturnInt, CodeOf},
    ScalarFunction{"ceiling", 1, 1, ReturnAbove, [](Call c) { return Above(c, true); }},
    ScalarFunction{"char", 1, 1,
                   [](Types) {
                     return TypeInfo{SqlType::Char, 1, 0, 0};
                   },
                   Character},
    ScalarFunction{"charindex", 2, 3, ReturnInt, CharIndex},
    ScalarFunction{"checksum", 1, 60, ReturnInt, Checksum, true},
    ScalarFunction{"concat", 2, 60,
                   [](Types) {
                     return TypeInfo{SqlType::NVarChar, 4000, 0, 0};
                   },
                   Concat, true},
    ScalarFunction{"datalength", 1, 1, ReturnInt, DataLength},
    ScalarFunction{"dateadd", 3, 3, ReturnDateAdd, DateAdd},
    ScalarFunction{"datediff", 3, 3, ReturnInt, DateDiff},
    ScalarFunction{"datediff_big", 3, 3, ReturnBigInt, DateDiff},
    ScalarFunction{"datename", 2, 2, [](Types) { return NVarChar(30); }, DateName},
    ScalarFunction{"datepart", 2, 2, ReturnInt, DatePart},
    ScalarFunction{"day", 1, 1, ReturnInt, Day},
    ScalarFunction{"exp", 1, 1, ReturnFloat, RealFunction<std::exp>},
    ScalarFunction{"floor", 1, 1, ReturnAbove, [](Call c) { return Above(c, false); }},
    ScalarFunction{"getdate", 0, 0, ReturnDateTime, GetDate},
    ScalarFunction{"current_timestamp", 0, 0, ReturnDateTime, GetDate},
    ScalarFunction{"sysdatetime", 0, 0,
                   [](Types) {
                     return TypeInfo{SqlType::DateTime2, 0, 27, 7};
                   },
                   GetDate},
    ScalarFunction{"getutcdate", 0, 0, ReturnDateTime, GetDate},
    ScalarFunction{"isdate", 1, 1, ReturnInt, IsDateText},
    ScalarFunction{"isnumeric", 1, 1, ReturnInt, IsNumericText},
    ScalarFunction{"left", 2, 2, ReturnText, Left},
    ScalarFunction{"len", 1, 1, ReturnInt, Length},
    ScalarFunction{"log", 1, 1, ReturnFloat, RealFunction<std::log>},
    ScalarFunction{"lower", 1, 1, ReturnText,
                   [](Call c) -> Value { return LowerText(Text(c, 0)); }},
    ScalarFunction{"ltrim", 1, 1, ReturnText, [](Call c) -> Value { return TrimLeft(Text(c, 0)); }},
    ScalarFunction{"month", 1, 1, ReturnInt, Month},
    ScalarFunction{"nchar", 1, 1,
                   [](Types) {
                     return TypeInfo{SqlType::NChar, 1, 0, 0};
                   },
                   WideCharacter},
    ScalarFunction{"newid", 0, 0, ReturnGuid, NewId},
    ScalarFunction{"newsequentialid", 0, 0, ReturnGuid, NewId},
    ScalarFunction{"patindex", 2, 2, ReturnInt, PatIndex},
    ScalarFunction{"power", 2, 2, ReturnRounded, Power},
    ScalarFunction{"quotename", 1, 2, [](Types) { return NVarChar(258); }, QuoteName},
    ScalarFunction{"rand", 0, 1, ReturnFloat, Random},
    ScalarFunction{"replace", 3, 3, ReturnLongest, Replace},
    ScalarFunction{"replicate", 2, 2, ReturnLongest, Replicate},
    ScalarFunction{"reverse", 1, 1, ReturnText, Reverse},
    ScalarFunction{"right", 2, 2, ReturnText, Right},
    ScalarFunction{"round", 2, 3, ReturnRounded, Round},
    ScalarFunction{"rtrim", 1, 1, ReturnText,
                   [](Call c) -> Value { return TrimRight(Text(c, 0)); }},
    ScalarFunction{"sign", 1, 1, ReturnRounded, Sign},
    ScalarFunction{"space", 1, 1, ReturnLongest,
                   [](Call c) -> Value {
                     return std::string(
                         static_cast<std::size_t>(std::clamp<std::int64_t>(Integer(c, 0), 0, 8000)),
                         ' ');
                   }},
    ScalarFunction{"sqrt", 1, 1, ReturnFloat, SquareRoot},
    ScalarFunction{"str", 1, 3,
                   [](Types) {
                     return TypeInfo{SqlType::VarChar, 40, 0, 0};
                   },
                   [](Call c) -> Value {
                     const std::int64_t width =
                         c.values.size() > 1 ? std::clamp<std::int64_t>(Integer(c, 1), 0, 40) : 10;
                     const std::int64_t digits =
                         c.values.size() > 2 ? std::clamp<std::int64_t>(Integer(c, 2), 0, 16) : 0;
                     return fmt::format("{:>{}.{}f}", Real(c, 0), width, digits);
                   }},
    ScalarFunction{"stuff", 4, 4, ReturnLongest, Stuff},
    ScalarFunction{"substring", 3, 3, ReturnSubstring, Substring},
    ScalarFunction{"trim", 1, 1, ReturnText,
                   [](Call c) -> Value { return TrimLeft(TrimRight(Text(c, 0))); }},
    ScalarFunction{"unicode", 1, 1, ReturnInt, CodeOf},
    ScalarFunction{"upper", 1, 1, ReturnText,
                   [](Call c) -> Value { return UpperText(Text(c, 0)); }},
    ScalarFunction{"year", 1, 1, ReturnInt, Year},
};

}  // namespace

Value AddToDate(std::string_view unit, std::int64_t count, const DateTimeValue& value,
                const TypeInfo& type) {
  DateTimeValue moved = value;
  const std::int64_t months = unit == "year" ? 12 : unit == "quarter" ? 3 : unit == "month" ? 1 : 0;
  const auto overflow = [&] { Raise(242, TypeName(type), TypeName(type)); };
  if (count > INT32_MAX || count < INT32_MIN) Raise(8115, "expression", "int");
  if (months != 0) {
    CivilDate date = ToCivil(value.days);
    const std::int64_t target = MonthNumber(date) + count * months;
    if (target < 12 || target >= 120000) overflow();
    date.year = static_cast<int>(target / 12);
    date.month = static_cast<int>(target % 12) + 1;
    date.day = std::min(date.day, DaysInMonth(date.year, date.month));
    moved.days = static_cast<std::int32_t>(FromCivil(date));
  } else {
    Int128 ticks = Int128{value.days} * kTicksPerDay + value.ticks;
    for (const TickUnit& entry : kTickUnits) {
      if (entry.name == unit) ticks += Int128{count} * entry.ticks;
    }
    if (unit == "nanosecond") ticks += count / 100;
    if (ticks < 0 || ticks >= Int128{3652059} * kTicksPerDay) overflow();
    moved.days = static_cast<std::int32_t>(ticks / kTicksPerDay);
    moved.ticks = static_cast<std::int64_t>(ticks % kTicksPerDay);
  }
  const auto fitted = FitDateTime(moved, type);
  if (!fitted) overflow();
  return *fitted;
}

std::optional<std::string_view> DateUnit(std::string_view word) {
  for (const auto& [name, unit] : kDateUnits) {
    if (SameName(name, word)) return unit;
  }
  return std::nullopt;
}

std::optional<std::size_t> FindFunction(std::string_view name) {
  for (std::size_t i = 0; i < kFunctions.size(); ++i) {
    if (name == kFunctions[i].name) return i;
  }
  return std::nullopt;
}

const ScalarFunction& Function(std::size_t position) {
  return kFunctions.at(position);
}

}  // namespace sandbox
