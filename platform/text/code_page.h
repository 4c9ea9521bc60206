#pragma once

#include <string>
#include <string_view>

namespace dorvane::text {

/// The system's ANSI code page is Windows-1252: one byte a character. Its five unassigned codes
/// (0x81, 0x8D, 0x8F, 0x90, 0x9D) stand for the control characters of the same number, so that
/// every byte survives the way to UTF-8 and back.

/// ANSI bytes of a UTF-8 text; "?" for each character that the code page lacks and for each byte
/// that is not UTF-8.
std::string ToAnsi(std::string_view utf8);

/// UTF-8 of ANSI bytes.
std::string FromAnsi(std::string_view ansi);

/// True when every character of the UTF-8 text has a code in the code page.
bool FitsAnsi(std::string_view utf8);

}  // namespace dorvane::text
