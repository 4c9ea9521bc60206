#include "platform/ado/odbc/server_types.h"

#include <sqlext.h>

#include <algorithm>
#include <array>
#include <string>

#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

// Codes of SQL Server's own types.
constexpr SQLSMALLINT kSqlVariant = -150;
constexpr SQLSMALLINT kSqlXml = -152;
constexpr SQLSMALLINT kSqlTime = -154;
constexpr SQLSMALLINT kSqlDateTimeOffset = -155;

constexpr std::int64_t kMaxBytes = 2147483647;
constexpr std::int64_t kMaxWide = 1073741823;
/// The largest declared size; (max) columns have 0 or an enormous one instead.
constexpr std::int64_t kMaxDeclared = 8000;
constexpr std::int64_t kOffsetTextSize = 34;  // "yyyy-mm-dd hh:mm:ss.fffffff +hh:mm"

using enum LengthUnit;

// The first type of a code speaks for the code.
constexpr auto kTypes = std::to_array<ServerType>({
    {"bigint", SQL_BIGINT, DataType::BigInt, FetchType::Integer, None, true, 19},
    {"int", SQL_INTEGER, DataType::Integer, FetchType::Integer, None, true, 10},
    {"smallint", SQL_SMALLINT, DataType::SmallInt, FetchType::Integer, None, true, 5},
    {"tinyint", SQL_TINYINT, DataType::UnsignedTinyInt, FetchType::Integer, None, true, 3},
    {"bit", SQL_BIT, DataType::Boolean, FetchType::Bit, None, true},
    {"decimal", SQL_DECIMAL, DataType::Numeric, FetchType::Decimal, None, true},
    {"numeric", SQL_NUMERIC, DataType::Numeric, FetchType::Decimal, None, true},
    {"money", SQL_DECIMAL, DataType::Currency, FetchType::Decimal, None, true, 19, 4},
    {"smallmoney", SQL_DECIMAL, DataType::Currency, FetchType::Decimal, None, true, 10, 4},
    {"float", SQL_FLOAT, DataType::Double, FetchType::Float, None, true, 15},
    {"float", SQL_DOUBLE, DataType::Double, FetchType::Float, None, true, 15},
    {"real", SQL_REAL, DataType::Single, FetchType::Real, None, true, 7},
    {"datetime", SQL_TYPE_TIMESTAMP, DataType::DBTimeStamp, FetchType::Timestamp, None, true},
    {"datetime2", SQL_TYPE_TIMESTAMP, DataType::DBTimeStamp, FetchType::Timestamp, None, true},
    {"smalldatetime", SQL_TYPE_TIMESTAMP, DataType::DBTimeStamp, FetchType::Timestamp, None, true},
    {"date", SQL_TYPE_DATE, DataType::DBDate, FetchType::Date, None, true},
    {"time", kSqlTime, DataType::DBTime, FetchType::Time, None, true},
    {"time", SQL_TYPE_TIME, DataType::DBTime, FetchType::Time, None, true},
    {"datetimeoffset", kSqlDateTimeOffset, DataType::VarWChar, FetchType::TimestampOffset},
    {"char", SQL_CHAR, DataType::Char, FetchType::Text, Characters, true},
    {"varchar", SQL_VARCHAR, DataType::VarChar, FetchType::Text, Characters, false, 0, 0,
     kMaxBytes},
    {"text", SQL_LONGVARCHAR, DataType::LongVarChar, FetchType::Text, Characters, false, 0, 0,
     kMaxBytes},
    {"nchar", SQL_WCHAR, DataType::WChar, FetchType::Text, Characters, true},
    {"nvarchar", SQL_WVARCHAR, DataType::VarWChar, FetchType::Text, Characters, false, 0, 0,
     kMaxWide},
    {"sysname", SQL_WVARCHAR, DataType::VarWChar, FetchType::Text, Characters},
    {"ntext", SQL_WLONGVARCHAR, DataType::LongVarWChar, FetchType::Text, Characters, false, 0, 0,
     kMaxWide},
    {"xml", kSqlXml, DataType::LongVarWChar, FetchType::Text, Characters, false, 0, 0, kMaxWide},
    {"binary", SQL_BINARY, DataType::Binary, FetchType::Bytes, Bytes, true},
    {"timestamp", SQL_BINARY, DataType::Binary, FetchType::Bytes, Bytes, true},
    {"rowversion", SQL_BINARY, DataType::Binary, FetchType::Bytes, Bytes, true},
    {"varbinary", SQL_VARBINARY, DataType::VarBinary, FetchType::Bytes, Bytes, false, 0, 0,
     kMaxBytes},
    {"image", SQL_LONGVARBINARY, DataType::LongVarBinary, FetchType::Bytes, Bytes, false, 0, 0,
     kMaxBytes},
    {"uniqueidentifier", SQL_GUID, DataType::Guid, FetchType::Guid, None, true},
    {"sql_variant", kSqlVariant, DataType::Variant, FetchType::Variant, None, false, 0, 0,
     kMaxDeclared},
    {"geography", kSqlUserDefined, DataType::LongVarBinary, FetchType::Bytes, Bytes, false, 0, 0,
     kMaxBytes},
});

