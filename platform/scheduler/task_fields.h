#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/scheduler/task.h"

namespace dorvane::scheduler {

/// A task as lines "key="value"", each begun with `prefix`: what a unit file or a crontab keeps of
/// a task beside what the system reads of it.
std::string WriteFields(const Task& task, std::string_view prefix);

/// The task of such lines; other lines are passed over. Throws RunTimeError 13 when a key is
/// missing or its value damaged.
Task ReadFields(std::string_view text, std::string_view prefix);

/// Adds the task of such lines to `tasks`, unless they are damaged.
void AddReadable(std::string_view text, std::string_view prefix, std::vector<Task>& tasks);

std::vector<Task> ByName(std::vector<Task> tasks);

/// "2026-11-22"
std::string DateText(std::chrono::local_days day);

/// "21:05"
std::string TimeText(std::chrono::minutes since_midnight);

}  // namespace dorvane::scheduler
