#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace dorvane::to_mysql {

/// A condition of SQL Server as MySQL writes it: each name in brackets becomes what `dest_name`
/// makes of it. Empty for one that MySQL would read in another way without a word.
std::string CheckText(std::string_view condition,
                      const std::function<std::string(std::string_view name)>& dest_name);

}  // namespace dorvane::to_mysql
