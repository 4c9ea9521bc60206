#include <gmock/gmock.h>
#include <sys/stat.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimeEdit>
#include <QTimer>
#include <fstream>
#include <memory>

#include "platform/scheduler/cron_scheduler.h"
#include "tests/platform/scheduler/file_crontab.h"
#include "tests/support/plain_endpoint.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"
#include "ui/controls/name_list_view.h"
#include "ui/schedule/frm_schedule.h"
#include "ui/schedule/task_list_dialog.h"
#include "ui/schedule/task_settings_dialog.h"

namespace dorvane {

namespace {

using scheduler::Repetition;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string Text(const QString& text) {
  return text.toStdString();
}

/// The dialog over a crontab in a file and a program folder of its own.
class ScheduleDialogTest : public ::testing::Test {
 protected:
  ScheduleDialogTest() {
    std::filesystem::create_directory(program_folder_);
    src_.SetServer("sqlhost");
    src_.SetPortNo(1433);
    src_.SetUserId("sa");
    src_.SetPassword("secret");
    src_.SetDbName("Sales");
    src_.SetCopyTableContent(true);
    dest_.SetServer("localhost");
    dest_.SetPortNo(3306);
    MakeDialog({"Customers", "Orders"});
  }

  void MakeDialog(NameList tables) {
    ScheduleServices services;
    services.make_scheduler = [this] { return std::make_unique<scheduler::CronScheduler>(cron_); };
    services.program_folder = program_folder_;
    services.settings_folder = program_folder_;
    services.messages.show = [this](std::string_view text, std::int32_t style,
                                    std::string_view title) {
      messages_.push_back(std::string(title) + "|" + std::to_string(style) + "|" +
                          std::string(text));
    };
    services.messages.ask = [this](std::string_view question) {
      messages_.emplace_back(question);
      return answer_;
    };
    dialog_ = std::make_unique<frmSchedule>(src_, dest_, std::move(tables), std::move(services));
    dialog_->show();
  }

  template <typename Control>
  Control& Find(const char* name) {
    auto* control = dialog_->findChild<Control*>(name);
    if (control == nullptr) throw std::runtime_error(std::string("no control ") + name);
    return *control;
  }

  void Click(const char* name) { QTest::mouseClick(&Find<QAbstractButton>(name), Qt::LeftButton); }

  void Fill(const QString& name, const QString& log) {
    Find<QLineEdit>("txtTaskName").setText(name);
    Find<QLineEdit>("txtLogFile").setText(log);
  }

  std::vector<std::string> TakeMessages() { return std::exchange(messages_, {}); }
  scheduler::Task Saved(const std::string& name) {
    return scheduler::CronScheduler(cron_).Load(name);
  }
  /// Closes the settings window and lets it go.
  void CloseSettings(const char* button) {
    Click(button);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  test::TempFolder folder_;
  const std::vector<std::string> cron_ = scheduler::MakeFileCrontab(folder_.Path());
  const std::filesystem::path program_folder_ = folder_ / "program";
  test::PlainEndpoint src_{ServerKind::MsSql};
  test::PlainEndpoint dest_{ServerKind::MySql};
  std::vector<std::string> messages_;
  bool answer_ = true;
  std::unique_ptr<frmSchedule> dialog_;
};

TEST_F(ScheduleDialogTest, MakesTheTaskAndItsSettingsFile) {
  EXPECT_EQ(Text(dialog_->windowTitle()), "Schedule Conversion");
  Fill("nightly", " sales.txt ");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(), IsEmpty());
  EXPECT_TRUE(dialog_->isVisible());

  const scheduler::Task task = Saved("nightly");
  EXPECT_EQ(task.comment, "Dorvane");
  EXPECT_EQ(task.program, program_folder_ / "Dorvane");
  EXPECT_EQ(task.arguments, "nightly.dcs");
  EXPECT_EQ(task.working_directory, program_folder_);
  EXPECT_EQ(task.repetition, Repetition::Daily);
  EXPECT_TRUE(task.run_missed_start);
  EXPECT_TRUE(task.enabled);

