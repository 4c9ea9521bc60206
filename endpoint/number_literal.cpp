#include "endpoint/number_literal.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/text/number_text.h"

namespace dorvane {

namespace {

constexpr std::size_t kMostPlainDigits = 15;

std::size_t SignificantDigits(std::string_view number) {
  const std::size_t first = number.find_first_of("123456789");
  if (first == std::string_view::npos) return 1;
  const std::string_view digits = number.substr(first);
  return digits.size() - static_cast<std::size_t>(std::count(digits.begin(), digits.end(), '.'));
}

template <typename Float>
std::size_t WriteShortest(char* out, Float value) {
  const Float magnitude = std::fabs(value);
  const bool is_plain = magnitude == 0 || (magnitude >= Float(1e-5) && magnitude < Float(1e15));
  if (is_plain) {
    const std::size_t length = text::WriteFloat(out, value, text::FloatForm::Plain);
    if (SignificantDigits({out, length}) <= kMostPlainDigits) return length;
  }
  return text::WriteFloat(out, value, text::FloatForm::Exponent);
}

// Puts a blank before digits without a sign, which stand at out + 1, and a point behind those that
// have none.
std::size_t Finish(char* out, std::size_t length) {
  const bool is_negative = out[1] == '-';
  if (is_negative) {
    std::copy(out + 1, out + 1 + length, out);
  } else {
    out[0] = ' ';
  }
  char* end = out + length + (is_negative ? 0 : 1);
  if (std::find(out, end, '.') == end) end = std::copy_n(".0", 2, end);
  return static_cast<std::size_t>(end - out);
}

}  // namespace

std::size_t NumberSize(const ado::Value& value) {
  const auto* decimal = std::get_if<ado::Decimal>(&value);
  return decimal != nullptr ? decimal->digits.size() + 3 : text::kFloatSize + 3;
}

std::size_t WriteNumber(char* out, const ado::Value& value) {
  char* digits = out + 1;
  if (const auto* decimal = std::get_if<ado::Decimal>(&value)) {
    std::copy(decimal->digits.begin(), decimal->digits.end(), digits);
    return Finish(out, decimal->digits.size());
  }
  if (const auto* number = std::get_if<double>(&value)) {
    return Finish(out, WriteShortest(digits, *number));
  }
  if (const auto* number = std::get_if<float>(&value)) {
    return Finish(out, WriteShortest(digits, *number));
  }
  return Finish(out, WriteInteger(digits, value));
}

std::size_t WriteInteger(char* out, const ado::Value& value) {
  const auto length = [out](std::to_chars_result result) {
    return static_cast<std::size_t>(result.ptr - out);
  };
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    return length(std::to_chars(out, out + 20, *number));
  }
  if (const auto* number = std::get_if<std::uint64_t>(&value)) {
    return length(std::to_chars(out, out + 20, *number));
  }
  const auto* flag = std::get_if<bool>(&value);
  out[0] = flag != nullptr && *flag ? '1' : '0';
  return 1;
}

std::string NumberText(std::string_view number) {
  const std::string_view trimmed = text::Trim(number);
  if (!text::IsNumeric(trimmed)) text::ThrowTypeMismatch(number);
  const bool negative = trimmed.front() == '-';
  std::string_view digits = trimmed.substr(negative || trimmed.front() == '+' ? 1 : 0);

  std::string plain(digits);
  if (digits.find_first_of("eE") != std::string_view::npos) {
    double value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    plain.resize(text::kFloatSize);
    plain.resize(WriteShortest(plain.data(), value));
  } else {
    plain.erase(0, std::min(plain.find_first_not_of('0'), plain.size()));
    if (plain.find('.') != std::string::npos) plain.erase(plain.find_last_not_of('0') + 1);
    if (plain.empty() || plain.front() == '.') plain.insert(0, 1, '0');
    if (plain.back() == '.') plain.pop_back();
  }
  if (negative && plain != "0") plain.insert(0, 1, '-');

  std::string text(plain.size() + 3, ' ');
  std::copy(plain.begin(), plain.end(), text.begin() + 1);
  text.resize(Finish(text.data(), plain.size()));
  return text;
}

}  // namespace dorvane
