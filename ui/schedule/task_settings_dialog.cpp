#include "ui/schedule/task_settings_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QTimeEdit>
#include <QVBoxLayout>

#include "endpoint/events.h"
#include "job/scheduled_conversion.h"
#include "platform/run_time_error.h"
#include "ui/controls/default_button.h"
#include "ui/controls/make_child.h"
#include "ui/controls/soft_button.h"
#include "ui/look/current_look.h"

namespace dorvane {

namespace {

using scheduler::LocalMinute;
using scheduler::Repetition;
using scheduler::Task;

/// Longer paths are cut by the window, not by the label.
constexpr int kFactWidth = 360;

QDate ToQDate(std::chrono::local_days day) {
  const std::chrono::year_month_day date(day);
  return QDate(static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
               static_cast<int>(static_cast<unsigned>(date.day())));
}

std::chrono::local_days FromQDate(const QDate& date) {
  return std::chrono::local_days(std::chrono::year(date.year()) /
                                 std::chrono::month(static_cast<unsigned>(date.month())) /
                                 std::chrono::day(static_cast<unsigned>(date.day())));
}

QTime ToQTime(std::chrono::minutes since_midnight) {
  return QTime(0, 0).addSecs(static_cast<int>(std::chrono::seconds(since_midnight).count()));
}

std::chrono::minutes FromQTime(const QTime& time) {
  return std::chrono::minutes(time.hour() * 60 + time.minute());
}

QString NextRunText(const Task& task) {
  if (!task.enabled) return "Not enabled";
  // The minute under way has started: a task of this minute runs next time.
  const auto next = NextStart(task, scheduler::LocalNow() + std::chrono::minutes(1));
  if (!next) return "Never";
  const auto day = std::chrono::floor<std::chrono::days>(*next);
  return QLocale().toString(QDateTime(ToQDate(day), ToQTime(*next - day)), "ddd yyyy-MM-dd HH:mm");
}

}  // namespace

TaskSettingsDialog::TaskSettingsDialog(std::shared_ptr<scheduler::ITaskScheduler> scheduler,
                                       Task task, Messages messages, QWidget* parent)
    : QDialog(parent),
      scheduler_(std::move(scheduler)),
      task_(std::move(task)),
      messages_(std::move(messages)) {
  setObjectName("frmTaskSettings");
  setWindowTitle(QString::fromStdString(task_.name));
  FollowPalette(*this, &Look::window);
  auto& layout = MakeChild<QVBoxLayout>(*static_cast<QWidget*>(this));
  layout.setContentsMargins(kDialogMargin, kDialogMargin, kDialogMargin, kDialogMargin);
  layout.setSpacing(kDialogGap);
  auto* form = std::make_unique<QFormLayout>().release();
  form->setHorizontalSpacing(2 * kDialogGap);
  layout.addLayout(form);
  AddFacts(*form);
  AddSchedule(*form);
  AddButtons(layout);
  ScheduleChanged();
}

void TaskSettingsDialog::AddFacts(QFormLayout& form) {
  const std::pair<const char*, std::string> facts[] = {
      {"Task name", task_.name},
      {"Comment", task_.comment},
      {"Program", task_.program.string()},
      {"Parameters", task_.arguments},
      {"Working directory", task_.working_directory.string()}};
  for (const auto& [caption, value] : facts) {
    auto& label = MakeChild<QLabel>(*static_cast<QWidget*>(this), QString::fromStdString(value));
    label.setTextFormat(Qt::PlainText);
    label.setTextInteractionFlags(Qt::TextSelectableByMouse);
    label.setMinimumWidth(kFactWidth);
    form.addRow(caption, &label);
  }
}

void TaskSettingsDialog::AddSchedule(QFormLayout& form) {
  QWidget& self = *this;
  chkEnabled_ = &MakeNamed<QCheckBox>("chkEnabled", self, "&Enabled");
  dteBegin_ = &MakeNamed<QDateEdit>("dteBegin", self, ToQDate(task_.begin_date));
  tmeStart_ = &MakeNamed<QTimeEdit>("tmeStart", self, ToQTime(task_.start_time));
  cmbRepetition_ = &MakeNamed<QComboBox>("cmbRepetition", self);
  chkRunMissed_ =
      &MakeNamed<QCheckBox>("chkRunMissed", self, "&Run as soon as possible after a missed start");
  lblNextRun_ = &MakeNamed<QLabel>("lblNextRun", self);

  dteBegin_->setDisplayFormat("yyyy-MM-dd");
  dteBegin_->setCalendarPopup(true);
  tmeStart_->setDisplayFormat("HH:mm");
  cmbRepetition_->addItems({"Once", "Daily", "Weekly", "Monthly"});  // in the order of Repetition
  cmbRepetition_->setCurrentIndex(static_cast<int>(task_.repetition));
  chkEnabled_->setChecked(task_.enabled);
  chkRunMissed_->setChecked(task_.run_missed_start && scheduler_->CanRunMissedStarts());
  chkRunMissed_->setEnabled(scheduler_->CanRunMissedStarts());
  if (!scheduler_->CanRunMissedStarts()) {
    chkRunMissed_->setToolTip("The tasks are in a crontab, which forgets a missed start.");
  }

  form.addRow(chkEnabled_);
  form.addRow("&Begin date", dteBegin_);
  form.addRow("&Start time", tmeStart_);
  form.addRow("Re&petition", cmbRepetition_);
  form.addRow("Days", &AddWeekDays());
  form.addRow(chkRunMissed_);
  form.addRow("Next run", lblNextRun_);

  const auto changed = [this] { ScheduleChanged(); };
  connect(chkEnabled_, &QCheckBox::toggled, this, changed);
  connect(dteBegin_, &QDateEdit::dateChanged, this, changed);
  connect(tmeStart_, &QTimeEdit::timeChanged, this, changed);
  connect(cmbRepetition_, &QComboBox::currentIndexChanged, this, changed);
}

QWidget& TaskSettingsDialog::AddWeekDays() {
  days_ = &MakeChild<QWidget>(*static_cast<QWidget*>(this));
  auto& row = MakeChild<QHBoxLayout>(*days_);
  row.setContentsMargins(0, 0, 0, 0);
  const auto today = std::chrono::weekday(task_.begin_date).c_encoding();
  for (unsigned day = 0; day < chkDay_.size(); ++day) {
    // Qt counts from Monday 1 to Sunday 7.
    const QString caption =
        QLocale::c().dayName(day == 0 ? 7 : static_cast<int>(day), QLocale::ShortFormat);
    chkDay_[day] = &MakeChild<QCheckBox>(*days_, caption);
    chkDay_[day]->setObjectName(QString("chkDay%1").arg(day));
    const bool ticked = task_.week_days.empty() ? day == today : task_.week_days.contains(day);
    chkDay_[day]->setChecked(ticked);
    row.addWidget(chkDay_[day]);
    connect(chkDay_[day], &QCheckBox::toggled, this, [this] { ScheduleChanged(); });
  }
  return *days_;
}

void TaskSettingsDialog::AddButtons(QVBoxLayout& layout) {
  QWidget& self = *this;
  lblStatus_ = &MakeNamed<QLabel>("lblTaskStatus", self);
  layout.addWidget(lblStatus_);
  auto* row = std::make_unique<QHBoxLayout>().release();
  layout.addLayout(row);
  row->addStretch();
  row->setSpacing(kDialogGap);
  const auto add = [&](const char* name, const char* caption, char access_key,
                       void (TaskSettingsDialog::*action)()) {
    auto& button = AddDialogButton(name, self, caption, access_key);
    row->addWidget(&button);
    connect(&button, &QAbstractButton::clicked, this, action);
    return &button;
  };
  add("cmdDelete", "Delete task", 'D', &TaskSettingsDialog::Delete);
  add("cmdRunNow", "Run now", 'N', &TaskSettingsDialog::RunNow);
  MakeChild<DefaultButton>(self, std::vector{add("cmdOK", "OK", 'O', &TaskSettingsDialog::Save)});
  auto& cmdCancel = AddDialogButton("cmdTaskCancel", self, "Close", 'C');
  row->addWidget(&cmdCancel);
  connect(&cmdCancel, &QAbstractButton::clicked, this, &QDialog::reject);
}

Task TaskSettingsDialog::Edited() const {
  Task task = task_;
  task.enabled = chkEnabled_->isChecked();
  task.begin_date = FromQDate(dteBegin_->date());
  task.start_time = FromQTime(tmeStart_->time());
  task.repetition = static_cast<Repetition>(cmbRepetition_->currentIndex());
  task.run_missed_start = chkRunMissed_->isChecked();
  task.week_days.clear();
  for (unsigned day = 0; day < chkDay_.size(); ++day) {
    const bool counts = task.repetition == Repetition::Weekly && chkDay_[day]->isChecked();
    if (counts) task.week_days.insert(day);
  }
  return task;
}

void TaskSettingsDialog::ScheduleChanged() {
  const Task task = Edited();
  days_->setEnabled(task.repetition == Repetition::Weekly);
  lblNextRun_->setText(NextRunText(task));
}

void TaskSettingsDialog::Save() {
  if (Try([this] { scheduler_->Save(Edited()); })) accept();
}

void TaskSettingsDialog::RunNow() {
  if (Try([this] { scheduler_->RunNow(task_.name); })) {
    lblStatus_->setText("The task has been started. Its log file tells how it goes.");
  }
}

void TaskSettingsDialog::Delete() {
  const std::string question = "Delete the task " + task_.name + " and its settings file?";
  if (!messages_.ask(question)) return;
  if (Try([this] { DeleteConversionTask(*scheduler_, task_); })) accept();
}

bool TaskSettingsDialog::Try(const std::function<void()>& step) const {
  try {
    step();
    return true;
  } catch (const RunTimeError& error) {
    messages_.show(error.Description(), message_style::kError, "Error");
  } catch (const std::exception& error) {
    messages_.show(error.what(), message_style::kError, "Error");
  }
  return false;
}

}  // namespace dorvane