  const std::filesystem::path file = program_folder_ / "nightly.dcs";
  EXPECT_THAT(test::ReadFile(file), ::testing::StartsWith("1\r\nsqlhost\r\n1433\r\nsa\r\n"));
  EXPECT_THAT(test::ReadFile(file), ::testing::EndsWith("\r\nCustomers:<:Orders\r\nFalse\r\nTrue"
                                                        "\r\n1\r\nFalse\r\n sales.txt "
                                                        "\r\n"));
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
  EXPECT_FALSE(std::filesystem::exists(program_folder_ / " sales.txt ")) << "it was only tried";
  EXPECT_NE(dialog_->findChild<TaskSettingsDialog*>(), nullptr);
}

TEST_F(ScheduleDialogTest, RefusesATakenNameAndKeepsItsSettingsFile) {
  Fill("nightly", "log.txt");
  Click("cmdSchedule");
  CloseSettings("cmdTaskCancel");
  const std::string before = test::ReadFile(program_folder_ / "nightly.dcs");
  src_.SetServer("elsewhere");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(),
              ElementsAre("Error|16|This task already exists. Please enter a another name"));
  EXPECT_EQ(dialog_->focusWidget(), &Find<QLineEdit>("txtTaskName"));
  EXPECT_EQ(test::ReadFile(program_folder_ / "nightly.dcs"), before);
  EXPECT_EQ(dialog_->findChild<TaskSettingsDialog*>(), nullptr);
}

TEST_F(ScheduleDialogTest, ProposesANameThatIsFreeAndALog) {
  dest_.SetDbName("sales");
  MakeDialog({"Customers"});
  EXPECT_EQ(Text(Find<QLineEdit>("txtTaskName").text()), "Sales to sales");
  EXPECT_EQ(Text(Find<QLineEdit>("txtLogFile").text()),
            (program_folder_ / "Sales to sales.txt").string());
  Click("cmdSchedule");
  CloseSettings("cmdTaskCancel");
  EXPECT_TRUE(std::filesystem::exists(program_folder_ / "Sales to sales.dcs"));
  MakeDialog({"Customers"});
  EXPECT_EQ(Text(Find<QLineEdit>("txtTaskName").text()), "Sales to sales 2");
}

TEST_F(ScheduleDialogTest, AsksForANameAndALogFile) {
  Find<QLineEdit>("txtLogFile").setFocus();
  Fill("", "log.txt");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(), ElementsAre("Error|16|Please enter a valid task name"));
  EXPECT_EQ(dialog_->focusWidget(), &Find<QLineEdit>("txtTaskName"));

  Fill("nightly", "  \t ");
  Find<QLineEdit>("txtLogFile").setText("   ");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(), ElementsAre("Error|16|Please specify the log file destination"));
  EXPECT_EQ(dialog_->focusWidget(), &Find<QLineEdit>("txtLogFile"));

  Fill("../evil", "log.txt");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(), ElementsAre("Error|16|Please enter a valid task name"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "evil.dcs"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "tab"));

  // Only an empty name is empty: blanks are a name.
  Fill("  ", "log.txt");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(), IsEmpty());
  EXPECT_TRUE(std::filesystem::exists(program_folder_ / "  .dcs"));
}

TEST_F(ScheduleDialogTest, TellsEveryOtherFailureAndLeavesNoHalfFile) {
  MakeDialog({});
  Fill("empty", "log.txt");
  Click("cmdSchedule");
  const auto messages = TakeMessages();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_THAT(messages.front(), ::testing::StartsWith("Error|16|Unknown error 5 - "));
  EXPECT_TRUE(std::filesystem::is_empty(program_folder_));
  EXPECT_FALSE(Saved("empty").enabled) << "the task stays, and does not run without its file";

  std::filesystem::remove(folder_ / "crontab");
  Fill("other", "log.txt");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(), ElementsAre(::testing::StartsWith("Error|16|Unknown error 53 - ")));
}

TEST_F(ScheduleDialogTest, LetsTheUserCompleteTheSchedule) {
  Fill("Größe 100%", "log.txt");
  Click("cmdSchedule");
  EXPECT_NE(Text(Find<QLabel>("lblNextRun").text()), "");
  EXPECT_FALSE(Find<QCheckBox>("chkRunMissed").isEnabled()) << "a crontab can't";
  EXPECT_FALSE(Find<QCheckBox>("chkDay1").isEnabled());

  Find<QDateEdit>("dteBegin").setDate(QDate(2031, 12, 31));
  Find<QTimeEdit>("tmeStart").setTime(QTime(3, 45));
  Find<QComboBox>("cmbRepetition").setCurrentText("Monthly");
  EXPECT_EQ(Text(Find<QLabel>("lblNextRun").text()), "Wed 2031-12-31 03:45");
  Find<QComboBox>("cmbRepetition").setCurrentText("Weekly");
  for (int day = 0; day < 7; ++day) {
    Find<QCheckBox>(("chkDay" + std::to_string(day)).c_str()).setChecked(false);
  }
  EXPECT_EQ(Text(Find<QLabel>("lblNextRun").text()), "Never");
  Click("cmdOK");
  EXPECT_THAT(TakeMessages(), ElementsAre("Error|16|Please choose at least one day of the week"));

  Find<QCheckBox>("chkDay1").setChecked(true);
  EXPECT_EQ(Text(Find<QLabel>("lblNextRun").text()), "Mon 2032-01-05 03:45");
  Find<QCheckBox>("chkEnabled").setChecked(false);
  EXPECT_EQ(Text(Find<QLabel>("lblNextRun").text()), "Not enabled");
  CloseSettings("cmdOK");

  const scheduler::Task task = Saved("Größe 100%");
  EXPECT_EQ(task.repetition, Repetition::Weekly);
  EXPECT_EQ(task.week_days, std::set<unsigned>{1});
  EXPECT_EQ(task.start_time, std::chrono::minutes(3 * 60 + 45));
  using namespace std::chrono_literals;
  EXPECT_EQ(task.begin_date, std::chrono::local_days(2031y / std::chrono::December / 31));
  EXPECT_FALSE(task.enabled);
}

