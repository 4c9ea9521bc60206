#include "job/scheduled_conversion.h"

#include "platform/files/text_file.h"

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

void DeleteConversionTask(scheduler::ITaskScheduler& scheduler, const scheduler::Task& task) {
  scheduler.Remove(task.name);
  const std::filesystem::path file = task.working_directory / task.arguments;
  std::error_code failure;
  std::filesystem::remove(file, failure);
  if (failure) files::ThrowFileError(failure.value(), file);
}

void TryLog(const scheduler::Task& task, const std::string& log_path) {
  const std::filesystem::path path = task.working_directory / log_path;
  std::error_code ignored;
  const bool is_new = !std::filesystem::exists(path, ignored);
  const files::LineAppender log(path);
  if (is_new) std::filesystem::remove(path, ignored);
}

}  // namespace dorvane
