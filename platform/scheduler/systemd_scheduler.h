#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/scheduler/scheduler.h"

namespace dorvane::scheduler {

/// Tasks as pairs of a service and a timer of the user's systemd. The timer file carries the whole
/// task in a section that systemd passes over.
class SystemdScheduler : public ITaskScheduler {
 public:
  struct Settings {
    std::filesystem::path unit_folder;   // empty: the user's own
    std::vector<std::string> systemctl;  // empty: "systemctl --user"
  };

  explicit SystemdScheduler(Settings settings = {});

  /// True when the user's systemd takes orders here.
  static bool Answers();

  std::optional<Task> Find(const std::string& name) const override;
  std::vector<Task> Tasks() const override;
  void Remove(const std::string& name) override;
  bool CanRunMissedStarts() const override { return true; }

 protected:
  void Store(const Task& task) override;
  void Start(const Task& task) override;

 private:
  std::filesystem::path UnitFile(const std::string& name, std::string_view ending) const;
  void Systemctl(const std::vector<std::string>& arguments) const;

  Settings settings_;
};

/// "dorvane-" and the escaped task name, without the ending.
std::string UnitName(const std::string& task_name);

/// The texts of the two unit files.
std::string ServiceText(const Task& task);
std::string TimerText(const Task& task);

}  // namespace dorvane::scheduler
