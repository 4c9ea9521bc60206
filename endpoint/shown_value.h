#pragma once

#include <string>
#include <string_view>

#include "endpoint/row_copier.h"
#include "platform/ado/types.h"

namespace dorvane {

/// A column and its value for a person to read, the beginning of a long one: "Born = 1700-01-01".
std::string ShownValue(std::string_view column, std::string_view text);

/// Counts a moment that is changed; the first one is taken down.
void Count(ValueChanges& changes, const ado::FieldInfo& field, const ado::DateTime& moment);

}  // namespace dorvane
