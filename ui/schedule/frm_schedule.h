#pragma once

#include <QDialog>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "endpoint/database.h"
#include "platform/scheduler/scheduler.h"
#include "ui/schedule/task_settings_dialog.h"

class QGridLayout;
class QLineEdit;

namespace dorvane {

/// What the scheduling dialog gets from its surroundings. All of it must be set.
struct ScheduleServices {
  std::function<std::unique_ptr<scheduler::ITaskScheduler>()> make_scheduler =
      scheduler::MakeTaskScheduler;
  std::filesystem::path program_folder;   // where "Dorvane" lies
  std::filesystem::path settings_folder;  // where the task's settings file goes and the task runs
  Messages messages;
};

/// Turns a conversion into a task of the operating system, with a settings file of the task's name.
/// The endpoints are read when the task is saved and must outlive the dialog.
class frmSchedule : public QDialog {
  Q_OBJECT

 public:
  frmSchedule(const IDatabase& src, const IDatabase& dest, NameList tables,
              ScheduleServices services, QWidget* parent = nullptr);

 private:
  QLineEdit& AddField(QGridLayout& layout, const char* name, const QString& caption);
  /// A task's name that is free, and a log beside its settings file.
  void ProposeNames();
  void Browse();
  void Schedule();
  /// Makes the task and its settings file, and shows the task's settings. Throws RunTimeError; a
  /// task whose file could not be written is not enabled.
  scheduler::Task SaveTask(const std::string& name, const std::string& log);
  /// Says so when the task's runs could not open their log.
  void TellUnusableLog(const scheduler::Task& task, const std::string& log) const;
  void Refuse(std::string_view message, QLineEdit* field) const;

  const IDatabase& src_;
  const IDatabase& dest_;
  const NameList tables_;
  const ScheduleServices services_;
  QLineEdit* txtTaskName_;
  QLineEdit* txtLogFile_;
};

}  // namespace dorvane
