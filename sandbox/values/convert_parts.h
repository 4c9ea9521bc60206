#pragma once

#include <string>
#include <string_view>

#include "sandbox/values/type_rules.h"
#include "sandbox/values/types.h"

namespace sandbox::conversion {

// What Convert is put together from: the ways to each family of types, each from every other. None
// of the values is NULL or an sql_variant.

Value ToInteger(const Value& value, const TypeInfo& from, const TypeInfo& to);
Value ToBit(const Value& value, const TypeInfo& from);
Value ToExact(const Value& value, const TypeInfo& from, const TypeInfo& to);
Value ToApproximate(const Value& value, const TypeInfo& from, const TypeInfo& to);

std::string ToText(const Value& value, const TypeInfo& from, const TypeInfo& to, int style);
/// Numbers that the text type is too short for are refused, or shown as "*".
void CheckNumberFits(const Value& value, const TypeInfo& from, const TypeInfo& to,
                     std::string& text);
/// Cut to the type's length, or padded. `storing`: raises Truncation where something is lost.
Value FitText(std::string text, const TypeInfo& to, bool storing);
std::string ToBytes(const Value& value, const TypeInfo& from, const TypeInfo& to);
Value FitBytes(std::string bytes, const TypeInfo& from, const TypeInfo& to, bool storing);
Value ToGuid(const Value& value, const TypeInfo& from);

std::string HexText(std::string_view bytes);
/// Without blanks around it.
std::string_view Trim(std::string_view text);

}  // namespace sandbox::conversion
