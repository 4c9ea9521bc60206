#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ado/value.h"

namespace dorvane {

// Numbers: decimal text with "." as the point, a leading blank when not negative, ".0" where there
// would be no point. Decimals keep their digits; floats take the shortest text that reads back
// equal, in exponent form outside 1e-5 to 1e15 and beyond 15 digits.

/// Bytes that WriteNumber may need for this value.
std::size_t NumberSize(const ado::Value& value);
/// Writes a float, double or decimal (integers are taken too); returns the length.
std::size_t WriteNumber(char* out, const ado::Value& value);
/// Writes an integer in plain decimal digits (at most 20 characters); returns the length.
std::size_t WriteInteger(char* out, const ado::Value& value);
/// The same for the text of a number. Throws RunTimeError 13 when it is none.
std::string NumberText(std::string_view number);

// Dates. The seconds of a DateTime lie within its day for all but Normalised.

inline constexpr std::size_t kDateTimeSize = 32;  // bytes that the writers below may need
/// "yyyy-mm-dd"
std::size_t WriteDate(char* out, const ado::DateTime& value);
/// "hh:nn:ss", with six fractional digits (cut, not rounded) on request.
std::size_t WriteTime(char* out, const ado::DateTime& value, bool fraction);
/// Both, with a blank between.
std::size_t WriteDateTime(char* out, const ado::DateTime& value, bool fraction);
/// "yyyy-mm-dd hh:nn:ss"
std::string DateTimeText(const ado::DateTime& value);
/// A time below zero or beyond a day moves the date.
ado::DateTime Normalised(const ado::DateTime& value);
/// True for the date that has no month and no day.
bool IsZeroDate(const ado::DateTime& value);
/// Reads a date, a time (its date is 1899-12-30) or both: yyyy-mm-dd, yyyymmdd or mm/dd/yyyy, then
/// hh:nn, optional seconds and fraction, with a blank or "T" between. Throws RunTimeError 13.
ado::DateTime ParseDateTime(std::string_view text);

// Text.

/// The text with `prefix` in front of each of the characters.
std::string PrefixEach(std::string_view text, std::string_view characters, char prefix);
/// Text for the inside of a literal that SQL Server reads: "'" doubled.
std::string SqlText(std::string_view text);

// Bytes.

/// Appends two upper-case hexadecimal digits a byte.
void AppendHexDigits(std::string& out, std::string_view bytes);
/// "0x" and the digits of every byte.
std::string HexCode(std::string_view bytes);
/// The bytes that a binary default stands for: those of a hexadecimal literal "0x...", else those
/// of the text.
std::string BinaryDefaultBytes(std::string_view text);
/// The 16 bytes of a braced identifier's digits in their text order; one zero byte for any other
/// text.
std::string GuidBytes(std::string_view braced);

}  // namespace dorvane
