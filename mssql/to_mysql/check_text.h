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

/// Takes a text between quotes off the front, as it is; nothing for one that MySQL would read in
/// another way.
std::optional<std::string> TakeText(std::string_view& rest);

}  // namespace dorvane::to_mysql
