#pragma once

#include <cstdint>
#include <string>

namespace dorvane::ado {

/// ADO's published type codes, as columns and fields report them.
enum class DataType : std::int32_t {
  Empty = 0,
  SmallInt = 2,
  Integer = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  Date = 7,
  BStr = 8,
  Boolean = 11,
  Variant = 12,
  Decimal = 14,
  TinyInt = 16,
  UnsignedTinyInt = 17,
  UnsignedSmallInt = 18,
  UnsignedInt = 19,
  BigInt = 20,
  UnsignedBigInt = 21,
  Guid = 72,
  Binary = 128,
  Char = 129,
  WChar = 130,
  Numeric = 131,
  DBDate = 133,
  DBTime = 134,
  DBTimeStamp = 135,
  VarNumeric = 139,
  VarChar = 200,
  LongVarChar = 201,
  VarWChar = 202,
  LongVarWChar = 203,
  VarBinary = 204,
  LongVarBinary = 205,
};

/// Column attribute bits (ADOX).
inline constexpr std::uint32_t kColumnFixed = 1;
inline constexpr std::uint32_t kColumnNullable = 2;

/// HRESULTs by which providers classify their failures, as signed 32-bit values.
namespace hresult {
inline constexpr std::int32_t kFail = static_cast<std::int32_t>(0x80004005);
inline constexpr std::int32_t kErrorsInCommand = static_cast<std::int32_t>(0x80040E14);
inline constexpr std::int32_t kErrorsOccurred = static_cast<std::int32_t>(0x80040E21);
inline constexpr std::int32_t kIntegrityViolation = static_cast<std::int32_t>(0x80040E2F);
inline constexpr std::int32_t kTimeout = static_cast<std::int32_t>(0x80040E31);
inline constexpr std::int32_t kDataOverflow = static_cast<std::int32_t>(0x80040E57);
}  // namespace hresult

/// Run-time error numbers of the layer itself.
inline constexpr std::int32_t kNotUpdatable = 3251;     // adding rows to a recordset that reads
inline constexpr std::int32_t kItemNotFound = 3265;     // no such table, field or index
inline constexpr std::int32_t kObjectClosed = 3704;     // the connection or recordset is closed
inline constexpr std::int32_t kObjectOpen = 3705;       // opening a connection that is open
inline constexpr std::int32_t kNoCurrentRecord = 3021;  // before the first or behind the last row
inline constexpr std::int32_t kProviderNotFound =
    3706;  // no client library or driver for the string

/// What a result or an updatable table says of one of its fields.
struct FieldInfo {
  std::string name;  // UTF-8, as the server spells it
  DataType type = DataType::Empty;
  std::int64_t defined_size =
      0;                  // characters for text, bytes for binary, 0 where it has no meaning
  int precision = 0;      // decimal digits of numbers
  int numeric_scale = 0;  // digits behind the point; fractional digits of times
  /// SQL Server's name of the type ("datetime2"), MySQL's whole declaration ("int(10) unsigned");
  /// empty where the server does not tell.
  std::string server_type = {};
};

}  // namespace dorvane::ado
