#include "mysql/to_mssql/check_text.h"

#include <algorithm>

#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

// Whole numbers are divided to numbers with a fraction there.
constexpr std::string_view kReadOtherwise = "/\"";

bool IsOfWord(char c) {
  const char lower = text::ToLower(c);
  return text::IsDigit(c) || (lower >= 'a' && lower <= 'z') || c == '_';
}

/// Takes a word off the front.
std::string_view TakeWord(std::string_view& rest) {
  std::size_t size = 0;
  while (size < rest.size() && IsOfWord(rest[size])) ++size;
  const std::string_view word = rest.substr(0, size);
  rest.remove_prefix(size);
  return word;
}

/// Takes a text off the front, which may have a backslash before its quotes; false when it holds
/// what SQL Server reads otherwise.
bool TakeText(std::string_view& rest, std::string& text) {
  const auto take_quote = [&rest] {
    const bool is_escaped = rest.starts_with("\\'");
    if (!is_escaped && !rest.starts_with('\'')) return false;
    rest.remove_prefix(is_escaped ? 2 : 1);
    return true;
  };
  take_quote();
  text += "N'";
  while (!rest.empty()) {
    if (take_quote()) {
      text += '\'';
      if (!rest.starts_with('\'') && !rest.starts_with("\\'")) return true;
      take_quote();
      text += '\'';
      continue;
    }
    // Brackets are sets of characters in a pattern.
    if (rest.front() == '\\' || rest.front() == '[') return false;
    text += rest.front();
    rest.remove_prefix(1);
  }
  return false;
}

}  // namespace

std::string CheckText(std::string_view condition) {
  std::string text;
  std::string_view rest = condition;
  while (!rest.empty()) {
    const char first = rest.front();
    if (first == '`') {
      const auto end = rest.find('`', 1);
      text += rest.substr(0, end + 1);
      rest.remove_prefix(std::min(end, rest.size() - 1) + 1);
    } else if (first == '\'' || rest.starts_with("\\'")) {
      if (!TakeText(rest, text)) return {};
    } else if (IsOfWord(first)) {
      const std::string_view word = TakeWord(rest);
      const bool is_character_set =
          word.starts_with('_') && (rest.starts_with('\'') || rest.starts_with("\\'"));
      if (!is_character_set) text += word;
    } else if (kReadOtherwise.find(first) != std::string_view::npos || rest.starts_with("||")) {
      return {};
    } else {
      text += first;
      rest.remove_prefix(1);
    }
  }
  return text;
}

}  // namespace dorvane::to_mssql
