#pragma once

#include <string>
#include <string_view>

namespace dorvane {

/// A name as MySQL's statements quote it: `name`, with each backquote in it doubled.
std::string MySqlName(std::string_view name);

/// A name as SQL Server's statements quote it: [name], with each closing bracket in it doubled.
std::string MsSqlName(std::string_view name);

}  // namespace dorvane
