#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace dorvane::ado::odbc {

// The client libraries speak UTF-16, the only encoding in which every one of them passes text
// whole whatever the user's locale; the program speaks UTF-8.

/// UTF-16 of a UTF-8 text; U+FFFD for each byte that is not UTF-8.
std::u16string ToUtf16(std::string_view utf8);

/// Bytes that WriteUtf8 needs for these code units.
std::size_t Utf8Size(std::u16string_view utf16);
/// Writes UTF-8 and returns its end; U+FFFD for each surrogate that stands alone.
char* WriteUtf8(std::u16string_view utf16, char* out);
std::string ToUtf8(std::u16string_view utf16);

}  // namespace dorvane::ado::odbc
