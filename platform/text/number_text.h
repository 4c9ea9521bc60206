#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace dorvane::text {

/// A decimal number as people write one: blanks around it, an optional sign, digits with an
/// optional point, an optional exponent.
bool IsNumeric(std::string_view text);

/// A 16-bit signed integer from decimal text, blanks around it allowed. Throws RunTimeError: 13
/// when it is no whole number, 6 when it does not fit.
std::int16_t ParseInt16(std::string_view text);

/// "true" or "false" in any letter case, or a decimal number (0 is false). Throws RunTimeError 13.
bool ParseBoolean(std::string_view text);

/// The text without blanks at both ends.
std::string_view Trim(std::string_view text);

/// Equal but for the case of ASCII letters.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

}  // namespace dorvane::text
