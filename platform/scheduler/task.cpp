#include "platform/scheduler/task.h"

#include <algorithm>
#include <ctime>

namespace dorvane::scheduler {

namespace {

using std::chrono::local_days;
using std::chrono::year_month_day;

bool RunsOn(const Task& task, local_days day) {
  switch (task.repetition) {
    case Repetition::Once:
      return day == task.begin_date;
    case Repetition::Daily:
      return true;
    case Repetition::Weekly:
      return task.week_days.contains(std::chrono::weekday(day).c_encoding());
    case Repetition::Monthly:
      return year_month_day(day).day() == year_month_day(task.begin_date).day();
  }
  return false;
}

}  // namespace

LocalMinute LocalNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const year_month_day day{std::chrono::year(local.tm_year + 1900),
                           std::chrono::month(static_cast<unsigned>(local.tm_mon + 1)),
                           std::chrono::day(static_cast<unsigned>(local.tm_mday))};
  return local_days(day) + std::chrono::hours(local.tm_hour) + std::chrono::minutes(local.tm_min);
}

std::optional<LocalMinute> NextStart(const Task& task, LocalMinute from) {
  // Two months hold every pattern once: no two neighbouring months lack the same day.
  constexpr std::chrono::days kLongestGap{62};
  const local_days today = std::chrono::floor<std::chrono::days>(from);
  const local_days first = std::max(today, task.begin_date);
  for (local_days day = first; day <= first + kLongestGap; day += std::chrono::days(1)) {
    const LocalMinute start = day + task.start_time;
    if (start >= from && RunsOn(task, day)) return start;
  }
  return std::nullopt;
}

}  // namespace dorvane::scheduler
