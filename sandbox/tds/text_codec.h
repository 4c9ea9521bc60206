#pragma once

#include <string>
#include <string_view>

namespace sandbox::tds {

// Text of the char types is Windows-1252 on the wire. A character that it has not becomes "?".

void AppendAnsi(std::string_view utf8, std::string& out);
std::string AnsiToUtf8(std::string_view bytes);

}  // namespace sandbox::tds
