#include "platform/ado/odbc/default_expression.h"

#include <algorithm>
#include <array>

#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

std::string_view Trim(std::string_view text) {
  return text::Trim(text, text::kWhiteSpace);
}

/// The position of the ")" that closes the "(" in front, or npos. Quoted text is passed over.
std::size_t ClosingParenthesis(std::string_view text) {
  int depth = 0;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\'') quoted = !quoted;
    if (quoted) continue;
    if (text[i] == '(') ++depth;
    if (text[i] == ')' && --depth == 0) return i;
  }
  return std::string_view::npos;
}

std::string_view WithoutOuterParentheses(std::string_view text) {
  text = Trim(text);
  while (!text.empty() && text.front() == '(' && ClosingParenthesis(text) == text.size() - 1) {
    text = Trim(text.substr(1, text.size() - 2));
  }
  return text;
}

/// 'text' or N'text', as one literal from end to end.
std::optional<std::string> StringLiteral(std::string_view text) {
  if (!text.empty() && text::ToLower(text.front()) == 'n') text.remove_prefix(1);
  if (text.size() < 2 || text.front() != '\'' || text.back() != '\'') return std::nullopt;
  text = text.substr(1, text.size() - 2);
  std::string value;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\'' && (++i == text.size() || text[i] != '\'')) return std::nullopt;
    value += text[i];
  }
  return value;
}

std::size_t CountDigits(std::string_view text) {
  return std::find_if_not(text.begin(), text.end(), text::IsDigit) - text.begin();
}

/// Digits, point and exponent; a currency sign in front is dropped, a point without digits on one
/// side of it completed or dropped.
std::optional<std::string> UnsignedNumber(std::string_view text) {
  if (!text.empty() && text.front() == '$') text.remove_prefix(1);
  const std::string_view whole = text.substr(0, CountDigits(text));
  text.remove_prefix(whole.size());
  std::string_view fraction;
  if (!text.empty() && text.front() == '.') {
    text.remove_prefix(1);
    fraction = text.substr(0, CountDigits(text));
    text.remove_prefix(fraction.size());
  }
  if (whole.empty() && fraction.empty()) return std::nullopt;
  std::string value(whole.empty() ? "0" : whole);
  if (!fraction.empty()) value.append(".").append(fraction);
  if (text.empty()) return value;
  if (text::ToLower(text.front()) != 'e') return std::nullopt;
  std::string_view digits = text.substr(1);
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) digits.remove_prefix(1);
  if (digits.empty() || CountDigits(digits) != digits.size()) return std::nullopt;
  return value.append("e").append(text.substr(1));
}

/// A number behind any signs, each sign and the number perhaps in parentheses of its own.
std::optional<std::string> Number(std::string_view text) {
  bool negative = false;
  while (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative ^= text.front() == '-';
    text = WithoutOuterParentheses(text.substr(1));
  }
  std::optional<std::string> value = UnsignedNumber(text);
  if (!value || !negative) return value;
  return "-" + *value;
}

std::optional<std::string> BinaryLiteral(std::string_view text) {
  if (text.size() < 2 || text[0] != '0' || text::ToLower(text[1]) != 'x') return std::nullopt;
  const bool is_hex =
      std::all_of(text.begin() + 2, text.end(), [](char c) { return text::HexDigit(c) >= 0; });
  if (!is_hex) return std::nullopt;
  return std::string(text);
}

/// The local current time. UTC and offset functions are left out: they are other values.
std::optional<std::string> CurrentTime(std::string_view text) {
  static constexpr std::array<std::string_view, 5> kSpellings = {
      "getdate()", "[getdate]()", "sysdatetime()", "current_timestamp", "{fnnow()}"};
  std::string bare;
  for (const char c : text) {
    if (text::kWhiteSpace.find(c) == std::string_view::npos) bare += text::ToLower(c);
  }
  if (std::find(kSpellings.begin(), kSpellings.end(), bare) == kSpellings.end()) {
    return std::nullopt;
  }
  return "getdate()";
}

}  // namespace

std::optional<std::string> DefaultValue(std::string_view expression) {
  const std::string_view text = WithoutOuterParentheses(expression);
  for (const auto& read : {StringLiteral, BinaryLiteral, Number, CurrentTime}) {
    if (std::optional<std::string> value = read(text)) return value;
  }
  return std::nullopt;
}

}  // namespace dorvane::ado::odbc
