#include "platform/text/ascii.h"

#include <algorithm>

namespace dorvane::text {

bool IsDigits(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return IsDigit(c); });
}

bool IsAscii(std::string_view text) {
  return std::ranges::none_of(text, [](char c) { return (c & 0x80) != 0; });
}

std::string ToLower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = ToLower(c);
  return lower;
}

int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  const char lower = ToLower(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string_view Trim(std::string_view text, std::string_view characters) {
  const auto first = text.find_first_not_of(characters);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return ToLower(c); };
  return std::ranges::equal(a, b, {}, lower, lower);
}

std::string Doubled(std::string_view text, char quote) {
  std::string doubled;
  doubled.reserve(text.size());
  for (const char c : text) doubled.append(c == quote ? 2 : 1, c);
  return doubled;
}

}  // namespace dorvane::text
