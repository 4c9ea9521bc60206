#include "sandbox/tds/wire_type.h"

#include <algorithm>

#include "sandbox/tds/tokens.h"

namespace sandbox::tds {

namespace {

struct Form {
  SqlType sql_type;
  WireCode code;
  WireShape shape;
  std::uint32_t size;  // of a value; for Short and Long, of one character or byte
  bool collated = false;
};

// In the order of SqlType.
constexpr Form kForms[] = {
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
};

const Form& FormOf(SqlType type) {
  return kForms[static_cast<int>(type)];
}

constexpr std::uint32_t kUserTypeTimestamp = 80;
constexpr std::uint32_t kTimestampSize = 8;
constexpr std::uint32_t kGreatestShort = 8000;
constexpr std::uint32_t kGreatestLong = 0x7FFFFFFF;

/// The type that a client too old for `type` gets in its place.
TypeInfo OlderForm(const TypeInfo& type, ProtocolVersion version) {
  const bool dates_as_text = version < ProtocolVersion::V73;
  const bool max_as_text = version < ProtocolVersion::V72;
  const bool max = type.length < 0;
  const int fraction = type.scale > 0 ? type.scale + 1 : 0;
  const auto text = [](int length) { return TypeInfo{SqlType::NVarChar, length, 0, 0}; };
  switch (type.type) {
    case SqlType::Date:
      return dates_as_text ? text(10) : type;
    case SqlType::Time:
      return dates_as_text ? text(8 + fraction) : type;
    case SqlType::DateTime2:
      return dates_as_text ? text(19 + fraction) : type;
    case SqlType::DateTimeOffset:
      return dates_as_text ? text(26 + fraction) : type;
    case SqlType::VarChar:
      return max_as_text && max ? TypeInfo{SqlType::Text} : type;
    case SqlType::NVarChar:
      return max_as_text && max ? TypeInfo{SqlType::NText} : type;
    case SqlType::VarBinary:
      return max_as_text && max ? TypeInfo{SqlType::Image} : type;
    case SqlType::Xml:
      return max_as_text ? TypeInfo{SqlType::NText} : type;
    default:
      return type;
  }
}

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

std::uint32_t DecimalSize(int precision) {
  if (precision <= 9) return 5;
  if (precision <= 19) return 9;
  return precision <= 28 ? 13 : 17;
}

std::uint32_t TimeSize(int scale) {
  if (scale <= 2) return 3;
  return scale <= 4 ? 4 : 5;
}

WireType MakeWireType(const TypeInfo& declared, ProtocolVersion version) {
  const TypeInfo type = OlderForm(declared, version);
  const Form& form = FormOf(type.type);
  WireType wire{.code = form.code,
                .shape = form.shape,
                .collated = form.collated,
                .size = form.size,
                .precision = static_cast<std::uint8_t>(type.precision),
                .scale = static_cast<std::uint8_t>(declared.scale),
                .user_type = 0,
                .sql_type = declared.type,
                .knows_date_types = version >= ProtocolVersion::V73};
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
