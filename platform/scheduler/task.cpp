#include "platform/scheduler/task.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <ctime>

#include "platform/run_time_error.h"

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

constexpr std::size_t kLongestName = 200;
constexpr std::size_t kLongestEscaped = 200;

bool IsControl(unsigned char byte) {
  return byte < 0x20 || byte == 0x7F;
}

/// Length of the UTF-8 character that starts with this byte; 0 when none does.
std::size_t Utf8Length(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = Utf8Length(static_cast<unsigned char>(text.front()));
    if (length == 0 || length > text.size()) return false;
    const std::string_view rest = text.substr(1, length - 1);
    if (!std::ranges::all_of(rest, [](unsigned char byte) { return (byte & 0xC0) == 0x80; })) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

bool IsPlain(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         c == ':' || c == '.';
}

std::uint64_t Fnv1a(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const unsigned char byte : text) hash = (hash ^ byte) * 0x100000001B3U;
  return hash;
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

void CheckTaskName(std::string_view name) {
  const bool fits_a_file = !name.empty() && name.size() <= kLongestName && name != "." &&
                           name != ".." && name.find('/') == std::string_view::npos &&
                           std::ranges::none_of(name, IsControl) && IsUtf8(name);
  if (!fits_a_file) {
    throw RunTimeError(kInvalidTaskName, "Scheduler", "Please enter a valid task name");
  }
}

std::string EscapeTaskName(std::string_view name) {
  std::string escaped;
  for (const char c : name) {
    const bool stands = IsPlain(c) && !(c == '.' && escaped.empty());
    escaped += stands ? std::string(1, c) : fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
  }
  if (escaped.size() <= kLongestEscaped) return escaped;
  const std::string hash = fmt::format("-{:016x}", Fnv1a(name));
  return escaped.substr(0, kLongestEscaped - hash.size()) + hash;
}

}  // namespace dorvane::scheduler
