#pragma once

#include <string>
#include <string_view>

namespace dorvane {

/// A column and its value for a person to read, the beginning of a long one: "Born = 1700-01-01".
std::string ShownValue(std::string_view column, std::string_view text);

}  // namespace dorvane
