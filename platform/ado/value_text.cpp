#include "platform/ado/value_text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <variant>

namespace dorvane::ado {

namespace {

template <typename Float>
std::string ShortestText(Float value) {
  std::array<char, 64> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  std::string text(buffer.data(), end);
  const auto exponent = text.find('e');
  if (exponent != std::string::npos && text.find('.') == std::string::npos) {
    text.insert(exponent, ".0");
  }
  return text;
}

std::string MomentText(const DateTime& value, DataType type) {
  if (type == DataType::DBTime) return TimeText(value);
  if (type == DataType::DBDate) return DateText(value);
  return DateText(value) + " " + TimeText(value);
}

struct TextOf {
  DataType type;

  std::string operator()(Null) const { return {}; }
  std::string operator()(bool value) const { return value ? "1" : "0"; }
  std::string operator()(std::int64_t value) const { return fmt::to_string(value); }
  std::string operator()(std::uint64_t value) const { return fmt::to_string(value); }
  std::string operator()(float value) const { return ShortestText(value); }
  std::string operator()(double value) const { return ShortestText(value); }
  std::string operator()(const Decimal& value) const { return std::string(value.digits); }
  std::string operator()(std::string_view value) const { return std::string(value); }
  std::string operator()(const Binary& value) const { return std::string(value.bytes); }
  std::string operator()(const DateTime& value) const { return MomentText(value, type); }
  std::string operator()(const Guid& value) const { return std::string(value.text); }
};

}  // namespace

std::string ToText(const Value& value, DataType type) {
  return std::visit(TextOf{type}, value);
}

std::string FloatText(float value) {
  return ShortestText(value);
}

std::string FloatText(double value) {
  return ShortestText(value);
}

std::string DateText(const DateTime& value) {
  return fmt::format("{:04}-{:02}-{:02}", value.year, value.month, value.day);
}

std::string TimeText(const DateTime& value) {
  const bool negative = value.seconds < 0 || value.nanoseconds < 0;
  const int seconds = std::abs(value.seconds);
  std::string text = fmt::format("{}{:02}:{:02}:{:02}", negative ? "-" : "", seconds / 3600,
                                 seconds / 60 % 60, seconds % 60);
  if (value.nanoseconds == 0) return text;
  text += fmt::format(".{:09}", std::abs(value.nanoseconds));
  text.erase(text.find_last_not_of('0') + 1);
  return text;
}

}  // namespace dorvane::ado
