#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace dorvane::to_mysql {

/// A condition of SQL Server as MySQL writes it: each name in brackets becomes what `dest_name`
/// makes of it. Empty for one that MySQL would read in another way without a word.
std::string CheckText(std::string_view condition,
                      const std::function<std::string(std::string_view name)>& dest_name);

// The pieces of SQL Server's words that MySQL writes in another way, taken off the front.

/// A name in brackets, without them.
std::string TakeBracketed(std::string_view& rest);
/// A text between quotes, as it is; nothing for one that MySQL would read in another way.
std::optional<std::string> TakeText(std::string_view& rest);

}  // namespace dorvane::to_mysql
