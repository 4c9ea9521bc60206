#pragma once

#include <string>

#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane::ado {

/// A value as text, for a field of type `type`: numbers in decimal with "." as the point (floats in
/// the shortest form that reads back equal, an exponent form with a point in its mantissa), true
/// and false as "1" and "0", dates and times as "yyyy-mm-dd hh:mm:ss" with the fraction that is
/// there, or that part of it which the type has (a time below zero with "-" in front, one beyond a
/// day with as many hours as there are); text, bytes and identifiers as they are; NULL as empty
/// text.
std::string ToText(const Value& value, DataType type);

}  // namespace dorvane::ado
