#pragma once

#include <string>

#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane::ado {

/// A value as text, for a field of type `type`: numbers in decimal with "." as the point (floats in
/// the shortest form that reads back equal, an exponent form with a point in its mantissa), true
/// and false as "1" and "0", dates and times as "yyyy-mm-dd hh:mm:ss" with the fraction that is
/// there, or that part of it which the type has; text, bytes and identifiers as they are; NULL as
/// empty text.
std::string ToText(const Value& value, DataType type);

/// The shortest text of a number that reads back equal, such as "3", "0.1", "1.0e+22".
std::string FloatText(float value);
std::string FloatText(double value);

/// "yyyy-mm-dd".
std::string DateText(const DateTime& value);
/// "hh:mm:ss" and, where it is not zero, "." with the fraction's digits up to the last one that is
/// not zero. Below zero with a "-" in front; beyond a day with as many hours as there are.
std::string TimeText(const DateTime& value);

}  // namespace dorvane::ado
