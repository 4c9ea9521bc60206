#include "platform/text/number_text.h"

#include <algorithm>
#include <charconv>

#include "platform/run_time_error.h"

namespace dorvane::text {

namespace {

std::size_t TakeDigits(std::string_view& text) {
  const auto end = std::ranges::find_if_not(text, IsDigit);
  const auto count = static_cast<std::size_t>(end - text.begin());
  text.remove_prefix(count);
  return count;
}

bool TakeOneOf(std::string_view& text, std::string_view characters) {
  if (text.empty() || characters.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

template <typename Float>
char* WriteShortest(char* out, Float value, FloatForm form) {
  char* const limit = out + kFloatSize;
  if (form == FloatForm::Shorter) return std::to_chars(out, limit, value).ptr;
  const auto format =
      form == FloatForm::Plain ? std::chars_format::fixed : std::chars_format::scientific;
  return std::to_chars(out, limit, value, format).ptr;
}

template <typename Float>
std::size_t Write(char* out, Float value, FloatForm form) {
  char* end = WriteShortest(out, value, form);
  char* const exponent = std::find(out, end, 'e');
  if (exponent != end && std::find(out, exponent, '.') == exponent) {
    std::copy_backward(exponent, end, end + 2);
    exponent[0] = '.';
    exponent[1] = '0';
    end += 2;
  }
  return static_cast<std::size_t>(end - out);
}

[[noreturn]] void ThrowOverflow() {
  throw RunTimeError(run_time::kOverflow, "Dorvane", "Overflow");
}

template <typename Integer>
Integer ParseInteger(std::string_view text) {
  std::string_view digits = Trim(text);
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  Integer value = 0;
  const char* const limit = digits.data() + digits.size();
  const auto [end, failure] = std::from_chars(digits.data(), limit, value);
  if (failure == std::errc::result_out_of_range && end == limit) ThrowOverflow();
  if (failure != std::errc() || end != limit) ThrowTypeMismatch();
  return value;
}

}  // namespace

std::size_t WriteFloat(char* out, float value, FloatForm form) {
  return Write(out, value, form);
}

std::size_t WriteFloat(char* out, double value, FloatForm form) {
  return Write(out, value, form);
}

void ThrowTypeMismatch(std::string_view text) {
  std::string description = "Type mismatch";
  if (!text.empty()) description.append(": ").append(text);
  throw RunTimeError(run_time::kTypeMismatch, "Dorvane", description);
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
  return ParseInteger<std::int16_t>(text);
}

std::int32_t ParsePort(std::string_view text) {
  constexpr std::int32_t kHighestPort = 65535;
  const auto port = ParseInteger<std::int32_t>(text);
  if (port < 0 || port > kHighestPort) ThrowOverflow();
  return port;
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
