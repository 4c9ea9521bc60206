#include "sandbox/values/datetime_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "sandbox/values/ticks.h"

namespace sandbox {

namespace {

struct Style {
  int number;
  const char* pattern;  // of fmt: 0 year, 1 month, 2 day, 3 hour, 4 minute, 5 second, 6 fraction,
};                      // 7 short month, 8 hour of twelve, 9 AM or PM
constexpr std::array kStyles{
    Style{0, "{7} {2:>2} {0:04} {8:>2}:{4:02}{9}"},
    Style{23, "{0:04}-{1:02}-{2:02}"},
    Style{112, "{0:04}{1:02}{2:02}"},
    Style{113, "{2:02} {7} {0:04} {3:02}:{4:02}:{5:02}:{6}"},
    Style{120, "{0:04}-{1:02}-{2:02} {3:02}:{4:02}:{5:02}"},
    Style{121, "{0:04}-{1:02}-{2:02} {3:02}:{4:02}:{5:02}.{6}"},
    Style{126, "{0:04}-{1:02}-{2:02}T{3:02}:{4:02}:{5:02}.{6}"},
};

}  // namespace

std::optional<std::string> DateTimeText(const DateTimeValue& value, const TypeInfo& type,
                                        int style) {
  const bool modern = type.type != SqlType::DateTime && type.type != SqlType::SmallDateTime;
  if (modern && style == 0) style = type.type == SqlType::Time ? -1 : 121;
  const CivilDate date = ToCivil(value.days);
  const std::int64_t seconds = value.ticks / kTicksPerSecond;
  const std::int64_t hour = seconds / 3600, minute = seconds / 60 % 60, second = seconds % 60;
  const int digits = type.type == SqlType::DateTime        ? 3
                     : type.type == SqlType::SmallDateTime ? 3
                                                           : type.scale;
  std::int64_t fraction_ticks = value.ticks % kTicksPerSecond;
  if (digits == 3) fraction_ticks = std::min<std::int64_t>(RoundTo(fraction_ticks, 10000), 9990000);
  const std::string fraction =
      fmt::format("{:07}", fraction_ticks).substr(0, static_cast<std::size_t>(digits));
  if (type.type == SqlType::Date && style == 121) style = 23;
  const char* pattern = nullptr;
  if (style == -1 || (type.type == SqlType::Time && (style == 121 || style == 126))) {
    pattern = "{3:02}:{4:02}:{5:02}.{6}";
  }
  for (const Style& entry : kStyles) {
    if (!pattern && entry.number == style) pattern = entry.pattern;
  }
  if (!pattern) return std::nullopt;
  std::string text = fmt::format(fmt::runtime(pattern), date.year, date.month, date.day, hour,
                                 minute, second, fraction, MonthName(date.month).substr(0, 3),
                                 hour % 12 == 0 ? 12 : hour % 12, hour < 12 ? "AM" : "PM");
  const bool no_fraction = fraction.empty() || (style == 126 && fraction_ticks == 0 && !modern);
  if (no_fraction && text.find('.') != std::string::npos &&
      std::string_view(pattern).ends_with(".{6}")) {
    text.erase(text.rfind('.'));
  }
  if (type.type == SqlType::DateTimeOffset) {
    const int minutes = std::abs(value.offset_minutes);
    text += fmt::format(" {}{:02}:{:02}", value.offset_minutes < 0 ? '-' : '+', minutes / 60,
                        minutes % 60);
  }
  return text;
}

}  // namespace sandbox
