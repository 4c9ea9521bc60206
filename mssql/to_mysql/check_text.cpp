#include "mssql/to_mysql/check_text.h"

#include <algorithm>

#include "endpoint/names.h"

namespace dorvane::to_mysql {

namespace {

// Whole numbers are divided to whole numbers there, and texts are added.
constexpr std::string_view kReadOtherwise = "/+\"\\";

/// Behind the quote that closes the piece at the text's start; a doubled one stands for itself.
std::size_t ClosedBy(std::string_view text, char quote) {
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] != quote) continue;
    if (i + 1 == text.size() || text[i + 1] != quote) return i + 1;
    ++i;
  }
  return text.size();
}

/// A pattern may have sets of characters in brackets, and a backslash is no backslash to MySQL.
bool IsReadOtherwise(std::string_view text) {
  return text.find_first_of("[\\") != std::string_view::npos;
}

}  // namespace

std::optional<std::string> TakeText(std::string_view& rest) {
  const std::string_view piece = rest.substr(0, ClosedBy(rest, '\''));
  rest.remove_prefix(piece.size());
  if (IsReadOtherwise(piece)) return std::nullopt;
  return std::string(piece);
}

std::string CheckText(std::string_view condition,
                      const std::function<std::string(std::string_view name)>& dest_name) {
  std::string text;
  while (!condition.empty()) {
    const char first = condition.front();
    if (first == '[') {
      text += dest_name(TakeQuoted(condition, ']'));
    } else if (first == '\'') {
      const std::optional<std::string> piece = TakeText(condition);
      if (!piece) return {};
      text += *piece;
    } else if (kReadOtherwise.find(first) != std::string_view::npos) {
      return {};
    } else {
      text += first;
      condition.remove_prefix(1);
    }
  }
  return text;
}

}  // namespace dorvane::to_mysql
