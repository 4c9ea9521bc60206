#include "sandbox/tds/temporal.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>

#include "sandbox/values/ticks.h"

namespace sandbox::tds {

namespace {

constexpr std::int64_t kThreeHundredthsPerDay = 86'400 * 300;
constexpr std::int32_t kDaysTo1970 = 719'162;

DateTimeValue Shifted(const DateTimeValue& value, std::int64_t minutes) {
  std::int64_t ticks = value.ticks + minutes * kTicksPerMinute;
  std::int64_t days = ticks / kTicksPerDay;
  ticks %= kTicksPerDay;
  if (ticks < 0) {
    ticks += kTicksPerDay;
    --days;
  }
  return {static_cast<std::int32_t>(value.days + days), ticks, value.offset_minutes};
}

std::string DateText(std::int32_t days) {
  std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{days - kDaysTo1970}}};
  return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

std::string TimeText(std::int64_t ticks, int scale) {
  std::int64_t seconds = ticks / kTicksPerSecond;
  std::string text =
      fmt::format("{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
  if (scale == 0) return text;
  return text + fmt::format(".{:0{}}", ticks % kTicksPerSecond / TicksPerUnit(scale), scale);
}

}  // namespace

LegacyDateTime ToLegacy(const DateTimeValue& value) {
  std::int64_t parts = (value.ticks * 3 + 50'000) / 100'000;
  std::int32_t carry = parts >= kThreeHundredthsPerDay ? 1 : 0;
  return {value.days - kDaysTo1900 + carry,
          static_cast<std::uint32_t>(parts - carry * kThreeHundredthsPerDay)};
}

DateTimeValue FromLegacy(LegacyDateTime legacy) {
  // SQL Server shows a three-hundredth rounded to whole milliseconds.
  std::int64_t milliseconds = (std::int64_t{legacy.three_hundredths} * 10 + 1) / 3;
  return {legacy.days + kDaysTo1900, milliseconds * 10'000, 0};
}

DateTimeValue ToUtc(const DateTimeValue& local) {
  return Shifted(local, -local.offset_minutes);
}

DateTimeValue ToLocal(const DateTimeValue& utc) {
  return Shifted(utc, utc.offset_minutes);
}

std::int64_t TicksPerUnit(int scale) {
  constexpr std::int64_t kUnits[] = {10'000'000, 1'000'000, 100'000, 10'000, 1'000, 100, 10, 1};
  return kUnits[scale];
}

std::string DateTimeText(const DateTimeValue& value, SqlType type, int scale) {
  if (type == SqlType::Date) return DateText(value.days);
  if (type == SqlType::Time) return TimeText(value.ticks, scale);
  std::string text = DateText(value.days) + " " + TimeText(value.ticks, scale);
  if (type != SqlType::DateTimeOffset) return text;
  int minutes = std::abs(value.offset_minutes);
  return text + fmt::format(" {}{:02}:{:02}", value.offset_minutes < 0 ? '-' : '+', minutes / 60,
                            minutes % 60);
}

}  // namespace sandbox::tds
