#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "platform/scheduler/scheduler.h"
#include "ui/schedule/task_settings_dialog.h"

namespace dorvane {

class NameListView;
class GradientButton;

/// The conversions that are scheduled for this user, by name. Opening one shows its settings, where
/// it is run and deleted too.
class TaskListDialog : public QDialog {
  Q_OBJECT

 public:
  TaskListDialog(std::shared_ptr<scheduler::ITaskScheduler> scheduler, Messages messages,
                 QWidget* parent = nullptr);

 private:
  void ReadTasks();
  void Open();

  const std::shared_ptr<scheduler::ITaskScheduler> scheduler_;
  const Messages messages_;
  std::vector<scheduler::Task> tasks_;
  NameListView* lstTasks_;
  GradientButton* cmdOpen_;
};

}  // namespace dorvane