TEST_F(ScheduleDialogTest, RunsTheTaskAtOnceAndDeletesIt) {
  Fill("now", "log.txt");
  Click("cmdSchedule");
  Click("cmdRunNow");
  ASSERT_EQ(TakeMessages().size(), 1U) << "there is no program yet";
  EXPECT_EQ(Text(Find<QLabel>("lblTaskStatus").text()), "");

  const auto program = program_folder_ / "Dorvane";
  std::ofstream(program) << "#!/bin/sh\nhead -n 2 \"$1\" > draft && mv draft done\n";
  chmod(program.c_str(), 0755);
  Click("cmdRunNow");
  EXPECT_THAT(TakeMessages(), IsEmpty());
  EXPECT_NE(Text(Find<QLabel>("lblTaskStatus").text()), "");
  for (int i = 0; i < 500 && !std::filesystem::exists(program_folder_ / "done"); ++i) {
    QTest::qWait(10);
  }
  EXPECT_EQ(test::ReadFile(program_folder_ / "done"), "1\r\nsqlhost\r\n");

  answer_ = false;
  Click("cmdDelete");
  EXPECT_THAT(TakeMessages(), ElementsAre("Delete the task now and its settings file?"));
  EXPECT_TRUE(scheduler::CronScheduler(cron_).Find("now"));
  answer_ = true;
  CloseSettings("cmdDelete");
  EXPECT_FALSE(scheduler::CronScheduler(cron_).Find("now"));
  EXPECT_FALSE(std::filesystem::exists(program_folder_ / "now.dcs")) << "it holds passwords";
}

TEST_F(ScheduleDialogTest, ListsTheTasksAndOpensThem) {
  for (const char* name : {"weekly", "nightly"}) {
    Fill(name, "log.txt");
    Click("cmdSchedule");
    CloseSettings("cmdTaskCancel");
  }
  std::vector<std::string> asked;
  TaskListDialog list(std::make_shared<scheduler::CronScheduler>(cron_),
                      {.show = {}, .ask = [&](std::string_view question) {
                         asked.emplace_back(question);
                         return true;
                       }});
  list.show();
  auto& names = *list.findChild<NameListView*>("lstTasks");
  EXPECT_THAT(names.Names(), ElementsAre("nightly", "weekly"));
  QTimer::singleShot(0, &list, [&] {
    auto* settings = list.findChild<TaskSettingsDialog*>();
    EXPECT_EQ(Text(settings->windowTitle()), "nightly");
    QTest::mouseClick(settings->findChild<QAbstractButton*>("cmdDelete"), Qt::LeftButton);
  });
  QTest::mouseClick(list.findChild<QAbstractButton*>("cmdOpenTask"), Qt::LeftButton);
  EXPECT_THAT(asked, ElementsAre("Delete the task nightly and its settings file?"));
  EXPECT_THAT(names.Names(), ElementsAre("weekly"));
}

TEST_F(ScheduleDialogTest, SaysWhenTheRunsCouldNotOpenTheirLog) {
  std::ofstream(program_folder_ / "old.txt") << "earlier runs";
  Fill("nightly", "old.txt");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(), IsEmpty());
  EXPECT_EQ(test::ReadFile(program_folder_ / "old.txt"), "earlier runs");
  CloseSettings("cmdTaskCancel");
  Fill("weekly", "~/weekly.txt");
  Click("cmdSchedule");
  EXPECT_THAT(TakeMessages(), ElementsAre(::testing::StartsWith(
                                  "Error|16|The task was saved, but its log cannot be opened: ")));
  EXPECT_TRUE(Saved("weekly").enabled);
}

TEST_F(ScheduleDialogTest, TakesAnExistingLogFileWithoutAQuestion) {
  std::ofstream(folder_ / "old.txt") << "earlier runs";
  bool asked = false;
  QTimer::singleShot(0, dialog_.get(), [&] {
    auto* chooser = dialog_->findChild<QFileDialog*>("cdLogFile");
    ASSERT_NE(chooser, nullptr);
    EXPECT_EQ(Text(chooser->windowTitle()), "Log file path");
    chooser->setDirectory(QString::fromStdString(folder_.Path().string()));
    chooser->selectFile("old");
    QTimer::singleShot(0, chooser, [&asked, chooser] {
      asked = QApplication::activeModalWidget() != chooser;
      if (asked) chooser->reject();
    });
    QMetaObject::invokeMethod(chooser, "accept");
  });
  Click("cmdBrowse");
  EXPECT_FALSE(asked);
  EXPECT_EQ(Text(Find<QLineEdit>("txtLogFile").text()), (folder_ / "old.txt").string());

  QTimer::singleShot(0, dialog_.get(),
                     [&] { dialog_->findChild<QFileDialog*>("cdLogFile")->reject(); });
  Click("cmdBrowse");
  EXPECT_EQ(Text(Find<QLineEdit>("txtLogFile").text()), (folder_ / "old.txt").string());
  Click("cmdCancel");
  EXPECT_FALSE(dialog_->isVisible());
}

}  // namespace
}  // namespace dorvane
