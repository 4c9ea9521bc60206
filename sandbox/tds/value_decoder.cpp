#include "sandbox/tds/value_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "sandbox/tds/byte_reader.h"
#include "sandbox/tds/temporal.h"
#include "sandbox/text/code_page.h"
#include "sandbox/text/utf16.h"
#include "sandbox/values/ticks.h"

namespace sandbox::tds {

namespace {

constexpr int kMoneyScale = 4;
constexpr std::size_t kDateSize = 3;
constexpr std::int32_t kDaysTo1753 = 639'905;

[[noreturn]] void Misfit() {
  throw ProtocolError("a value does not fit its type");
}

void Require(bool fits) {
  if (!fits) Misfit();
}

std::uint64_t LowBytes(std::string_view bytes) {
  std::uint64_t value = 0;
  std::memcpy(&value, bytes.data(), bytes.size());
  return value;
}

template <typename T>
T As(std::string_view body) {
  return ByteReader(body).Read<T>();
}

std::int64_t Integer(std::string_view body) {
  switch (body.size()) {
    case 1:
      return As<std::uint8_t>(body);
    case 2:
      return As<std::int16_t>(body);
    case 4:
      return As<std::int32_t>(body);
    case 8:
      return As<std::int64_t>(body);
    default:
      Misfit();
  }
}

double Float(std::string_view body) {
  Require(body.size() == 4 || body.size() == 8);
  double value = body.size() == 4 ? As<float>(body) : As<double>(body);
  Require(std::isfinite(value));
  return value;
}

DecimalValue Money(std::string_view body) {
  Require(body.size() == 4 || body.size() == 8);
  if (body.size() == 4) return {As<std::int32_t>(body), kMoneyScale};
  ByteReader reader(body);
  std::uint64_t high = reader.U32();
  return {static_cast<std::int64_t>(high << 32 | reader.U32()), kMoneyScale};
}

DecimalValue Decimal(std::string_view body, int scale) {
  UInt128 greatest = 1;
  for (int digit = 0; digit < 38; ++digit) greatest *= 10;
  UInt128 magnitude = 0;
  Require(body.size() >= 2 && body.size() <= 1 + sizeof magnitude);
  std::memcpy(&magnitude, body.data() + 1, body.size() - 1);
  Require(magnitude < greatest);
  auto unscaled = static_cast<Int128>(magnitude);
  return {body[0] == 0 ? -unscaled : unscaled, scale};
}

DateTimeValue LegacyMoment(std::string_view body) {
  Require(body.size() == 4 || body.size() == 8);
  ByteReader reader(body);
  DateTimeValue moment;
  if (body.size() == 4) {
    moment.days = reader.U16() + kDaysTo1900;
    moment.ticks = reader.U16() * kTicksPerMinute;
  } else {
    auto days = reader.Read<std::int32_t>();
    Require(days >= kDaysTo1753 - kDaysTo1900 && days <= kLastDay - kDaysTo1900);
    moment = FromLegacy({days, reader.U32()});
  }
  Require(moment.ticks < kTicksPerDay);
  return moment;
}

/// A time, a date, or both, by the bytes that the type has of each.
DateTimeValue Moment(std::string_view body, std::size_t time_size, int scale, bool has_date) {
  Require(body.size() == time_size + (has_date ? kDateSize : 0));
  DateTimeValue moment;
  if (time_size > 0) {
    auto units = static_cast<std::int64_t>(LowBytes(body.substr(0, time_size)));
    Require(units < kTicksPerDay / TicksPerUnit(scale));
    moment.ticks = units * TicksPerUnit(scale);
  }
  if (has_date) moment.days = static_cast<std::int32_t>(LowBytes(body.substr(time_size)));
  Require(moment.days <= kLastDay);
  return moment;
}

DateTimeValue OffsetMoment(std::string_view body, int scale) {
  constexpr int kGreatestOffset = 14 * 60;
  Require(body.size() > sizeof(std::int16_t));
  std::string_view offset = body.substr(body.size() - sizeof(std::int16_t));
  body.remove_suffix(sizeof(std::int16_t));
  DateTimeValue moment = Moment(body, TimeSize(scale), scale, true);
  moment.offset_minutes = As<std::int16_t>(offset);
  Require(std::abs(moment.offset_minutes) <= kGreatestOffset);
  moment = ToLocal(moment);
  Require(moment.days >= 0 && moment.days <= kLastDay);
  return moment;
}

GuidValue Guid(std::string_view body) {
  GuidValue guid;
  Require(body.size() == sizeof guid.bytes);
  std::memcpy(guid.bytes, body.data(), body.size());
  // The first three groups travel with their lowest byte first.
  std::reverse(guid.bytes, guid.bytes + 4);
  std::reverse(guid.bytes + 4, guid.bytes + 6);
  std::reverse(guid.bytes + 6, guid.bytes + 8);
  return guid;
}

}  // namespace

Value DecodeValue(const WireType& type, std::string body) {
  switch (type.code) {
    case WireCode::Bit:
    case WireCode::BitN:
      return Integer(body) != 0;
    case WireCode::Int1:
    case WireCode::Int2:
    case WireCode::Int4:
    case WireCode::Int8:
    case WireCode::IntN:
      return Integer(body);
    case WireCode::Float4:
    case WireCode::Float8:
    case WireCode::FloatN:
      return Float(body);
    case WireCode::Money4:
    case WireCode::Money:
    case WireCode::MoneyN:
      return Money(body);
    case WireCode::DecimalN:
    case WireCode::NumericN:
      return Decimal(body, type.scale);
    case WireCode::DateTime4:
    case WireCode::DateTime:
    case WireCode::DateTimeN:
      return LegacyMoment(body);
    case WireCode::DateN:
      return Moment(body, 0, 0, true);
    case WireCode::TimeN:
      return Moment(body, TimeSize(type.scale), type.scale, false);
    case WireCode::DateTime2N:
      return Moment(body, TimeSize(type.scale), type.scale, true);
    case WireCode::DateTimeOffsetN:
      return OffsetMoment(body, type.scale);
    case WireCode::Guid:
      return Guid(body);
    case WireCode::NVarChar:
    case WireCode::NChar:
    case WireCode::NText:
    case WireCode::Xml:
      return Utf16ToUtf8(body);
    case WireCode::Char:
    case WireCode::VarChar:
    case WireCode::Text:
      return FromCodePage(body);
    default:
      return BinaryValue{std::move(body)};
  }
}

}  // namespace sandbox::tds
