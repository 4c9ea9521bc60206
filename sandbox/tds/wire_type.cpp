#include "sandbox/tds/wire_type.h"

#include <algorithm>

#include "sandbox/tds/tokens.h"

namespace sandbox::tds {

namespace {

// In the order of SqlType; then the forms that only clients use.
constexpr WireForm kForms[] = {
    {SqlType::Bit, WireCode::BitN, WireShape::Sized, 1},
    {SqlType::TinyInt, WireCode::IntN, WireShape::Sized, 1},
    {SqlType::SmallInt, WireCode::IntN, WireShape::Sized, 2},
    {SqlType::Int, WireCode::IntN, WireShape::Sized, 4},
    {SqlType::BigInt, WireCode::IntN, WireShape::Sized, 8},
    {SqlType::Decimal, WireCode::DecimalN, WireShape::Decimal, 0},
    {SqlType::Numeric, WireCode::NumericN, WireShape::Decimal, 0},
    {SqlType::SmallMoney, WireCode::MoneyN, WireShape::Sized, 4},
    {SqlType::Money, WireCode::MoneyN, WireShape::Sized, 8},
    {SqlType::Real, WireCode::FloatN, WireShape::Sized, 4},
    {SqlType::Float, WireCode::FloatN, WireShape::Sized, 8},
    {SqlType::SmallDateTime, WireCode::DateTimeN, WireShape::Sized, 4},
    {SqlType::DateTime, WireCode::DateTimeN, WireShape::Sized, 8},
    {SqlType::DateTime2, WireCode::DateTime2N, WireShape::Scaled, 3},
    {SqlType::DateTimeOffset, WireCode::DateTimeOffsetN, WireShape::Scaled, 5},
    {SqlType::Date, WireCode::DateN, WireShape::Date, 3},
    {SqlType::Time, WireCode::TimeN, WireShape::Scaled, 0},
    {SqlType::Char, WireCode::Char, WireShape::Short, 1, true},
    {SqlType::VarChar, WireCode::VarChar, WireShape::Short, 1, true},
    {SqlType::Text, WireCode::Text, WireShape::Long, 1, true},
    {SqlType::NChar, WireCode::NChar, WireShape::Short, 2, true},
    {SqlType::NVarChar, WireCode::NVarChar, WireShape::Short, 2, true},
    {SqlType::NText, WireCode::NText, WireShape::Long, 2, true},
    {SqlType::Xml, WireCode::Xml, WireShape::Xml, 0},
    {SqlType::Binary, WireCode::Binary, WireShape::Short, 1},
    {SqlType::VarBinary, WireCode::VarBinary, WireShape::Short, 1},
    {SqlType::Image, WireCode::Image, WireShape::Long, 1},
    {SqlType::Timestamp, WireCode::Binary, WireShape::Short, 1},
    {SqlType::UniqueIdentifier, WireCode::Guid, WireShape::Sized, 16},
    {SqlType::Variant, WireCode::Variant, WireShape::Variant, kVariantSize},
    {SqlType::Bit, WireCode::Bit, WireShape::Bare, 1},
    {SqlType::TinyInt, WireCode::Int1, WireShape::Bare, 1},
    {SqlType::SmallInt, WireCode::Int2, WireShape::Bare, 2},
    {SqlType::Int, WireCode::Int4, WireShape::Bare, 4},
    {SqlType::BigInt, WireCode::Int8, WireShape::Bare, 8},
    {SqlType::SmallMoney, WireCode::Money4, WireShape::Bare, 4},
    {SqlType::Money, WireCode::Money, WireShape::Bare, 8},
    {SqlType::Real, WireCode::Float4, WireShape::Bare, 4},
    {SqlType::Float, WireCode::Float8, WireShape::Bare, 8},
    {SqlType::SmallDateTime, WireCode::DateTime4, WireShape::Bare, 4},
    {SqlType::DateTime, WireCode::DateTime, WireShape::Bare, 8},
};

constexpr std::uint32_t kUserTypeTimestamp = 80;
constexpr std::uint32_t kTimestampSize = 8;
constexpr std::uint32_t kGreatestShort = 8000;
constexpr std::uint32_t kGreatestLong = 0x7FFFFFFF;

void MeasureShort(WireType& wire, const TypeInfo& type, std::uint32_t unit) {
  if (type.length < 0) {
    wire.shape = WireShape::Partial;
    wire.size = kPartialSize;
    return;
  }
  auto length = static_cast<std::uint32_t>(std::max(type.length, 1));
  wire.size = std::min(length * unit, kGreatestShort);
}

}  // namespace

std::span<const WireForm> WireForms() {
  return kForms;
}

std::uint32_t DecimalSize(int precision) {
  if (precision <= 9) return 5;
  if (precision <= 19) return 9;
  return precision <= 28 ? 13 : 17;
}

std::uint32_t TimeSize(int scale) {
  if (scale <= 2) return 3;
  return scale <= 4 ? 4 : 5;
}

WireType MakeWireType(const TypeInfo& type) {
  const WireForm& form = kForms[static_cast<int>(type.type)];
  WireType wire{.code = form.code,
                .shape = form.shape,
                .collated = form.collated,
                .size = form.size,
                .precision = static_cast<std::uint8_t>(type.precision),
                .scale = static_cast<std::uint8_t>(type.scale),
                .user_type = 0};
  switch (form.shape) {
    case WireShape::Decimal:
      wire.precision = static_cast<std::uint8_t>(std::clamp(type.precision, 1, 38));
      wire.size = DecimalSize(wire.precision);
      break;
    case WireShape::Scaled:
      wire.scale = static_cast<std::uint8_t>(std::clamp(type.scale, 0, 7));
      wire.size = form.size + TimeSize(wire.scale);
      break;
    case WireShape::Short:
      MeasureShort(wire, type, form.size);
      break;
    case WireShape::Long:
      wire.size = kGreatestLong;
      break;
    default:
      break;
  }
  if (type.type == SqlType::Timestamp) {
    wire.shape = WireShape::Short;
    wire.size = kTimestampSize;
    wire.user_type = kUserTypeTimestamp;
  }
  return wire;
}

void WriteTypeInfo(ByteWriter& out, const WireType& type) {
  out.U8(static_cast<std::uint8_t>(type.code));
  switch (type.shape) {
    case WireShape::Bare:
    case WireShape::Date:
      break;
    case WireShape::Sized:
      out.U8(static_cast<std::uint8_t>(type.size));
      break;
    case WireShape::Decimal:
      out.U8(static_cast<std::uint8_t>(type.size));
      out.U8(type.precision);
      out.U8(type.scale);
      break;
    case WireShape::Scaled:
      out.U8(type.scale);
      break;
    case WireShape::Short:
    case WireShape::Partial:
      out.U16(static_cast<std::uint16_t>(type.size));
      break;
    case WireShape::Xml:
      out.U8(0);
      break;
    case WireShape::Long:
    case WireShape::Variant:
      out.U32(type.size);
      break;
  }
  if (type.collated) out.Raw(kCollation);
}

}  // namespace sandbox::tds
