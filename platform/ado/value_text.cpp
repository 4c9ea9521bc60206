#include "platform/ado/value_text.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>
#include <variant>

#include "platform/text/number_text.h"

namespace dorvane::ado {

namespace {

template <typename Float>
std::string FloatText(Float value) {
  std::string text(text::kFloatSize, ' ');
  text.resize(text::WriteFloat(text.data(), value, text::FloatForm::Shorter));
  return text;
}

std::string DateText(const DateTime& value) {
  return fmt::format("{:04}-{:02}-{:02}", value.year, value.month, value.day);
}

/// With the fraction's digits up to the last one that is not zero. Below zero with a "-" in front;
/// beyond a day with as many hours as there are.
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

std::string DateTimeText(const DateTime& value, DataType type) {
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
  std::string operator()(float value) const { return FloatText(value); }
  std::string operator()(double value) const { return FloatText(value); }
  std::string operator()(const Decimal& value) const { return std::string(value.digits); }
  std::string operator()(std::string_view value) const { return std::string(value); }
  std::string operator()(const Binary& value) const { return std::string(value.bytes); }
  std::string operator()(const DateTime& value) const { return DateTimeText(value, type); }
  std::string operator()(const Guid& value) const { return std::string(value.text); }
};

}  // namespace

std::string ToText(const Value& value, DataType type) {
  return std::visit(TextOf{type}, value);
}

}  // namespace dorvane::ado
