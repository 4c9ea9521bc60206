#include "ui/schedule/frm_schedule.h"

#include <fmt/format.h>

#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

#include "job/conversion_settings.h"
#include "job/scheduled_conversion.h"
#include "platform/run_time_error.h"
#include "platform/text/number_text.h"
#include "ui/controls/default_button.h"
#include "ui/controls/make_child.h"
#include "ui/controls/soft_button.h"
#include "ui/look/current_look.h"

namespace dorvane {

namespace {

constexpr int kFieldWidth = 320;

std::string UnknownError(std::int32_t number, std::string_view description) {
  return fmt::format("Unknown error {} - {}", number, description);
}

}  // namespace

frmSchedule::frmSchedule(const IDatabase& src, const IDatabase& dest, NameList tables,
                         ScheduleServices services, QWidget* parent)
    : QDialog(parent),
      src_(src),
      dest_(dest),
      tables_(std::move(tables)),
      services_(std::move(services)) {
  setObjectName("frmSchedule");
  setWindowTitle("Schedule Conversion");
  FollowPalette(*this, &Look::window);
  auto& layout = MakeChild<QGridLayout>(*static_cast<QWidget*>(this));
  layout.setContentsMargins(kDialogMargin, kDialogMargin, kDialogMargin, kDialogMargin);
  layout.setSpacing(kDialogGap);
  txtTaskName_ = &AddField(layout, "txtTaskName", "Task &name");
  txtLogFile_ = &AddField(layout, "txtLogFile", "&Log file");
  auto& cmdBrowse = AddDialogButton("cmdBrowse", *this, "Browse", 'B');
  auto& cmdSchedule = AddDialogButton("cmdSchedule", *this, "Save and show task settings", 'S');
  auto& cmdCancel = AddDialogButton("cmdCancel", *this, "Close", 'C');
  MakeChild<DefaultButton>(static_cast<QWidget&>(*this), std::vector{&cmdSchedule});
  layout.addWidget(&cmdBrowse, 1, 2);
  layout.addWidget(&cmdSchedule, 2, 1, Qt::AlignRight);
  layout.addWidget(&cmdCancel, 2, 2);

  ProposeNames();
  connect(&cmdBrowse, &QAbstractButton::clicked, this, &frmSchedule::Browse);
  connect(&cmdSchedule, &QAbstractButton::clicked, this, &frmSchedule::Schedule);
  connect(&cmdCancel, &QAbstractButton::clicked, this, &QWidget::close);
}

QLineEdit& frmSchedule::AddField(QGridLayout& layout, const char* name, const QString& caption) {
  const int row = layout.rowCount() - (layout.count() == 0 ? 1 : 0);
  auto& label = MakeChild<QLabel>(*static_cast<QWidget*>(this), caption);
  auto& field = MakeNamed<QLineEdit>(name, *static_cast<QWidget*>(this));
  field.setMinimumWidth(kFieldWidth);
  label.setBuddy(&field);
  layout.addWidget(&label, row, 0);
  layout.addWidget(&field, row, 1);
  return field;
}

void frmSchedule::ProposeNames() {
  const std::string base = fmt::format("{} to {}", src_.DbName(), dest_.DbName());
  std::string name = base;
  for (int number = 2; std::filesystem::exists(TaskSettingsFile(services_.settings_folder, name));
       ++number) {
    name = fmt::format("{} {}", base, number);
  }
  txtTaskName_->setText(QString::fromStdString(name));
  txtTaskName_->selectAll();
  txtLogFile_->setText(
      QString::fromStdString((services_.settings_folder / (name + ".txt")).string()));
}

void frmSchedule::Browse() {
  QFileDialog cdLogFile(this, "Log file path", txtLogFile_->text(), "txt (*.txt)");
  cdLogFile.setObjectName("cdLogFile");
  cdLogFile.setAcceptMode(QFileDialog::AcceptSave);
  cdLogFile.setDefaultSuffix("txt");
  // A log that is there already is appended to, never replaced.
  cdLogFile.setOption(QFileDialog::DontConfirmOverwrite);
  if (cdLogFile.exec() == QDialog::Accepted)
    txtLogFile_->setText(cdLogFile.selectedFiles().first());
}

void frmSchedule::Schedule() {
  const std::string name = txtTaskName_->text().toStdString();
  const std::string log = txtLogFile_->text().toStdString();
  if (name.empty()) return Refuse("Please enter a valid task name", txtTaskName_);
  if (text::Trim(log).empty()) {
    return Refuse("Please specify the log file destination", txtLogFile_);
  }
  try {
    TellUnusableLog(SaveTask(name, log), log);
  } catch (const RunTimeError& error) {
    if (error.Number() == scheduler::kTaskExists) {
      return Refuse("This task already exists. Please enter a another name", txtTaskName_);
    }
    if (error.Number() == scheduler::kInvalidTaskName) {
      return Refuse(error.Description(), txtTaskName_);
    }
    Refuse(UnknownError(error.Number(), error.Description()), nullptr);
  } catch (const std::exception& error) {
    Refuse(UnknownError(run_time::kFileInputOutput, error.what()), nullptr);
  }
}

scheduler::Task frmSchedule::SaveTask(const std::string& name, const std::string& log) {
  const std::shared_ptr<scheduler::ITaskScheduler> scheduler = services_.make_scheduler();
  scheduler::Task task =
      SaveConversionTask(*scheduler, name, services_.program_folder, services_.settings_folder);
  const auto show_settings = [&] {
    auto& settings = MakeChild<TaskSettingsDialog>(*this, scheduler, task, services_.messages);
    settings.setAttribute(Qt::WA_DeleteOnClose);
    settings.open();
  };
  try {
    SaveConversionSettings(TaskSettingsFile(services_.settings_folder, name), src_, dest_, tables_,
                           log);
  } catch (...) {
    task.enabled = false;
    scheduler->Save(task);
    show_settings();
    throw;
  }
  show_settings();
  return task;
}

void frmSchedule::TellUnusableLog(const scheduler::Task& task, const std::string& log) const {
  try {
    TryLog(task, log);
  } catch (const RunTimeError& error) {
    Refuse(fmt::format("The task was saved, but its log cannot be opened: {}", error.Description()),
           nullptr);
  }
}

void frmSchedule::Refuse(std::string_view message, QLineEdit* field) const {
  services_.messages.show(message, message_style::kError, "Error");
  if (field != nullptr) field->setFocus();
}

}  // namespace dorvane
