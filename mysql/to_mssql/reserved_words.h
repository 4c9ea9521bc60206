#pragma once

#include <string_view>

namespace dorvane::to_mssql {

/// True for a name that SQL Server takes only in brackets: no letter or underscore in front, other
/// characters than ASCII letters, digits, "_", "@", "#" and "$", or a reserved word.
bool NeedsBrackets(std::string_view name);

}  // namespace dorvane::to_mssql
