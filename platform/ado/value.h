#pragma once

#include <compare>
#include <cstdint>
#include <string_view>
#include <variant>

namespace dorvane::ado {

/// A calendar date, a time of day or both. MySQL's zero date has year, month and day 0; a pure time
/// has the date 1899-12-30. A MySQL TIME may lie below zero or beyond a day: seconds and
/// nanoseconds then share the sign.
struct DateTime {
  std::int16_t year = 1899;
  std::uint8_t month = 12;
  std::uint8_t day = 30;
  std::int32_t seconds = 0;      // since midnight
  std::int32_t nanoseconds = 0;  // below one second in magnitude

  auto operator<=>(const DateTime&) const = default;
};

/// An exact number as decimal text: optional "-", digits, optional "." and digits.
struct Decimal {
  std::string_view digits;
  bool operator==(const Decimal&) const = default;
};

/// Bytes as they are stored.
struct Binary {
  std::string_view bytes;
  bool operator==(const Binary&) const = default;
};

/// A unique identifier in its braced text form of 38 characters, upper case.
struct Guid {
  std::string_view text;
  bool operator==(const Guid&) const = default;
};

/// NULL.
using Null = std::monostate;

/// One value of a row: a view, cheap to copy. Text (std::string_view) is UTF-8. Text, digits and
/// bytes belong to whoever holds the row (usually a RowBlock) and live as long as it keeps them.
using Value = std::variant<Null, bool, std::int64_t, std::uint64_t, float, double, Decimal,
                           std::string_view, Binary, DateTime, Guid>;

inline bool IsNull(const Value& value) {
  return std::holds_alternative<Null>(value);
}

/// The bytes of a text or of bytes; empty for any other value.
inline std::string_view BytesOf(const Value& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return *text;
  if (const auto* binary = std::get_if<Binary>(&value)) return binary->bytes;
  return {};
}

}  // namespace dorvane::ado
