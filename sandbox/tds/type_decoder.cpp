#include "sandbox/tds/type_decoder.h"

#include <algorithm>
#include <string>

#include "sandbox/tds/value_decoder.h"

namespace sandbox::tds {

namespace {

constexpr int kGreatestPrecision = 38;
constexpr int kGreatestScale = 7;
constexpr std::uint32_t kGreatestValue = 0x7FFFFFFF;
constexpr std::size_t kCollationSize = 5;

struct Form {
  WireCode code;
  WireShape shape;
  std::uint32_t size = 0;  // of a Bare type's value
  bool collated = false;
};

constexpr Form kForms[] = {
    {WireCode::Null, WireShape::Bare, 0},
    {WireCode::Int1, WireShape::Bare, 1},
    {WireCode::Bit, WireShape::Bare, 1},
    {WireCode::Int2, WireShape::Bare, 2},
    {WireCode::Int4, WireShape::Bare, 4},
    {WireCode::Int8, WireShape::Bare, 8},
    {WireCode::DateTime4, WireShape::Bare, 4},
    {WireCode::DateTime, WireShape::Bare, 8},
    {WireCode::Float4, WireShape::Bare, 4},
    {WireCode::Float8, WireShape::Bare, 8},
    {WireCode::Money4, WireShape::Bare, 4},
    {WireCode::Money, WireShape::Bare, 8},
    {WireCode::Guid, WireShape::Sized},
    {WireCode::IntN, WireShape::Sized},
    {WireCode::BitN, WireShape::Sized},
    {WireCode::FloatN, WireShape::Sized},
    {WireCode::MoneyN, WireShape::Sized},
    {WireCode::DateTimeN, WireShape::Sized},
    {WireCode::ShortBinary, WireShape::Sized},
    {WireCode::ShortVarBinary, WireShape::Sized},
    {WireCode::ShortChar, WireShape::Sized},
    {WireCode::ShortVarChar, WireShape::Sized},
    {WireCode::Decimal, WireShape::Decimal},
    {WireCode::Numeric, WireShape::Decimal},
    {WireCode::DecimalN, WireShape::Decimal},
    {WireCode::NumericN, WireShape::Decimal},
    {WireCode::DateN, WireShape::Date},
    {WireCode::TimeN, WireShape::Scaled},
    {WireCode::DateTime2N, WireShape::Scaled},
    {WireCode::DateTimeOffsetN, WireShape::Scaled},
    {WireCode::Binary, WireShape::Short},
    {WireCode::VarBinary, WireShape::Short},
    {WireCode::Char, WireShape::Short, 0, true},
    {WireCode::VarChar, WireShape::Short, 0, true},
    {WireCode::NChar, WireShape::Short, 0, true},
    {WireCode::NVarChar, WireShape::Short, 0, true},
    {WireCode::Xml, WireShape::Xml},
    {WireCode::Image, WireShape::Long},
    {WireCode::Text, WireShape::Long, 0, true},
    {WireCode::NText, WireShape::Long, 0, true},
    {WireCode::Variant, WireShape::Variant},
};

struct Declared {
  WireCode code;
  SqlType type;
  std::uint32_t size = 0;       // the size it stands for, 0 for any
  int bytes_per_character = 0;  // where the size is a length
};

constexpr Declared kDeclared[] = {
    {WireCode::Bit, SqlType::Bit},
    {WireCode::BitN, SqlType::Bit},
    {WireCode::Int1, SqlType::TinyInt},
    {WireCode::Int2, SqlType::SmallInt},
    {WireCode::Int4, SqlType::Int},
    {WireCode::Int8, SqlType::BigInt},
    {WireCode::IntN, SqlType::TinyInt, 1},
    {WireCode::IntN, SqlType::SmallInt, 2},
    {WireCode::IntN, SqlType::Int, 4},
    {WireCode::IntN, SqlType::BigInt, 8},
    {WireCode::Float4, SqlType::Real},
    {WireCode::Float8, SqlType::Float},
    {WireCode::FloatN, SqlType::Real, 4},
    {WireCode::FloatN, SqlType::Float, 8},
    {WireCode::Money4, SqlType::SmallMoney},
    {WireCode::Money, SqlType::Money},
    {WireCode::MoneyN, SqlType::SmallMoney, 4},
    {WireCode::MoneyN, SqlType::Money, 8},
    {WireCode::DateTime4, SqlType::SmallDateTime},
    {WireCode::DateTime, SqlType::DateTime},
    {WireCode::DateTimeN, SqlType::SmallDateTime, 4},
    {WireCode::DateTimeN, SqlType::DateTime, 8},
    {WireCode::Decimal, SqlType::Decimal},
    {WireCode::DecimalN, SqlType::Decimal},
    {WireCode::Numeric, SqlType::Numeric},
    {WireCode::NumericN, SqlType::Numeric},
    {WireCode::DateN, SqlType::Date},
    {WireCode::TimeN, SqlType::Time},
    {WireCode::DateTime2N, SqlType::DateTime2},
    {WireCode::DateTimeOffsetN, SqlType::DateTimeOffset},
    {WireCode::Guid, SqlType::UniqueIdentifier},
    {WireCode::Variant, SqlType::Variant},
    {WireCode::Xml, SqlType::Xml},
    {WireCode::Text, SqlType::Text},
    {WireCode::NText, SqlType::NText},
    {WireCode::Image, SqlType::Image},
    {WireCode::Char, SqlType::Char, 0, 1},
    {WireCode::ShortChar, SqlType::Char, 0, 1},
    {WireCode::VarChar, SqlType::VarChar, 0, 1},
    {WireCode::ShortVarChar, SqlType::VarChar, 0, 1},
    {WireCode::NChar, SqlType::NChar, 0, 2},
    {WireCode::NVarChar, SqlType::NVarChar, 0, 2},
    {WireCode::Binary, SqlType::Binary, 0, 1},
    {WireCode::ShortBinary, SqlType::Binary, 0, 1},
    {WireCode::VarBinary, SqlType::VarBinary, 0, 1},
    {WireCode::ShortVarBinary, SqlType::VarBinary, 0, 1},
};

/// The form that a type code announces, its measures still to be read.
WireType TypeOfCode(std::uint8_t byte) {
  auto code = static_cast<WireCode>(byte);
  const auto* form = std::ranges::find(kForms, code, &Form::code);
  if (form == std::end(kForms)) throw ProtocolError("a type is unknown");
  WireType type;
  type.code = code;
  type.shape = form->shape;
  type.size = form->size;
  type.collated = form->collated;
  return type;
}

void ReadPrecision(ByteReader& reader, WireType& type) {
  type.precision = reader.U8();
  type.scale = reader.U8();
  if (type.precision < 1 || type.precision > kGreatestPrecision || type.scale > type.precision) {
    throw ProtocolError("a decimal's precision or scale is out of range");
  }
}

void ReadScale(ByteReader& reader, WireType& type) {
  type.scale = reader.U8();
  if (type.scale > kGreatestScale) throw ProtocolError("a time's scale is out of range");
}

void ReadXmlSchema(ByteReader& reader) {
  constexpr std::uint8_t kNone = 0;
  constexpr std::uint8_t kPartialByte = 0xFF;
  std::uint8_t schema = reader.U8();
  if (schema == kNone) return;
  // FreeTDS announces the xml of a bulk load as it does varchar(max).
  if (schema != kPartialByte || reader.U8() != kPartialByte) {
    throw ProtocolError("xml schemas are not supported");
  }
}

std::string ReadBody(ByteReader& reader, std::uint64_t size) {
  if (size > kGreatestValue) throw ProtocolError("a value is too long");
  return reader.Bytes(size);
}

Value ReadPartial(ByteReader& reader, const WireType& type) {
  constexpr std::uint64_t kNull = ~std::uint64_t{0};
  if (reader.U64() == kNull) return {};
  std::string body;
  for (std::uint32_t chunk = reader.U32(); chunk != 0; chunk = reader.U32()) {
    if (body.size() + chunk > kGreatestValue) throw ProtocolError("a value is too long");
    reader.Append(chunk, body);
  }
  return DecodeValue(type, std::move(body));
}

Value ReadLong(ByteReader& reader, const WireType& type, LongForm form) {
  constexpr std::size_t kTimestampSize = 8;
  constexpr std::uint32_t kNull = 0xFFFFFFFF;
  if (form == LongForm::InRow) {
    std::uint8_t pointer_size = reader.U8();
    if (pointer_size == 0) return {};
    reader.Skip(pointer_size + kTimestampSize);
  }
  std::uint32_t size = reader.U32();
  if (size == kNull) return {};
  return DecodeValue(type, ReadBody(reader, size));
}

Value ReadVariant(ByteReader& reader) {
  std::uint32_t size = reader.U32();
  if (size == 0) return {};
  std::string bytes = ReadBody(reader, size);
  ByteReader inner(bytes);
  WireType type = TypeOfCode(inner.U8());
  std::string properties = inner.Bytes(inner.U8());
  ByteReader measures(properties);
  switch (type.shape) {
    case WireShape::Decimal:
      ReadPrecision(measures, type);
      break;
    case WireShape::Scaled:
      ReadScale(measures, type);
      break;
    case WireShape::Xml:
    case WireShape::Long:
    case WireShape::Variant:
      throw ProtocolError("a variant cannot hold such a type");
    default:
      break;
  }
  return DecodeValue(type, inner.Rest(size));
}

}  // namespace

WireType ReadTypeInfo(ByteReader& reader) {
  WireType type = TypeOfCode(reader.U8());
  switch (type.shape) {
    case WireShape::Bare:
    case WireShape::Date:
    case WireShape::Partial:
      break;
    case WireShape::Sized:
      type.size = reader.U8();
      break;
    case WireShape::Decimal:
      type.size = reader.U8();
      ReadPrecision(reader, type);
      break;
    case WireShape::Scaled:
      ReadScale(reader, type);
      break;
    case WireShape::Short:
      type.size = reader.U16();
      if (type.size == kPartialSize) type.shape = WireShape::Partial;
      break;
    case WireShape::Xml:
      ReadXmlSchema(reader);
      break;
    case WireShape::Long:
    case WireShape::Variant:
      type.size = reader.U32();
      break;
  }
  if (type.collated) reader.Skip(kCollationSize);
  return type;
}

TypeInfo DeclaredType(const WireType& type) {
  const auto measured = std::ranges::find_if(kDeclared, [&](const Declared& declared) {
    return declared.code == type.code && (declared.size == 0 || declared.size == type.size);
  });
  if (measured == std::end(kDeclared)) return {SqlType::NVarChar, 1, 0, 0};
  TypeInfo declared{measured->type, 0, type.precision, type.scale};
  if (type.shape == WireShape::Partial) {
    declared.length = -1;
  } else if (measured->bytes_per_character > 0) {
    declared.length = static_cast<int>(type.size) / measured->bytes_per_character;
  }
  return declared;
}

Value ReadValue(ByteReader& reader, const WireType& type, LongForm long_form) {
  constexpr std::uint16_t kShortNull = 0xFFFF;
  switch (type.shape) {
    case WireShape::Bare:
      return type.size == 0 ? Value{} : DecodeValue(type, reader.Bytes(type.size));
    case WireShape::Short: {
      std::uint16_t size = reader.U16();
      return size == kShortNull ? Value{} : DecodeValue(type, reader.Bytes(size));
    }
    case WireShape::Partial:
    case WireShape::Xml:
      return ReadPartial(reader, type);
    case WireShape::Long:
      return ReadLong(reader, type, long_form);
    case WireShape::Variant:
      return ReadVariant(reader);
    default: {
      std::uint8_t size = reader.U8();
      return size == 0 ? Value{} : DecodeValue(type, reader.Bytes(size));
    }
  }
}

}  // namespace sandbox::tds
