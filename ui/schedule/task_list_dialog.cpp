#include "ui/schedule/task_list_dialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "endpoint/events.h"
#include "platform/run_time_error.h"
#include "ui/controls/default_button.h"
#include "ui/controls/make_child.h"
#include "ui/controls/name_list_view.h"
#include "ui/controls/soft_button.h"
#include "ui/look/current_look.h"

namespace dorvane {

TaskListDialog::TaskListDialog(std::shared_ptr<scheduler::ITaskScheduler> scheduler,
                               Messages messages, QWidget* parent)
    : QDialog(parent), scheduler_(std::move(scheduler)), messages_(std::move(messages)) {
  setObjectName("frmTaskList");
  setWindowTitle("Scheduled tasks");
  FollowPalette(*this, &Look::window);
  QWidget& self = *this;
  auto& layout = MakeChild<QVBoxLayout>(self);
  layout.setContentsMargins(kDialogMargin, kDialogMargin, kDialogMargin, kDialogMargin);
  layout.setSpacing(kDialogGap);
  auto& label = MakeChild<QLabel>(self, "&Tasks");
  lstTasks_ = &MakeNamed<NameListView>("lstTasks", self);
  lstTasks_->setAccessibleName("Tasks");
  label.setBuddy(lstTasks_);
  layout.addWidget(&label);
  layout.addWidget(lstTasks_);
  auto& row = MakeLayout<QHBoxLayout>(layout);
  row.setSpacing(kDialogGap);
  row.addStretch();
  cmdOpen_ = &AddDialogButton("cmdOpenTask", self, "Open", 'O');
  auto& cmdClose = AddDialogButton("cmdCloseTasks", self, "Close", 'C');
  row.addWidget(cmdOpen_);
  row.addWidget(&cmdClose);
  MakeChild<DefaultButton>(self, std::vector{cmdOpen_});
  connect(cmdOpen_, &QAbstractButton::clicked, this, &TaskListDialog::Open);
  connect(lstTasks_, &QListView::doubleClicked, this, &TaskListDialog::Open);
  connect(&cmdClose, &QAbstractButton::clicked, this, &QWidget::close);
  resize(420, 320);
  ReadTasks();
}

void TaskListDialog::ReadTasks() {
  try {
    tasks_ = scheduler_->Tasks();
  } catch (const RunTimeError& error) {
    messages_.show(error.Description(), message_style::kError, "Error");
  }
  std::vector<std::string> names;
  for (const scheduler::Task& task : tasks_) names.push_back(task.name);
  lstTasks_->SetNames(std::move(names), tasks_.empty() ? -1 : 0);
  cmdOpen_->SetEnabled(!tasks_.empty());
}

void TaskListDialog::Open() {
  const int current = lstTasks_->Current();
  if (current < 0) return;
  TaskSettingsDialog settings(scheduler_, tasks_[static_cast<std::size_t>(current)], messages_,
                              this);
  settings.exec();
  ReadTasks();
}

}  // namespace dorvane
