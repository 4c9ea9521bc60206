#pragma once

#include <sql.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/ado/odbc/fetch_type.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

/// The code of types that are objects in .NET.
inline constexpr SQLSMALLINT kSqlUserDefined = -151;

/// What a server type's declared size means.
enum class LengthUnit { None, Characters, Bytes };

/// One server type: its name, its code in ODBC and what the program makes of it.
struct ServerType {
  std::string_view name;
  SQLSMALLINT code = 0;
  DataType type = DataType::Empty;
  FetchType fetch_type = FetchType::Text;
  LengthUnit unit = LengthUnit::None;
  bool is_fixed = false;  // every value has the same size
  int precision = 0;      // of numbers that have a given one; 0: the column says
  int scale = 0;
  std::int64_t unlimited_size = 0;  // the size of a type without a declared one: (max), text, xml
};

/// The type of that name; when the name is a user's alias or unknown, the type of that code; when
/// neither is known, text. `type_name` may have words behind the name ("int identity").
const ServerType& FindServerType(std::string_view type_name, SQLSMALLINT code);

/// What the driver or the catalog says of a column.
struct DeclaredSize {
  std::int64_t size = 0;  // characters, bytes, digits, or characters of a time's text
  std::optional<int> scale = std::nullopt;
};

/// Whether a column has no declared size of its own: its values are as long as they like.
bool IsUnlimited(const ServerType& type, const DeclaredSize& declared);

/// The field that a column of this type and size is, without its name.
FieldInfo DescribeField(const ServerType& type, const DeclaredSize& declared);

}  // namespace dorvane::ado::odbc
