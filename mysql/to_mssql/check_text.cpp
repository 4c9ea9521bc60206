#include "mysql/to_mssql/check_text.h"

#include <algorithm>
#include <optional>

#include "platform/text/ascii.h"
#include "platform/text/utf8.h"

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

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    if (!text::TakeCodePoint(bytes)) return false;
  }
  return true;
}

}  // namespace

std::string FromCatalog(std::string_view condition) {
  std::string bytes;
  for (std::string_view rest = condition; !rest.empty();) {
    const std::optional<char32_t> character = text::TakeCodePoint(rest);
    if (!character || *character > 0xFF) return std::string(condition);
    bytes += static_cast<char>(*character);
  }
  return IsUtf8(bytes) ? bytes : std::string(condition);
}

bool TakeText(std::string_view& rest, std::string& text) {
  const bool is_escaped = rest.starts_with("\\'");
  const std::string_view quote = is_escaped ? "\\'" : "'";
  const std::string_view inner_quotes[] = {is_escaped ? "\\\\\\'" : "\\'",
                                           is_escaped ? "\\'\\'" : "''"};
  const auto take = [&rest](std::string_view piece) {
    if (!rest.starts_with(piece)) return false;
    rest.remove_prefix(piece.size());
    return true;
  };
  take(quote);
  text += "N'";
  while (!rest.empty()) {
    if (take(inner_quotes[0]) || take(inner_quotes[1])) {
      text += "''";
    } else if (take(quote)) {
      text += '\'';
      return true;
    } else if (rest.front() == '\\' || rest.front() == '[') {
      return false;  // brackets are sets of characters in a pattern
    } else {
      text += rest.front();
      rest.remove_prefix(1);
    }
  }
  return false;
}

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
