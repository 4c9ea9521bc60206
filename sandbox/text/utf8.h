#pragma once

#include <string>
#include <string_view>

namespace sandbox {

/// Takes one code point off the front of UTF-8 text; a broken byte stands for itself.
char32_t NextCodePoint(std::string_view& text);
void AppendUtf8(std::string& text, char32_t code);

}  // namespace sandbox
