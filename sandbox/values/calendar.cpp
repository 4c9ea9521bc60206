#include <algorithm>
#include <array>

#include "sandbox/values/datetime_text.h"
#include "sandbox/values/ticks.h"

namespace sandbox {

namespace {

constexpr std::array kMonths{"January", "February", "March",     "April",   "May",      "June",
                             "July",    "August",   "September", "October", "November", "December"};
constexpr std::int64_t kMaxDays = 3652058;      // 9999-12-31
constexpr std::int64_t kDaysTo1753 = 639905;    // where datetime begins
constexpr std::int64_t kLastSmallDay = 759130;  // 2079-06-06

bool IsLeap(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

}  // namespace

std::string_view MonthName(int month) {
  return kMonths[static_cast<std::size_t>(month - 1)];
}

std::int64_t RoundTo(std::int64_t ticks, std::int64_t step) {
  return (ticks + step / 2) / step * step;
}

int DaysInMonth(int year, int month) {
  static constexpr std::array kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

std::int64_t FromCivil(const CivilDate& date) {
  static constexpr std::array kDaysBefore{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const std::int64_t y = date.year - 1;
  const std::int64_t days = y * 365 + y / 4 - y / 100 + y / 400;
  const int leap_day = date.month > 2 && IsLeap(date.year) ? 1 : 0;
  return days + kDaysBefore[static_cast<std::size_t>(date.month - 1)] + leap_day + date.day - 1;
}

CivilDate ToCivil(std::int64_t days) {
  days = std::clamp<std::int64_t>(days, 0, kMaxDays);
  CivilDate date;
  date.year = static_cast<int>(days / 366) + 1;  // never too late, and early by few years
  while (date.year < 9999 && FromCivil({date.year + 1, 1, 1}) <= days) ++date.year;
  std::int64_t rest = days - FromCivil({date.year, 1, 1});
  while (rest >= DaysInMonth(date.year, date.month)) {
    rest -= DaysInMonth(date.year, date.month++);
  }
  date.day = static_cast<int>(rest) + 1;
  return date;
}

std::optional<DateTimeValue> FitDateTime(const DateTimeValue& value, const TypeInfo& type) {
  DateTimeValue fitted = value;
  switch (type.type) {
    case SqlType::Date:
      fitted.ticks = 0;
      break;
    case SqlType::DateTime: {
      const std::int64_t units = (value.ticks * 300 + kTicksPerSecond / 2) / kTicksPerSecond;
      fitted.ticks = (units * kTicksPerSecond + 150) / 300;
      if (units == 300 * 86400) fitted.ticks = kTicksPerDay;
      break;
    }
    case SqlType::SmallDateTime:
      fitted.ticks = RoundTo(value.ticks, 60 * kTicksPerSecond);
      break;
    default: {
      std::int64_t step = 1;
      for (int i = type.scale; i < 7; ++i) step *= 10;
      fitted.ticks = RoundTo(value.ticks, step);
    }
  }
  if (type.type == SqlType::Time) {
    fitted.days = 0;
    if (fitted.ticks >= kTicksPerDay) fitted.ticks = 0;
    return fitted;
  }
  if (fitted.ticks >= kTicksPerDay) {
    fitted.ticks -= kTicksPerDay;
    ++fitted.days;
  }
  if (type.type != SqlType::DateTimeOffset) fitted.offset_minutes = 0;
  std::int64_t first = 0, last = kMaxDays;
  if (type.type == SqlType::DateTime) first = kDaysTo1753;
  if (type.type == SqlType::SmallDateTime) {
    first = kDaysTo1900;
    last = kLastSmallDay;
  }
  if (fitted.days < first || fitted.days > last) return std::nullopt;
  return fitted;
}

}  // namespace sandbox
