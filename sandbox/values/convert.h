#pragma once

#include "sandbox/values/type_rules.h"
#include "sandbox/values/types.h"

namespace sandbox {

/// The value as `to` holds it, by the rules of CAST: text and bytes too long are cut, times
/// rounded. `style` is CONVERT's. Raises the server's errors (245, 8114, 220, 241, ...).
Value Convert(const Value& value, const TypeInfo& from, const TypeInfo& to, int style = 0);

/// The same for a value that is stored: what would be cut (but for blanks and zeros) raises
/// Truncation instead, so that the caller can name the column.
struct Truncation {
  std::string kept;  // what the column would have held
};
Value ConvertToStore(const Value& value, const TypeInfo& from, const TypeInfo& to);

/// Raises 206, 257 or 529 where the server knows no way between the types.
void CheckConvertible(const TypeInfo& from, const TypeInfo& to, bool is_explicit);

/// The value in text form, as PRINT and messages show it.
std::string ValueText(const Value& value, const TypeInfo& type);

/// The type that a value in an sql_variant has.
TypeInfo VariantBase(const Value& value);

std::string GuidText(const GuidValue& guid);

}  // namespace sandbox
