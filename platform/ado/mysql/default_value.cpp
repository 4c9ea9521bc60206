#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ado/mysql/catalog.h"
#include "platform/text/ascii.h"
#include "platform/text/number_text.h"

namespace dorvane::ado::mysql {

namespace {

constexpr std::string_view kCurrentTime = "current_timestamp";

bool IsCurrentTime(std::string_view text) {
  return text::EqualsIgnoringCase(text.substr(0, kCurrentTime.size()), kCurrentTime);
}

/// b'101' as "5".
std::optional<std::string> BitsValue(std::string_view text) {
  if (!text.starts_with("b'") || !text.ends_with('\'')) return std::nullopt;
  std::uint64_t value = 0;
  for (const char digit : text.substr(2, text.size() - 3)) {
    value = value * 2 + (digit == '1' ? 1 : 0);
  }
  return fmt::to_string(value);
}

char Unescaped(char c) {
  switch (c) {
    case '0':
      return '\0';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'Z':
      return '\x1a';
    default:
      return c;
  }
}

/// The text of a string literal; nothing when the expression goes on behind it.
std::optional<std::string> LiteralValue(std::string_view text) {
  std::string value;
  for (std::size_t i = 1; i < text.size(); ++i) {
    const bool has_next = i + 1 < text.size();
    if (text[i] == '\\' && has_next) {
      value += Unescaped(text[++i]);
    } else if (text[i] != '\'') {
      value += text[i];
    } else if (has_next && text[i + 1] == '\'') {
      value += text[++i];
    } else {
      return has_next ? std::nullopt : std::optional(value);
    }
  }
  return std::nullopt;
}

bool IsTemporal(std::string_view type) {
  return type == "datetime" || type == "timestamp" || type == "date" || type == "time";
}

std::optional<std::string> ExpressionValue(const std::string& text, const std::string& type) {
  if (text.starts_with('\'')) return LiteralValue(text);
  if (text::IsNumeric(text)) return text;
  if (IsTemporal(type) && IsCurrentTime(text)) return "getdate()";
  return BitsValue(text);
}

}  // namespace

std::optional<std::string> DefaultValue(const std::string& text, const std::string& type,
                                        const std::string& extra, bool quoted) {
  if (quoted) return ExpressionValue(text, type);
  if (IsTemporal(type) && IsCurrentTime(text)) return "getdate()";
  if (extra.find("DEFAULT_GENERATED") != std::string::npos) return std::nullopt;
  if (type == "bit") return BitsValue(text);
  return text;
}

}  // namespace dorvane::ado::mysql
