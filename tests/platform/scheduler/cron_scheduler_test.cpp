#include "platform/scheduler/cron_scheduler.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <thread>

#include "platform/run_time_error.h"
#include "tests/platform/scheduler/file_crontab.h"
#include "tests/platform/scheduler/tasks.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

namespace dorvane::scheduler {

namespace {

using namespace std::chrono;
using ::testing::HasSubstr;

/// A crontab command that keeps the crontab in a file.
class CronSchedulerTest : public ::testing::Test {
 protected:
  void WriteTab(const std::string& text) { std::ofstream(tab_, std::ios::binary) << text; }
  std::string Tab() const { return test::ReadFile(tab_); }

  test::TempFolder folder_;
  const std::filesystem::path tab_ = folder_ / "tab";
  CronScheduler scheduler_{MakeFileCrontab(folder_.Path())};
};

TEST_F(CronSchedulerTest, LeavesTheRestOfTheCrontabToTheByte) {
  const std::string before = "# mine \xE4\nMAILTO=\"\"\n\n5 4 * * *\techo \\% a  \n";
  const std::string after = "\n# trailing, no task\n@reboot true";
  WriteTab(before);
  for (const std::string& name : HostileNames()) scheduler_.Save(DailyTask(name));
  WriteTab(Tab() + after);
  for (const std::string& name : HostileNames()) {
    Task task = DailyTask(name);
    EXPECT_EQ(scheduler_.Load(name), task) << name;
    EXPECT_THROW(scheduler_.NewTask(name), RunTimeError);
    task.enabled = false;
    scheduler_.Save(task);
    EXPECT_EQ(scheduler_.Load(name), task) << name;
    scheduler_.Save(DailyTask(name));
  }
  EXPECT_EQ(scheduler_.Tasks().size(), HostileNames().size());
  EXPECT_THAT(Tab(), HasSubstr(before));
  EXPECT_THAT(Tab(), ::testing::EndsWith(after));
  for (const std::string& name : HostileNames()) scheduler_.Remove(name);
  EXPECT_EQ(Tab(), before + after);
  EXPECT_THROW(scheduler_.Remove("nightly"), RunTimeError);

  scheduler_.Save(DailyTask("t"));
  EXPECT_EQ(Tab(), before + after + "\n" + CrontabEntry(DailyTask("t")));
}

TEST_F(CronSchedulerTest, StartsAndEndsWithoutACrontab) {
  EXPECT_FALSE(scheduler_.Find("t"));
  scheduler_.Save(DailyTask("t"));
  EXPECT_EQ(Tab(), CrontabEntry(DailyTask("t")));
  scheduler_.Remove("t");
  EXPECT_FALSE(std::filesystem::exists(tab_));
}

TEST_F(CronSchedulerTest, WritesTheTimesOfEachRepetition) {
  Task task = DailyTask("t");
  EXPECT_THAT(CrontabEntry(task), HasSubstr("\n5 21 * * * test \"$(date +\\%Y\\%m\\%d)\" "
                                            "-ge 20261122 && cd '/tmp' && exec "));
  task.repetition = Repetition::Weekly;
  task.week_days = {0, 6};
  EXPECT_THAT(CrontabEntry(task), HasSubstr("\n5 21 * * 0,6 test "));
  task.repetition = Repetition::Monthly;
  EXPECT_THAT(CrontabEntry(task), HasSubstr("\n5 21 22 * * test "));
  task.repetition = Repetition::Once;
  EXPECT_THAT(CrontabEntry(task), HasSubstr("\n5 21 22 11 * test \"$(date +\\%Y\\%m\\%d)\" -eq "));
}

TEST_F(CronSchedulerTest, RefusesWhatItCouldNotKeep) {
  Task task = DailyTask("t");
  task.working_directory = "/" + std::string(1000, 'd');
  EXPECT_THROW(scheduler_.Save(task), RunTimeError);
  EXPECT_EQ(Tab(), "");

  // A marker without its end: guessing where the task ends could cost the user's own lines.
  WriteTab("# BEGIN Dorvane task \"t\"\n5 4 * * * mine\n");
  EXPECT_THROW(scheduler_.Find("t"), RunTimeError);
  EXPECT_THROW(scheduler_.Save(DailyTask("t")), RunTimeError);
  EXPECT_EQ(Tab(), "# BEGIN Dorvane task \"t\"\n5 4 * * * mine\n");

  CronScheduler broken({"false"});
  EXPECT_THROW(broken.Find("t"), RunTimeError);
  EXPECT_THROW(broken.Save(DailyTask("t")), RunTimeError);
}

TEST_F(CronSchedulerTest, RunsNowInItsFolderWithItsArgument) {
  Task task = DailyTask("$(id) 'now' \"%");
  task.program = folder_ / "a job";
  task.working_directory = folder_ / "work folder";
  std::filesystem::create_directory(task.working_directory);
  std::ofstream(task.program) << "#!/bin/sh\nprintf '%s' \"$1\" > draft && mv draft done\n";
  EXPECT_THROW(scheduler_.RunNow(task.name), RunTimeError);
  scheduler_.Save(task);
  EXPECT_THROW(scheduler_.RunNow(task.name), RunTimeError) << "not executable";

  chmod(task.program.c_str(), 0755);
  scheduler_.RunNow(task.name);
  const auto done = task.working_directory / "done";
  for (int i = 0; i < 500 && !std::filesystem::exists(done); ++i) {
    std::this_thread::sleep_for(milliseconds(10));
  }
  EXPECT_EQ(test::ReadFile(done), task.arguments);
}

}  // namespace
}  // namespace dorvane::scheduler
