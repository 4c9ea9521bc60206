#include "mssql/to_mysql/check_text.h"

#include <algorithm>

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

std::string Unbracketed(std::string_view piece) {
  std::string name;
  for (std::size_t i = 1; i + 1 < piece.size(); ++i) {
    name += piece[i];
    if (piece[i] == ']') ++i;
  }
  return name;
}

/// A pattern may have sets of characters in brackets, and a backslash is no backslash to MySQL.
bool IsReadOtherwise(std::string_view text) {
  return text.find_first_of("[\\") != std::string_view::npos;
}

}  // namespace

std::string CheckText(std::string_view condition,
                      const std::function<std::string(std::string_view name)>& dest_name) {
  std::string text;
  while (!condition.empty()) {
    const char first = condition.front();
    std::size_t size = 1;
    if (first == '[') {
      size = ClosedBy(condition, ']');
      text += dest_name(Unbracketed(condition.substr(0, size)));
    } else if (first == '\'') {
      size = ClosedBy(condition, '\'');
      if (IsReadOtherwise(condition.substr(0, size))) return {};
      text += condition.substr(0, size);
    } else if (kReadOtherwise.find(first) != std::string_view::npos) {
      return {};
    } else {
      text += first;
    }
    condition.remove_prefix(size);
  }
  return text;
}

}  // namespace dorvane::to_mysql