constexpr ServerType kUnknown = {
    "", 0, DataType::LongVarWChar, FetchType::Text, Characters, false, 0, 0, kMaxWide};

bool IsAlwaysLong(const ServerType& type) {
  switch (type.code) {
    case SQL_LONGVARCHAR:
    case SQL_WLONGVARCHAR:
    case SQL_LONGVARBINARY:
    case kSqlXml:
    case kSqlVariant:
    case kSqlUserDefined:
    case 0:
      return true;
    default:
      return false;
  }
}

/// sp_columns gives no scale for the newer date and time types, only the size of their text:
/// "hh:mm:ss" or "yyyy-mm-dd hh:mm:ss", then a point and the digits.
int FractionDigits(const ServerType& type, const DeclaredSize& declared) {
  const int whole_size = type.fetch_type == FetchType::Time ? 8 : 19;
  const int rest = static_cast<int>(declared.size) - whole_size - 1;
  return declared.scale.value_or(std::max(rest, 0));
}

}  // namespace

const ServerType& FindServerType(std::string_view type_name, SQLSMALLINT code) {
  const std::string name = text::ToLower(type_name.substr(0, type_name.find_first_of(" (")));
  const auto named = std::find_if(kTypes.begin(), kTypes.end(),
                                  [&](const auto& type) { return type.name == name; });
  if (named != kTypes.end()) return *named;
  const auto coded = std::find_if(kTypes.begin(), kTypes.end(),
                                  [&](const auto& type) { return type.code == code; });
  return coded != kTypes.end() ? *coded : kUnknown;
}

bool IsUnlimited(const ServerType& type, const DeclaredSize& declared) {
  if (type.unlimited_size == 0) return false;
  return IsAlwaysLong(type) || declared.size <= 0 || declared.size > kMaxDeclared;
}

FieldInfo DescribeField(const ServerType& type, const DeclaredSize& declared) {
  FieldInfo field;
  field.type = type.type;
  field.server_type = type.name;
  if (IsUnlimited(type, declared)) {
    field.defined_size = type.unlimited_size;
    // A blob type of its own, since the sized type's column need not hold so much.
    if (field.type == DataType::VarBinary) field.type = DataType::LongVarBinary;
    return field;
  }
  switch (type.fetch_type) {
    case FetchType::Decimal:
      field.precision = type.precision != 0 ? type.precision : static_cast<int>(declared.size);
      field.numeric_scale = type.scale != 0 ? type.scale : declared.scale.value_or(0);
      break;
    case FetchType::Time:
    case FetchType::Timestamp:
      field.numeric_scale = FractionDigits(type, declared);
      break;
    case FetchType::TimestampOffset:
      field.defined_size = kOffsetTextSize;
      break;
    case FetchType::Guid:
      field.defined_size = 16;
      break;
    default:
      field.precision = type.precision;
      if (type.unit != None) field.defined_size = declared.size;
  }
  return field;
}

}  // namespace dorvane::ado::odbc
