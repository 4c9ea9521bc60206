#pragma once

#include <string>
#include <string_view>

namespace dorvane::text {

// The characters of ASCII, whatever bytes stand beside them in UTF-8 or ANSI text.

inline constexpr std::string_view kWhiteSpace = " \t\r\n";

inline bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
/// True for one digit or more and nothing else.
bool IsDigits(std::string_view text);
bool IsAscii(std::string_view text);
inline char ToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
inline char ToUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
/// Its letters in lower case; all other bytes as they are.
std::string ToLower(std::string_view text);

/// What a hexadecimal digit counts, 0 to 15; -1 for any other character.
int HexDigit(char c);

/// The text without such characters at both ends.
std::string_view Trim(std::string_view text, std::string_view characters = " ");

/// Equal but for the case of letters.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

/// The text with every `quote` in it twice, as it stands between two of them.
std::string Doubled(std::string_view text, char quote);

}  // namespace dorvane::text
