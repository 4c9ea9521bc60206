#pragma once

#include <sql.h>

#include <cstddef>
#include <string_view>

#include "platform/ado/row_block.h"
#include "platform/ado/value.h"

namespace dorvane::ado::odbc {

/// How the values of a column are fetched and what Value they become.
enum class FetchType {
  Bit,              // bool
  Integer,          // std::int64_t
  Real,             // float
  Float,            // double
  Decimal,          // decimal text
  Date,             // DateTime at midnight
  Time,             // DateTime on 1899-12-30
  Timestamp,        // DateTime
  TimestampOffset,  // text "yyyy-mm-dd hh:mm:ss[.fffffff] +hh:mm"
  Guid,
  Text,  // UTF-8
  Bytes,
  Variant,  // the bytes of the value's text form in UTF-8
};

/// How the driver is asked for a value, and the buffer that it takes.
struct FetchBinding {
  SQLSMALLINT c_type = 0;
  std::size_t unit = 0;        // bytes per declared character or byte; 0: the size is fixed
  std::size_t terminator = 0;  // bytes that the driver puts behind text
  std::size_t fixed_size = 0;  // bytes of a value without a declared size
};
FetchBinding BindingOf(FetchType fetch_type);

/// The value of a fetch buffer's bytes: an ODBC structure, a number, UTF-16 text or bytes, as
/// `fetch_type` asks for them. Text and bytes are put into `storage`. Throws ProviderError for a
/// time that is no time.
Value ToValue(FetchType fetch_type, std::string_view fetched, Arena& storage);

}  // namespace dorvane::ado::odbc
