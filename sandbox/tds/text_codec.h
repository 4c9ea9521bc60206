#pragma once

#include <string>
#include <string_view>

namespace sandbox::tds {

// Text inside the server is UTF-8. On the wire it is UTF-16 (little-endian) or, for the char types
// of the server's collation, Windows-1252. What cannot be converted becomes U+FFFD or "?".

void AppendUtf16(std::string_view utf8, std::string& out);
void AppendAnsi(std::string_view utf8, std::string& out);
std::string Utf16ToUtf8(std::string_view bytes);
std::string AnsiToUtf8(std::string_view bytes);

}  // namespace sandbox::tds
