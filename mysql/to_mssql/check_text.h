#pragma once

#include <string>
#include <string_view>

namespace dorvane::to_mssql {

/// A condition as MySQL's catalog meant it, which shows each byte of its UTF-8 as a character.
/// Others are given back as they are.
std::string FromCatalog(std::string_view condition);

/// A condition of MySQL as SQL Server writes it, names still in backquotes: without the character
/// sets of its texts. Empty for one that SQL Server would read in another way without a word.
std::string CheckText(std::string_view condition);

/// Takes a text off the front and appends it as SQL Server writes it; false when it holds what SQL
/// Server reads otherwise. MySQL's catalog escapes the quotes around it, and once more those in it.
bool TakeText(std::string_view& rest, std::string& text);

}  // namespace dorvane::to_mssql
