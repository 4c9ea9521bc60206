#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/ado/value.h"

namespace dorvane {

// Numbers of statements: decimal text with "." as the point, a leading blank when not negative,
// ".0" where there would be no point. Decimals keep their digits; floats take the shortest text
// that reads back equal, in exponent form outside 1e-5 to 1e15 and beyond 15 digits.

/// Bytes that WriteNumber may need for this value.
std::size_t NumberSize(const ado::Value& value);
/// Writes a float, double or decimal (integers are taken too); returns the length.
std::size_t WriteNumber(char* out, const ado::Value& value);
/// Writes an integer in plain decimal digits (at most 20 characters); returns the length.
std::size_t WriteInteger(char* out, const ado::Value& value);
/// The same for the text of a number. Throws RunTimeError 13 when it is none.
std::string NumberText(std::string_view number);

}  // namespace dorvane
