#include "job/scheduled_conversion.h"

namespace dorvane {

namespace {

constexpr const char* kTaskComment = "Dorvane";
constexpr const char* kProgramName = "Dorvane";

}  // namespace

std::filesystem::path TaskSettingsFile(const std::filesystem::path& settings_folder,
                                       const std::string& name) {
  return settings_folder / (name + ".dcs");
}

scheduler::Task SaveConversionTask(scheduler::ITaskScheduler& scheduler, const std::string& name,
                                   const std::filesystem::path& program_folder,
                                   const std::filesystem::path& settings_folder) {
  scheduler::Task task = scheduler.NewTask(name);
  task.comment = kTaskComment;
  task.program = program_folder / kProgramName;
  task.working_directory = settings_folder;
  task.arguments = TaskSettingsFile(settings_folder, name).filename();
  task.run_missed_start = true;
  scheduler.Save(task);
  return task;
}

}  // namespace dorvane
