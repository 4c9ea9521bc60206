#include "platform/scheduler/quoting.h"

#include <fmt/format.h>

#include <charconv>

#include "platform/run_time_error.h"

namespace dorvane::scheduler {

namespace {

[[noreturn]] void RefuseQuotation(std::string_view quoted) {
  throw RunTimeError(run_time::kTypeMismatch, "Scheduler",
                     fmt::format("Not a quoted text: {}", quoted));
}

/// The character of an escape sequence; `rest` starts behind the backslash and loses it.
char TakeEscape(std::string_view& rest) {
  if (rest.starts_with('\\') || rest.starts_with('"')) {
    const char c = rest.front();
    rest.remove_prefix(1);
    return c;
  }
  unsigned code = 0;
  if (!rest.starts_with('x') || rest.size() < 3) RefuseQuotation(rest);
  const auto [end, error] = std::from_chars(rest.data() + 1, rest.data() + 3, code, 16);
  if (error != std::errc() || end != rest.data() + 3) RefuseQuotation(rest);
  rest.remove_prefix(3);
  return static_cast<char>(code);
}

}  // namespace

std::string QuoteC(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      quoted += {'\\', c};
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      quoted += fmt::format("\\x{:02x}", c);
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

std::string UnquoteC(std::string_view quoted) {
  if (quoted.size() < 2 || !quoted.starts_with('"') || !quoted.ends_with('"')) {
    RefuseQuotation(quoted);
  }
  std::string text;
  std::string_view rest = quoted.substr(1, quoted.size() - 2);
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    text += c == '\\' ? TakeEscape(rest) : c;
  }
  return text;
}

std::string QuoteForCron(std::string_view text) {
  std::string word = "'";
  for (const char c : text) {
    if (c == '\'') {
      word += "'\"'\"'";
    } else if (c == '%') {
      word += "\\%";
    } else if (c == '\\') {
      // A closing and an opening quote behind it, so that no cron sees "\%" or a double backslash.
      word += "\\''";
    } else {
      word += c;
    }
  }
  return word + "'";
}

std::string EscapeSpecifiers(std::string_view text) {
  std::string plain;
  for (const char c : text) plain.append(c == '%' ? 2 : 1, c);
  return plain;
}

}  // namespace dorvane::scheduler
