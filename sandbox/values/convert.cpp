#include "sandbox/values/convert.h"

#include "sandbox/values/convert_parts.h"
#include "sandbox/values/datetime_text.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/ticks.h"

namespace sandbox {

namespace {

using namespace conversion;

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
    Raise(206, TypeName(from), TypeName(to));
  }
  const auto fitted = FitDateTime(time, to);
  if (!fitted) Raise(242, TypeName(from), TypeName(to));
  return *fitted;
}

// Whole numbers and text are all that a variant holds here.
Value ToVariant(const Value& value, const TypeInfo& from) {
  const bool fits =
      std::holds_alternative<std::int64_t>(value) || std::holds_alternative<std::string>(value);
  if (!fits) Raise(206, TypeName(from), TypeName({SqlType::Variant}));
  return value;
}

Value ConvertAny(const Value& value, const TypeInfo& from, const TypeInfo& to, int style,
                 bool storing) {
  if (IsNull(value)) return value;
  if (to.type == SqlType::Variant) return ToVariant(value, from);
  if (from.type == SqlType::Variant)
    return ConvertAny(value, VariantBase(value), to, style, storing);
  if (to.type == SqlType::Bit) return ToBit(value, from);
  if (IsInteger(to.type)) return ToInteger(value, from, to);
  if (IsExact(to.type)) return ToExact(value, from, to);
  if (IsApproximate(to.type)) return ToApproximate(value, from, to);
  if (IsTemporal(to.type)) return ToDateTime(value, from, to);
  if (to.type == SqlType::UniqueIdentifier) return ToGuid(value, from);
  if (IsBinary(to.type)) return FitBytes(ToBytes(value, from, to), from, to, storing);
  std::string text = ToText(value, from, to, style);
  if (!IsText(from.type)) CheckNumberFits(value, from, to, text);
  return FitText(std::move(text), to, storing);
}

}  // namespace

Value Convert(const Value& value, const TypeInfo& from, const TypeInfo& to, int style) {
  return ConvertAny(value, from, to, style, false);
}

Value ConvertToStore(const Value& value, const TypeInfo& from, const TypeInfo& to) {
  return ConvertAny(value, from, to, 0, true);
}

void CheckConvertible(const TypeInfo& from, const TypeInfo& to, bool is_explicit) {
  if (from.type == to.type || from.type == SqlType::Variant || to.type == SqlType::Variant) return;
  const bool text = IsText(from.type), text_to = IsText(to.type);
  const ErrorNumber<2> clash = is_explicit ? ErrorNumber<2>(529) : ErrorNumber<2>(206);
  const auto refuse = [&](ErrorNumber<2> number) { Raise(number, TypeName(from), TypeName(to)); };
  const bool temporal = IsTemporal(from.type), temporal_to = IsTemporal(to.type);
  if ((temporal && IsNumber(to.type)) || (temporal_to && IsNumber(from.type))) refuse(clash);
  if (from.type == SqlType::UniqueIdentifier && !text_to) refuse(206);
  if (to.type == SqlType::UniqueIdentifier && !text) refuse(206);
  if (text && IsBinary(to.type) && !is_explicit) refuse(257);
  if (IsLong(from) && Facts(from.type).length != 0 && IsNumber(to.type)) refuse(clash);
  if (Facts(to.type).length == 2147483647 && to.type == SqlType::Text && IsNumber(from.type)) {
    refuse(clash);
  }
  if (IsBinary(from.type) && IsApproximate(to.type)) refuse(clash);
}

std::string ValueText(const Value& value, const TypeInfo& type) {
  if (IsNull(value)) return "NULL";
  if (type.type == SqlType::Variant) return ValueText(value, VariantBase(value));
  if (const auto* binary = std::get_if<BinaryValue>(&value)) {
    return "0x" + fmt::format("{}", HexText(binary->bytes));
  }
  return ToText(value, type, {SqlType::NVarChar, -1, 0, 0}, 0);
}

TypeInfo VariantBase(const Value& value) {
  const auto* number = std::get_if<std::int64_t>(&value);
  if (!number) return NVarChar(4000);
  return *number >= INT32_MIN && *number <= INT32_MAX ? IntType() : BigIntType();
}

}  // namespace sandbox
