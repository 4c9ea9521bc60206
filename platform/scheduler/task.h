#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace dorvane::scheduler {

/// A minute of the computer's local calendar.
using LocalMinute = std::chrono::local_time<std::chrono::minutes>;

LocalMinute LocalNow();

enum class Repetition { Once, Daily, Weekly, Monthly };

/// A program that the operating system starts at set times.
struct Task {
  std::string name;     // as typed, UTF-8
  std::string comment;  // one line
  std::filesystem::path program;
  std::string arguments;  // one argument, handed over as it stands
  std::filesystem::path working_directory;
  std::chrono::local_days begin_date;  // no run before this day
  std::chrono::minutes start_time{0};  // since midnight, 0 to 1439
  Repetition repetition = Repetition::Daily;
  std::set<unsigned> week_days{};  // for Weekly: 0 Sunday to 6 Saturday
  /// Start as soon as possible when the computer was off at the time; crontabs cannot do that.
  bool run_missed_start = false;
  bool enabled = true;

  bool operator==(const Task&) const = default;
};

/// The task's first start at or after `from`, enabled or not; none when there is no further one. A
/// monthly task runs on the begin date's day, and skips the months that lack it.
std::optional<LocalMinute> NextStart(const Task& task, LocalMinute from);

inline constexpr std::int32_t kInvalidTaskName = -2147024773;  // 0x8007007B

/// Throws RunTimeError kInvalidTaskName, "Please enter a valid task name", when the name cannot be
/// a file of its own: empty, "." or "..", with "/" or a control character, not UTF-8, or longer
/// than 200 bytes. Blanks and letters of any script are fine.
void CheckTaskName(std::string_view name);

/// The name for file and unit names, without an ending: letters, digits, "_", ":" and inner "."
/// stand, every other byte becomes "\xNN". Different names stay different. At most 200 bytes: a
/// longer one ends in a hash of the whole.
std::string EscapeTaskName(std::string_view name);

}  // namespace dorvane::scheduler
