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

/// The form that a type code announces, its measures still to be read.
WireType TypeOfCode(std::uint8_t byte) {
  auto code = static_cast<WireCode>(byte);
  const auto form = std::ranges::find(WireForms(), code, &WireForm::code);
  if (form == WireForms().end()) throw ProtocolError("a type is unknown");
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
      type.size = reader.U32();
      break;
    case WireShape::Variant:
      throw ProtocolError("a variant does not travel to the server");
  }
  if (type.collated) reader.Skip(kCollationSize);
  return type;
}

TypeInfo DeclaredType(const WireType& type) {
  const auto form = std::ranges::find_if(WireForms(), [&](const WireForm& each) {
    return each.code == type.code && (each.shape != WireShape::Sized || each.size == type.size);
  });
  if (form == WireForms().end()) return {SqlType::NVarChar, 1, 0, 0};
  TypeInfo declared{form->sql_type, 0, type.precision, type.scale};
  if (type.shape == WireShape::Partial) {
    declared.length = -1;
  } else if (type.shape == WireShape::Short) {
    declared.length = static_cast<int>(type.size / form->size);
  }
  return declared;
}

Value ReadValue(ByteReader& reader, const WireType& type, LongForm long_form) {
  constexpr std::uint16_t kShortNull = 0xFFFF;
  switch (type.shape) {
    case WireShape::Bare:
      return DecodeValue(type, reader.Bytes(type.size));
    case WireShape::Short: {
      std::uint16_t size = reader.U16();
      return size == kShortNull ? Value{} : DecodeValue(type, reader.Bytes(size));
    }
    case WireShape::Partial:
    case WireShape::Xml:
      return ReadPartial(reader, type);
    case WireShape::Long:
      return ReadLong(reader, type, long_form);
    default: {
      std::uint8_t size = reader.U8();
      return size == 0 ? Value{} : DecodeValue(type, reader.Bytes(size));
    }
  }
}

}  // namespace sandbox::tds
