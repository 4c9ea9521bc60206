#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/text/ascii.h"

namespace dorvane::text {

/// A decimal number as people write one: blanks around it, an optional sign, digits with an
/// optional point, an optional exponent.
bool IsNumeric(std::string_view text);

/// A 16-bit signed integer from decimal text, blanks around it allowed. Throws RunTimeError: 13
/// when it is no whole number, 6 when it does not fit.
std::int16_t ParseInt16(std::string_view text);

/// A TCP port from decimal text, blanks around it allowed: 0, for a server's usual one, to 65535.
/// Throws RunTimeError: 13 when it is no whole number, 6 when it is none of these.
std::int32_t ParsePort(std::string_view text);

/// "true" or "false" in any letter case, or a decimal number (0 is false). Throws RunTimeError 13.
bool ParseBoolean(std::string_view text);

inline constexpr std::size_t kFloatSize = 32;  // bytes that WriteFloat may need
enum class FloatForm {
  Shorter,   // of the other two, the plain one where they are equally long
  Plain,     // for magnitudes of 1e-5 to 1e15 and zero
  Exponent,  // with a point in its mantissa: "1.0e+22"
};
/// Writes the shortest text of that form which reads back equal; returns the length.
std::size_t WriteFloat(char* out, float value, FloatForm form);
std::size_t WriteFloat(char* out, double value, FloatForm form);

/// Throws RunTimeError 13 for a text that is no value of the kind asked for.
[[noreturn]] void ThrowTypeMismatch(std::string_view text = {});

}  // namespace dorvane::text
