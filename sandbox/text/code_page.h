#pragma once

#include <string>
#include <string_view>

namespace sandbox {

/// What a varchar keeps of the text: a character outside the code page
/// (Windows-1252) becomes "?".
std::string KeepCodePage(std::string_view text);

/// The bytes of the text in the code page, "?" for what it has not, and back.
void AppendCodePage(std::string_view text, std::string& bytes);
std::string ToCodePage(std::string_view text);
std::string FromCodePage(std::string_view bytes);

/// The number of UTF-16 units, which is how nchar and nvarchar count.
std::size_t Utf16Length(std::string_view text);
/// The number of code page characters.
std::size_t CodePointCount(std::string_view text);

/// The first `count` characters, counted in UTF-16 units (`utf16`) or code points.
std::string_view Prefix(std::string_view text, std::size_t count, bool utf16);

}  // namespace sandbox
