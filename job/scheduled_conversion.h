#pragma once

#include <filesystem>
#include <string>

#include "platform/scheduler/scheduler.h"

namespace dorvane {

/// A scheduled conversion is a task of the operating system and a settings file of the task's name,
/// which the task starts the program with.

/// Makes and saves the task: it starts "Dorvane" of `program_folder` in `settings_folder`, daily
/// from now on. Returns it. Throws RunTimeError: kInvalidTaskName, kTaskExists, and whatever else
/// the scheduler reports.
scheduler::Task SaveConversionTask(scheduler::ITaskScheduler& scheduler, const std::string& name,
                                   const std::filesystem::path& program_folder,
                                   const std::filesystem::path& settings_folder);

/// Forgets the task and deletes its settings file, which holds passwords. Throws RunTimeError.
void DeleteConversionTask(scheduler::ITaskScheduler& scheduler, const scheduler::Task& task);

/// Makes sure that the task's runs can open their log; leaves no new file behind. Throws
/// RunTimeError when they could not.
void TryLog(const scheduler::Task& task, const std::string& log_path);

/// The settings file of that task.
std::filesystem::path TaskSettingsFile(const std::filesystem::path& settings_folder,
                                       const std::string& name);

}  // namespace dorvane
