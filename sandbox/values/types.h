#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "sandbox/text/text_order.h"

namespace sandbox {

/// SQL Server's column types.
enum class SqlType {
  Bit,
  TinyInt,
  SmallInt,
  Int,
  BigInt,
  Decimal,
  Numeric,
  SmallMoney,
  Money,
  Real,
  Float,
  SmallDateTime,
  DateTime,
  DateTime2,
  DateTimeOffset,
  Date,
  Time,
  Char,
  VarChar,
  Text,
  NChar,
  NVarChar,
  NText,
  Xml,
  Binary,
  VarBinary,
  Image,
  Timestamp,
  UniqueIdentifier,
  Variant,
};

/// A type with its declared measures.
struct TypeInfo {
  SqlType type = SqlType::Int;
  int length = 0;     // characters (n/char types) or bytes (binary types); -1 is (max)
  int precision = 0;  // decimal digits
  int scale = 0;      // digits behind the point, or fractional digits of times
  TextOrder order = TextOrder::Default;  // of text types
};

__extension__ using Int128 = __int128;
__extension__ using UInt128 = unsigned __int128;

/// An exact number: value / 10^scale. 38 digits fit.
struct DecimalValue {
  Int128 unscaled = 0;
  int scale = 0;
};

/// A point in time. Pure dates have ticks 0, pure times days 0.
struct DateTimeValue {
  std::int32_t days = 0;            // since 0001-01-01
  std::int64_t ticks = 0;           // of 100 ns since midnight
  std::int16_t offset_minutes = 0;  // datetimeoffset only
};

struct GuidValue {
  unsigned char bytes[16];  // in the order of the text form
};

struct BinaryValue {
  std::string bytes;
};

/// A value. Text is UTF-8; money is DecimalValue with scale 4; NULL is monostate.
using Value = std::variant<std::monostate, bool, std::int64_t, double, DecimalValue, std::string,
                           BinaryValue, DateTimeValue, GuidValue>;

inline bool IsNull(const Value& value) {
  return std::holds_alternative<std::monostate>(value);
}

/// A parameter of a remote procedure call.
struct Parameter {
  std::string name;  // with "@", or empty
  TypeInfo type;
  Value value;
};

struct ColumnInfo {
  std::string name;
  TypeInfo type;
  bool nullable = true;
  bool identity = false;
};

}  // namespace sandbox
