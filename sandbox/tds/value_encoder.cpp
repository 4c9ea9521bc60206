#include "sandbox/tds/value_encoder.h"

#include <algorithm>

#include "sandbox/tds/temporal.h"
#include "sandbox/tds/tokens.h"
#include "sandbox/text/code_page.h"
#include "sandbox/text/utf16.h"

namespace sandbox::tds {

namespace {

constexpr std::uint64_t kPartialNull = ~std::uint64_t{0};
constexpr std::uint16_t kShortNull = 0xFFFF;
constexpr int kMoneyScale = 4;
constexpr std::size_t kDateSize = 3;

void WriteLow(ByteWriter& out, std::uint64_t value, std::size_t bytes) {
  out.Raw(std::string_view(reinterpret_cast<const char*>(&value), bytes));
}

void WriteSize(ByteWriter& out, std::uint32_t size) {
  out.U8(static_cast<std::uint8_t>(size));
}

std::int64_t IntegerOf(const Value& value) {
  if (const bool* bit = std::get_if<bool>(&value)) return *bit ? 1 : 0;
  return std::get<std::int64_t>(value);
}

Int128 Rescaled(const DecimalValue& value, int scale) {
  Int128 result = value.unscaled;
  for (int at = value.scale; at < scale; ++at) result *= 10;
  for (int at = value.scale; at > scale; --at) result = (result + (result < 0 ? -5 : 5)) / 10;
  return result;
}

Int128 ExactOf(const Value& value, int scale) {
  if (const auto* decimal = std::get_if<DecimalValue>(&value)) return Rescaled(*decimal, scale);
  return Rescaled({IntegerOf(value), 0}, scale);
}

// The bare bodies: what follows a value's length.

void IntegerBody(ByteWriter& out, const WireType& type, const Value& value) {
  WriteLow(out, static_cast<std::uint64_t>(IntegerOf(value)), type.size);
}

void FloatBody(ByteWriter& out, const WireType& type, const Value& value) {
  double number = std::get<double>(value);
  if (type.size == sizeof(float)) {
    out.Write(static_cast<float>(number));
  } else {
    out.Write(number);
  }
}

void MoneyBody(ByteWriter& out, const WireType& type, const Value& value) {
  auto money = static_cast<std::int64_t>(ExactOf(value, kMoneyScale));
  if (type.size == sizeof(std::int32_t)) {
    out.Write(static_cast<std::int32_t>(money));
    return;
  }
  out.Write(static_cast<std::int32_t>(money >> 32));
  out.Write(static_cast<std::uint32_t>(money));
}

void DecimalBody(ByteWriter& out, const WireType& type, const Value& value) {
  Int128 exact = ExactOf(value, type.scale);
  const bool negative = exact < 0;
  auto magnitude = static_cast<UInt128>(exact);
  if (negative) magnitude = -magnitude;
  out.U8(negative ? 0 : 1);
  out.Raw(std::string_view(reinterpret_cast<const char*>(&magnitude), type.size - 1));
}

void LegacyDateTimeBody(ByteWriter& out, const WireType& type, const Value& value) {
  const auto& moment = std::get<DateTimeValue>(value);
  if (type.size == 4) {
    out.U16(static_cast<std::uint16_t>(moment.days - kDaysTo1900));
    out.U16(static_cast<std::uint16_t>(moment.ticks / kTicksPerMinute));
    return;
  }
  LegacyDateTime legacy = ToLegacy(moment);
  out.Write(legacy.days);
  out.U32(legacy.three_hundredths);
}

void WriteTime(ByteWriter& out, const WireType& type, const DateTimeValue& moment) {
  auto units = static_cast<std::uint64_t>(moment.ticks / TicksPerUnit(type.scale));
  WriteLow(out, units, TimeSize(type.scale));
}

void WriteDate(ByteWriter& out, const DateTimeValue& moment) {
  WriteLow(out, static_cast<std::uint64_t>(moment.days), kDateSize);
}

void DateBody(ByteWriter& out, const WireType&, const Value& value) {
  WriteDate(out, std::get<DateTimeValue>(value));
}

void TimeBody(ByteWriter& out, const WireType& type, const Value& value) {
  WriteTime(out, type, std::get<DateTimeValue>(value));
}

void DateTime2Body(ByteWriter& out, const WireType& type, const Value& value) {
  const auto& moment = std::get<DateTimeValue>(value);
  WriteTime(out, type, moment);
  WriteDate(out, moment);
}

void DateTimeOffsetBody(ByteWriter& out, const WireType& type, const Value& value) {
  DateTimeValue moment = ToUtc(std::get<DateTimeValue>(value));
  WriteTime(out, type, moment);
  WriteDate(out, moment);
  out.Write(moment.offset_minutes);
}

void GuidBody(ByteWriter& out, const WireType&, const Value& value) {
  // The first three groups travel with their lowest byte first.
  constexpr int kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  const auto& guid = std::get<GuidValue>(value);
  for (int at : kOrder) out.U8(guid.bytes[at]);
}

void UnicodeBody(ByteWriter& out, const WireType&, const Value& value) {
  AppendUtf16(std::get<std::string>(value), out.bytes());
}

void AnsiBody(ByteWriter& out, const WireType&, const Value& value) {
  AppendCodePage(std::get<std::string>(value), out.bytes());
}

void BinaryBody(ByteWriter& out, const WireType&, const Value& value) {
  out.Raw(std::get<BinaryValue>(value).bytes);
}

// A value with its length, by the shape of its type.

template <ValueEncoder::Encode body>
void Sized(ByteWriter& out, const WireType& type, const Value& value) {
  WriteSize(out, type.size);
  body(out, type, value);
}

void FitShort(ByteWriter& out, const WireType& type, std::size_t start) {
  const std::size_t end = start + type.size;
  if (out.size() > end) out.bytes().resize(end);
  if (type.code == WireCode::Char) out.Fill(end - out.size(), ' ');
  if (type.code == WireCode::Binary) out.Fill(end - out.size(), '\0');
  while (type.code == WireCode::NChar && out.size() < end) out.U16(' ');
}

template <ValueEncoder::Encode body>
void Short(ByteWriter& out, const WireType& type, const Value& value) {
  out.U16(0);
  std::size_t start = out.size();
  body(out, type, value);
  FitShort(out, type, start);
  out.Patch(start - sizeof(std::uint16_t), static_cast<std::uint16_t>(out.size() - start));
}

template <ValueEncoder::Encode body>
void Partial(ByteWriter& out, const WireType& type, const Value& value) {
  constexpr std::uint32_t kNoMoreChunks = 0;
  out.U64(0);
  out.U32(0);
  std::size_t start = out.size();
  body(out, type, value);
  std::size_t size = out.size() - start;
  out.Patch(start - 12, static_cast<std::uint64_t>(size));
  out.Patch(start - 4, static_cast<std::uint32_t>(size));
  // An empty chunk is the terminator itself.
  if (size > 0) out.U32(kNoMoreChunks);
}

template <ValueEncoder::Encode body>
void Long(ByteWriter& out, const WireType& type, const Value& value) {
  constexpr std::uint8_t kPointerSize = 16;
  constexpr std::size_t kTimestampSize = 8;
  out.U8(kPointerSize);
  out.Fill(kPointerSize + kTimestampSize, '\x01');
  out.U32(0);
  std::size_t start = out.size();
  body(out, type, value);
  out.Patch(start - sizeof(std::uint32_t), static_cast<std::uint32_t>(out.size() - start));
}

template <ValueEncoder::Encode body>
ValueEncoder::Encode ByShape(WireShape shape) {
  switch (shape) {
    case WireShape::Short:
      return Short<body>;
    case WireShape::Partial:
    case WireShape::Xml:
      return Partial<body>;
    case WireShape::Long:
      return Long<body>;
    default:
      return Sized<body>;
  }
}

// A sql_variant names the type of each value: a whole number's, or nvarchar.
void Variant(ByteWriter& out, const WireType&, const Value& value) {
  constexpr std::uint16_t kGreatestText = 8000;
  out.U32(0);
  const std::size_t start = out.size();
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    const bool narrow = *number >= INT32_MIN && *number <= INT32_MAX;
    out.U8(static_cast<std::uint8_t>(narrow ? WireCode::Int4 : WireCode::Int8));
    WriteSize(out, 0);  // of what else is told of the type
    WriteLow(out, static_cast<std::uint64_t>(*number), narrow ? 4 : 8);
  } else {
    out.U8(static_cast<std::uint8_t>(WireCode::NVarChar));
    WriteSize(out, kCollation.size() + sizeof kGreatestText);
    out.Raw(kCollation);
    out.U16(kGreatestText);
    AppendUtf16(std::get<std::string>(value), out.bytes());
  }
  out.Patch(start - sizeof(std::uint32_t), static_cast<std::uint32_t>(out.size() - start));
}

ValueEncoder::Encode EncodeFor(const WireType& type) {
  switch (type.code) {
    case WireCode::BitN:
    case WireCode::IntN:
      return Sized<IntegerBody>;
    case WireCode::FloatN:
      return Sized<FloatBody>;
    case WireCode::MoneyN:
      return Sized<MoneyBody>;
    case WireCode::DecimalN:
    case WireCode::NumericN:
      return Sized<DecimalBody>;
    case WireCode::DateTimeN:
      return Sized<LegacyDateTimeBody>;
    case WireCode::DateN:
      return Sized<DateBody>;
    case WireCode::TimeN:
      return Sized<TimeBody>;
    case WireCode::DateTime2N:
      return Sized<DateTime2Body>;
    case WireCode::DateTimeOffsetN:
      return Sized<DateTimeOffsetBody>;
    case WireCode::Guid:
      return Sized<GuidBody>;
    case WireCode::Variant:
      return Variant;
    case WireCode::NVarChar:
    case WireCode::NChar:
    case WireCode::NText:
    case WireCode::Xml:
      return ByShape<UnicodeBody>(type.shape);
    case WireCode::VarChar:
    case WireCode::Char:
    case WireCode::Text:
      return ByShape<AnsiBody>(type.shape);
    default:
      return ByShape<BinaryBody>(type.shape);
  }
}

}  // namespace

ValueEncoder::ValueEncoder(const WireType& type) : type_(type), encode_(EncodeFor(type)) {}

void ValueEncoder::WriteNull(ByteWriter& out) const {
  switch (type_.shape) {
    case WireShape::Short:
      out.U16(kShortNull);
      break;
    case WireShape::Partial:
    case WireShape::Xml:
      out.U64(kPartialNull);
      break;
    case WireShape::Variant:
      out.U32(0);
      break;
    default:
      out.U8(0);  // a length, or no text pointer
      break;
  }
}

}  // namespace sandbox::tds
