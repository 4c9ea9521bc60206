#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dorvane::ado::odbc {

/// The value that a column's default expression stands for: a number in plain decimal or exponent
/// form, a string literal's text, a binary literal as it stands ("0x0A"), or "getdate()" for the
/// local current time however it is spelled. Nothing for NULL and for every other expression: a
/// wrong default would be worse than none.
std::optional<std::string> DefaultValue(std::string_view expression);

}  // namespace dorvane::ado::odbc
