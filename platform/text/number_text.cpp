#include "platform/text/number_text.h"

#include <algorithm>
#include <charconv>

#include "platform/run_time_error.h"

namespace dorvane::text {

namespace {

[[noreturn]] void ThrowTypeMismatch() {
  throw RunTimeError(run_time::kTypeMismatch, "Dorvane", "Type mismatch");
}

std::size_t TakeDigits(std::string_view& text) {
  const auto end = std::ranges::find_if(text, [](char c) { return c < '0' || c > '9'; });
  const auto count = static_cast<std::size_t>(end - text.begin());
  text.remove_prefix(count);
  return count;
}

bool TakeOneOf(std::string_view& text, std::string_view characters) {
  if (text.empty() || characters.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, LowerAscii, LowerAscii);
}

bool IsNumeric(std::string_view text) {
  text = Trim(text);
  TakeOneOf(text, "+-");
  std::size_t digits = TakeDigits(text);
  if (TakeOneOf(text, ".")) digits += TakeDigits(text);
  if (digits == 0) return false;
  if (TakeOneOf(text, "eE")) {
    TakeOneOf(text, "+-");
    if (TakeDigits(text) == 0) return false;
  }
  return text.empty();
}

std::int16_t ParseInt16(std::string_view text) {
  std::string_view digits = Trim(text);
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  std::int16_t value = 0;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (failure == std::errc::result_out_of_range && end == digits.data() + digits.size()) {
    throw RunTimeError(run_time::kOverflow, "Dorvane", "Overflow");
  }
  if (failure != std::errc() || end != digits.data() + digits.size()) ThrowTypeMismatch();
  return value;
}

bool ParseBoolean(std::string_view text) {
  const std::string_view word = Trim(text);
  if (EqualsIgnoringCase(word, "true")) return true;
  if (EqualsIgnoringCase(word, "false")) return false;
  if (!IsNumeric(word)) ThrowTypeMismatch();
  const std::string_view mantissa = word.substr(0, word.find_first_of("eE"));
  return mantissa.find_first_of("123456789") != std::string_view::npos;
}

}  // namespace dorvane::text
