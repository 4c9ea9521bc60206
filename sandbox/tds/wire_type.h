#pragma once

#include <cstdint>
#include <span>

#include "sandbox/tds/byte_writer.h"
#include "sandbox/values/types.h"

namespace sandbox::tds {

/// The type codes of the protocol.
enum class WireCode : std::uint8_t {
  Image = 0x22,
  Text = 0x23,
  Guid = 0x24,
  IntN = 0x26,
  DateN = 0x28,
  TimeN = 0x29,
  DateTime2N = 0x2A,
  DateTimeOffsetN = 0x2B,
  Int1 = 0x30,
  Bit = 0x32,
  Int2 = 0x34,
  Int4 = 0x38,
  DateTime4 = 0x3A,
  Float4 = 0x3B,
  Money = 0x3C,
  DateTime = 0x3D,
  Float8 = 0x3E,
  Variant = 0x62,
  NText = 0x63,
  BitN = 0x68,
  DecimalN = 0x6A,
  NumericN = 0x6C,
  FloatN = 0x6D,
  MoneyN = 0x6E,
  DateTimeN = 0x6F,
  Money4 = 0x7A,
  Int8 = 0x7F,
  VarBinary = 0xA5,
  VarChar = 0xA7,
  Binary = 0xAD,
  Char = 0xAF,
  NVarChar = 0xE7,
  NChar = 0xEF,
  Xml = 0xF1,
};

/// How a type's measures and a value's length are laid out.
enum class WireShape {
  Bare,     // neither measures nor a value length
  Sized,    // one byte of greatest size; one byte of length before the value
  Decimal,  // as Sized, with precision and scale
  Date,     // no measures; one byte of length before the value
  Scaled,   // one byte of scale; one byte of length before the value
  Short,    // two bytes of greatest size; two bytes of length before the value
  Partial,  // two bytes 0xFFFF; the value in chunks
  Xml,      // one byte: no schema; the value in chunks
  Long,     // four bytes of greatest size, a table name; a text pointer and four bytes of length
  Variant,  // four bytes of greatest size; four bytes of length, then type and value
};

/// How a type of the server's travels.
struct WireForm {
  SqlType sql_type;
  WireCode code;
  WireShape shape;
  std::uint32_t size;  // of a value; for Short and Long, of one character or byte
  bool collated = false;
};

/// Every form; the first with a code is the one that the server sends.
std::span<const WireForm> WireForms();

/// A column's or parameter's type on the wire.
struct WireType {
  WireCode code = WireCode::IntN;
  WireShape shape = WireShape::Sized;
  bool collated = false;
  std::uint32_t size = 0;  // greatest size in bytes
  std::uint8_t precision = 0;
  std::uint8_t scale = 0;
  std::uint32_t user_type = 0;
};

WireType MakeWireType(const TypeInfo& type);

void WriteTypeInfo(ByteWriter& out, const WireType& type);

/// Bytes that a decimal magnitude of so many digits takes, the sign included.
std::uint32_t DecimalSize(int precision);
/// Bytes that a time of day with so many fractional digits takes.
std::uint32_t TimeSize(int scale);

constexpr std::uint32_t kVariantSize = 8009;
constexpr std::uint16_t kPartialSize = 0xFFFF;

}  // namespace sandbox::tds
