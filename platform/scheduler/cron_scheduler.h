#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/scheduler/scheduler.h"

namespace dorvane::scheduler {

/// Tasks as entries of the user's crontab, each between two marker lines and with the whole task in
/// comments. Everything else in the crontab stays to the byte.
class CronScheduler : public ITaskScheduler {
 public:
  /// The command that lists ("-l"), installs ("-") and removes ("-r") the crontab.
  explicit CronScheduler(std::vector<std::string> crontab = {"crontab"});

  std::optional<Task> Find(const std::string& name) const override;
  std::vector<Task> Tasks() const override;
  void Remove(const std::string& name) override;
  bool CanRunMissedStarts() const override { return false; }

 protected:
  void Store(const Task& task) override;
  void Start(const Task& task) override;

 private:
  std::string ReadCrontab() const;
  void InstallCrontab(std::string_view text) const;

  std::vector<std::string> crontab_;
};

/// The lines of a task, markers included. Throws RunTimeError 5 when cron could not run a command
/// as long as that.
std::string CrontabEntry(const Task& task);

}  // namespace dorvane::scheduler
