#include "platform/scheduler/scheduler.h"

#include <fmt/format.h>
#include <unistd.h>

#include <string_view>

#include "platform/run_time_error.h"
#include "platform/scheduler/cron_scheduler.h"
#include "platform/scheduler/systemd_scheduler.h"

namespace dorvane::scheduler {

namespace {

[[noreturn]] void Refuse(const std::string& why) {
  throw RunTimeError(run_time::kInvalidArgument, "Scheduler", why);
}

/// What no unit file and no crontab line could hold.
void CheckTask(const Task& task) {
  CheckTaskName(task.name);
  if (task.repetition == Repetition::Weekly && task.week_days.empty()) {
    Refuse("Please choose at least one day of the week");
  }
  if (task.start_time < std::chrono::minutes(0) || task.start_time >= std::chrono::hours(24)) {
    Refuse("The start time is not a time of the day");
  }
  for (const std::string& text :
       {task.comment, task.program.string(), task.arguments, task.working_directory.string()}) {
    if (text.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos) {
      Refuse(fmt::format("A scheduled task can not hold a line break: {}", text));
    }
  }
}

}  // namespace

Task ITaskScheduler::NewTask(const std::string& name) const {
  CheckTaskName(name);
  if (Find(name)) {
    throw RunTimeError(kTaskExists, "Scheduler", fmt::format("The task {} exists", name));
  }
  const LocalMinute now = LocalNow();
  Task task;
  task.name = name;
  task.begin_date = std::chrono::floor<std::chrono::days>(now);
  task.start_time = now - task.begin_date;
  return task;
}

void ITaskScheduler::Save(const Task& task) {
  CheckTask(task);
  Store(task);
}

Task ITaskScheduler::Load(const std::string& name) const {
  std::optional<Task> task = Find(name);
  if (!task) {
    throw RunTimeError(kTaskNotFound, "Scheduler", fmt::format("There is no task {}", name));
  }
  return std::move(*task);
}

void ITaskScheduler::RunNow(const std::string& name) {
  const Task task = Load(name);
  if (access(task.program.c_str(), X_OK) != 0) {
    throw RunTimeError(run_time::kFileNotFound, "Scheduler",
                       fmt::format("Can not start {}", task.program.string()));
  }
  Start(task);
}

std::unique_ptr<ITaskScheduler> MakeTaskScheduler() {
  if (SystemdScheduler::Answers()) return std::make_unique<SystemdScheduler>();
  return std::make_unique<CronScheduler>();
}

}  // namespace dorvane::scheduler
