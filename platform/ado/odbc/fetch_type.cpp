#include "platform/ado/odbc/fetch_type.h"

#include <fmt/format.h>
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

template <typename T>
T Read(std::string_view fetched) {
  T value;
  std::memcpy(&value, fetched.data(), sizeof value);
  return value;
}

std::string_view StoreUtf8(std::string_view utf16, Arena& storage) {
  const std::u16string_view text(reinterpret_cast<const char16_t*>(utf16.data()),
                                 utf16.size() / sizeof(char16_t));
  char* const begin = storage.Allocate(Utf8Size(text));
  return {begin, static_cast<std::size_t>(WriteUtf8(text, begin) - begin)};
}

/// Drivers leave out the zero before the point.
Decimal StoreDecimal(std::string_view digits, Arena& storage) {
  const bool negative = digits.starts_with('-');
  if (negative) digits.remove_prefix(1);
  const bool needs_zero = digits.starts_with('.');
  char* const begin = storage.Allocate(digits.size() + negative + needs_zero);
  char* out = begin;
  if (negative) *out++ = '-';
  if (needs_zero) *out++ = '0';
  out = std::copy(digits.begin(), digits.end(), out);
  return {{begin, static_cast<std::size_t>(out - begin)}};
}

/// "hh:mm:ss" with up to nine fractional digits behind a point.
DateTime ParseTime(std::string_view text) {
  const auto digit = [&](std::size_t position) {
    const char c = position < text.size() ? text[position] : '?';
    if (c < '0' || c > '9') {
      throw LibraryError(hresult::kErrorsOccurred, fmt::format("\"{}\" is no time of day.", text));
    }
    return c - '0';
  };
  const auto pair = [&](std::size_t position) {
    return digit(position) * 10 + digit(position + 1);
  };
  DateTime time;
  time.seconds = pair(0) * 3600 + pair(3) * 60 + pair(6);
  std::int32_t unit = 100000000;
  for (std::size_t i = 9; i < text.size() && unit > 0; ++i, unit /= 10) {
    time.nanoseconds += digit(i) * unit;
  }
  return time;
}

DateTime ToDate(const SQL_DATE_STRUCT& date) {
  return {date.year, static_cast<std::uint8_t>(date.month), static_cast<std::uint8_t>(date.day), 0,
          0};
}

DateTime ToTimestamp(const SQL_TIMESTAMP_STRUCT& time) {
  return {time.year, static_cast<std::uint8_t>(time.month), static_cast<std::uint8_t>(time.day),
          time.hour * 3600 + time.minute * 60 + time.second,
          static_cast<std::int32_t>(time.fraction)};
}

Guid StoreGuid(const SQLGUID& guid, Arena& storage) {
  constexpr std::size_t kSize = 38;
  char* const text = storage.Allocate(kSize);
  const auto* rest = guid.Data4;
  fmt::format_to_n(text, kSize,
                   "{{{:08X}-{:04X}-{:04X}-{:02X}{:02X}-{:02X}{:02X}{:02X}{:02X}{:02X}{:02X}}}",
                   guid.Data1, guid.Data2, guid.Data3, rest[0], rest[1], rest[2], rest[3], rest[4],
                   rest[5], rest[6], rest[7]);
  return {{text, kSize}};
}

}  // namespace

FetchBinding BindingOf(FetchType fetch_type) {
  switch (fetch_type) {
    case FetchType::Bit:
      return {SQL_C_BIT, 0, 0, 1};
    case FetchType::Integer:
      return {SQL_C_SBIGINT, 0, 0, sizeof(std::int64_t)};
    case FetchType::Real:
      return {SQL_C_FLOAT, 0, 0, sizeof(float)};
    case FetchType::Float:
      return {SQL_C_DOUBLE, 0, 0, sizeof(double)};
    case FetchType::Decimal:
      return {SQL_C_CHAR, 0, 1, 48};
    case FetchType::Date:
      return {SQL_C_TYPE_DATE, 0, 0, sizeof(SQL_DATE_STRUCT)};
    case FetchType::Timestamp:
      return {SQL_C_TYPE_TIMESTAMP, 0, 0, sizeof(SQL_TIMESTAMP_STRUCT)};
    case FetchType::Time:
    case FetchType::TimestampOffset:
      return {SQL_C_CHAR, 0, 1, 48};
    case FetchType::Guid:
      return {SQL_C_GUID, 0, 0, sizeof(SQLGUID)};
    case FetchType::Bytes:
      return {SQL_C_BINARY, 1, 0, 0};
    case FetchType::Text:
    case FetchType::Variant:
      return {SQL_C_WCHAR, sizeof(char16_t), sizeof(char16_t), 0};
  }
  return {SQL_C_WCHAR, sizeof(char16_t), sizeof(char16_t), 0};
}

Value ToValue(FetchType fetch_type, std::string_view fetched, Arena& storage) {
  switch (fetch_type) {
    case FetchType::Bit:
      return fetched.front() != 0;
    case FetchType::Integer:
      return Read<std::int64_t>(fetched);
    case FetchType::Real:
      return Read<float>(fetched);
    case FetchType::Float:
      return Read<double>(fetched);
    case FetchType::Decimal:
      return StoreDecimal(fetched, storage);
    case FetchType::Date:
      return ToDate(Read<SQL_DATE_STRUCT>(fetched));
    case FetchType::Time:
      return ParseTime(fetched);
    case FetchType::Timestamp:
      return ToTimestamp(Read<SQL_TIMESTAMP_STRUCT>(fetched));
    case FetchType::TimestampOffset:
      return storage.Store(fetched);
    case FetchType::Guid:
      return StoreGuid(Read<SQLGUID>(fetched), storage);
    case FetchType::Bytes:
      return Binary{storage.Store(fetched)};
    case FetchType::Variant:
      return Binary{StoreUtf8(fetched, storage)};
    case FetchType::Text:
      break;
  }
  return StoreUtf8(fetched, storage);
}

}  // namespace dorvane::ado::odbc
