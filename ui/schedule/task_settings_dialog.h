#pragma once

#include <QDialog>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/scheduler/scheduler.h"

class QCheckBox;
class QComboBox;
class QDateEdit;
class QFormLayout;
class QLabel;
class QTimeEdit;
class QVBoxLayout;

namespace dorvane {

/// How these dialogs talk to the user; `style` is a value of message_style.
struct Messages {
  std::function<void(std::string_view text, std::int32_t style, std::string_view title)> show;
  /// True for Yes.
  std::function<bool(std::string_view question)> ask;
};

/// Shows a saved task and lets the user complete its schedule, run it at once or delete it.
class TaskSettingsDialog : public QDialog {
  Q_OBJECT

 public:
  TaskSettingsDialog(std::shared_ptr<scheduler::ITaskScheduler> scheduler, scheduler::Task task,
                     Messages messages, QWidget* parent = nullptr);

 private:
  void AddFacts(QFormLayout& form);
  void AddSchedule(QFormLayout& form);
  QWidget& AddWeekDays();
  void AddButtons(QVBoxLayout& layout);
  /// The task as the controls show it.
  scheduler::Task Edited() const;
  void ScheduleChanged();
  void Save();
  void RunNow();
  void Delete();
  /// Runs a step of the scheduler; false when it failed and the user was told.
  bool Try(const std::function<void()>& step) const;

  const std::shared_ptr<scheduler::ITaskScheduler> scheduler_;
  const scheduler::Task task_;
  const Messages messages_;
  QCheckBox* chkEnabled_ = nullptr;
  QDateEdit* dteBegin_ = nullptr;
  QTimeEdit* tmeStart_ = nullptr;
  QComboBox* cmbRepetition_ = nullptr;
  QWidget* days_ = nullptr;
  std::array<QCheckBox*, 7> chkDay_{};  // Sunday first
  QCheckBox* chkRunMissed_ = nullptr;
  QLabel* lblNextRun_ = nullptr;
  QLabel* lblStatus_ = nullptr;
};

}  // namespace dorvane
