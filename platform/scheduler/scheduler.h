#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/scheduler/task.h"

namespace dorvane::scheduler {

/// Numbers of the scheduler's failures, beside kInvalidTaskName and those of run_time.
inline constexpr std::int32_t kTaskExists = -2147024816;    // 0x80070050
inline constexpr std::int32_t kTaskNotFound = -2147024894;  // 0x80070002

/// The named tasks that this program keeps with the operating system for one user. Everything
/// throws RunTimeError; a command of the system that fails gives process::kCommandFailed with its
/// words.
class ITaskScheduler {
 public:
  virtual ~ITaskScheduler() = default;

  /// A task of this name, enabled and daily from now on, not saved yet. Throws kInvalidTaskName,
  /// or kTaskExists when the name is taken.
  Task NewTask(const std::string& name) const;

  /// Adds the task or replaces the one of its name. Throws RunTimeError 5 for a weekly task without
  /// a day, a start time beyond the day, or a line break in a path or the arguments.
  void Save(const Task& task);

  virtual std::optional<Task> Find(const std::string& name) const = 0;

  /// All of them by name. An entry that is damaged is left out.
  virtual std::vector<Task> Tasks() const = 0;

  /// Find for a task that has to be there: throws kTaskNotFound.
  Task Load(const std::string& name) const;

  /// Forgets the task; a run under way goes on. Throws kTaskNotFound.
  virtual void Remove(const std::string& name) = 0;

  /// Starts the task's program at once, enabled or not, and returns without waiting for it. Throws
  /// RunTimeError 53 when the program is not there.
  void RunNow(const std::string& name);

  /// Whether Task::run_missed_start has an effect here.
  virtual bool CanRunMissedStarts() const = 0;

 protected:
  virtual void Store(const Task& task) = 0;
  virtual void Start(const Task& task) = 0;
};

/// The scheduler of this computer: systemd's timers where the user has a systemd that answers, else
/// the crontab.
std::unique_ptr<ITaskScheduler> MakeTaskScheduler();

}  // namespace dorvane::scheduler
