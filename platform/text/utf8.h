#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace dorvane::text {

/// Half of a UTF-16 pair, which is no character by itself.
inline bool IsSurrogate(char32_t code_point) {
  return code_point >= 0xD800 && code_point < 0xE000;
}

/// Bytes of a code point, 1 to 4.
inline std::size_t Utf8Size(char32_t code_point) {
  return code_point < 0x80 ? 1 : code_point < 0x800 ? 2 : code_point < 0x10000 ? 3 : 4;
}

/// Writes the bytes of a code point and returns their end.
inline char* WriteUtf8(char32_t code_point, char* out) {
  constexpr unsigned char kLead[] = {0, 0, 0xC0, 0xE0, 0xF0};  // by size
  const std::size_t size = Utf8Size(code_point);
  for (std::size_t i = size - 1; i > 0; --i) {
    out[i] = static_cast<char>(0x80 | (code_point & 0x3F));
    code_point >>= 6;
  }
  out[0] = static_cast<char>(kLead[size] | code_point);
  return out + size;
}

void AppendUtf8(std::string& text, char32_t code_point);

/// Takes the first character off a text that is not empty. Where none begins (bytes that are not
/// UTF-8, surrogates and longer forms than needed among them) it takes one byte and returns
/// nothing.
std::optional<char32_t> TakeCodePoint(std::string_view& text);

/// The text with its control characters written out ("\r", "\n", "\t", else "\x1B"), for a log or
/// terminal that must not be steered by it.
std::string Visible(std::string_view text);

/// The first `count` characters, or all of a shorter text.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

}  // namespace dorvane::text
