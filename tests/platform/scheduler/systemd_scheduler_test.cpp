#include "platform/scheduler/systemd_scheduler.h"

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>

#include "platform/scheduler/task_fields.h"
#include "tests/platform/scheduler/tasks.h"
#include "tests/support/process.h"
#include "tests/support/refusal.h"
#include "tests/support/temp_folder.h"

namespace dorvane::scheduler {

namespace {

using namespace std::chrono;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A unit folder of its own, and a systemctl that writes down what it is told.
class SystemdSchedulerTest : public ::testing::Test {
 protected:
  SystemdSchedulerTest() {
    std::ofstream(folder_ / "systemctl")
        << "#!/bin/sh\necho \"$*\" >> '" << (folder_ / "orders").string() << "'\n"
        << "test ! -e '" << (folder_ / "broken").string() << "' || { echo no bus >&2; exit 1; }\n";
    chmod((folder_ / "systemctl").c_str(), 0755);
  }

  std::vector<std::string> TakeOrders() {
    std::vector<std::string> orders = Lines(test::ReadFile(folder_ / "orders"));
    std::filesystem::remove(folder_ / "orders");
    return orders;
  }

  test::TempFolder folder_;
  const std::filesystem::path units_ = folder_ / "units";
  SystemdScheduler scheduler_{{units_, {(folder_ / "systemctl").string(), "--user"}}};
};

TEST_F(SystemdSchedulerTest, KeepsATaskFromItsNameToItsRemoval) {
  Task task = scheduler_.NewTask("nightly");
  EXPECT_EQ(task.repetition, Repetition::Daily);
  EXPECT_TRUE(task.enabled);
  EXPECT_LT(abs(LocalNow() - (task.begin_date + task.start_time)), minutes(2));
  EXPECT_THAT(TakeOrders(), IsEmpty());

  task.comment = "Dorvane";
  task.program = "/usr/bin/env";
  task.arguments = "nightly.dcs";
  task.working_directory = "/tmp";
  task.run_missed_start = true;
  scheduler_.Save(task);
  EXPECT_THAT(TakeOrders(),
              ElementsAre("--user daemon-reload", "--user enable --now dorvane-nightly.timer",
                          "--user restart dorvane-nightly.timer"));
  EXPECT_EQ(scheduler_.Load("nightly"), task);
  EXPECT_THAT(scheduler_.Tasks(), ElementsAre(task));
  EXPECT_THAT(test::ReadFile(units_ / "dorvane-nightly.timer"), HasSubstr("Persistent=true\n"));
  EXPECT_EQ(test::NumberOf([&] { scheduler_.NewTask("nightly"); }), -2147024816);

  task.enabled = false;
  scheduler_.Save(task);
  EXPECT_THAT(TakeOrders(),
              ElementsAre("--user daemon-reload", "--user disable --now dorvane-nightly.timer"));

  scheduler_.RunNow("nightly");
  EXPECT_THAT(TakeOrders(), ElementsAre("--user start --no-block dorvane-nightly.service"));
  scheduler_.Remove("nightly");
  EXPECT_FALSE(scheduler_.Find("nightly"));
  EXPECT_TRUE(std::filesystem::is_empty(units_));
  EXPECT_THROW(scheduler_.Remove("nightly"), RunTimeError);
  EXPECT_THROW(scheduler_.RunNow("nightly"), RunTimeError);
}

TEST_F(SystemdSchedulerTest, ReportsWhatSystemctlSays) {
  std::ofstream(folder_ / "broken") << "";
  EXPECT_EQ(test::RefusalOf([&] { scheduler_.Save(DailyTask("t")); }).second, "no bus");
}

TEST_F(SystemdSchedulerTest, RefusesATaskThatNoUnitCanHold) {
  void (*const spoilings[])(Task&) = {
      [](Task& task) { task.repetition = Repetition::Weekly; },
      [](Task& task) { task.working_directory = "/tmp/a\nExecStartPre=/bin/false"; },
      [](Task& task) { task.program = "/opt/it's/Dorvane"; },
      [](Task& task) { task.name = "../t"; }};
  for (const auto spoil : spoilings) {
    Task task = DailyTask("t");
    spoil(task);
    EXPECT_THROW(scheduler_.Save(task), RunTimeError);
  }
  EXPECT_FALSE(std::filesystem::exists(units_));

  Task task = DailyTask("t");
  task.program = folder_ / "gone";
  scheduler_.Save(task);
  EXPECT_THROW(scheduler_.RunNow("t"), RunTimeError);
}

TEST_F(SystemdSchedulerTest, WritesUnitsThatSystemdAccepts) {
  std::vector<std::string> command{"systemd-analyze", "verify", "--user", "--man=no"};
  for (const std::string& name : HostileNames()) {
    Task task = DailyTask(name);
    task.working_directory = folder_ / name;
    std::filesystem::create_directory(task.working_directory);
    // systemd looks whether the program is there.
    if (name.find_first_of("\"'\\") == std::string::npos) {
      task.program = task.working_directory / name;
      std::filesystem::copy_file("/usr/bin/true", task.program);
    }
    scheduler_.Save(task);
    EXPECT_EQ(scheduler_.Load(name), task);
    command.push_back(units_ / (UnitName(name) + ".service"));
    command.push_back(units_ / (UnitName(name) + ".timer"));
  }
  const test::Outcome outcome =
      test::Run(command, minutes(1), {{"XDG_RUNTIME_DIR", folder_.Path().string()}});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(outcome.output, Not(HasSubstr("dorvane-"))) << "systemd complains about a unit";
}

TEST_F(SystemdSchedulerTest, MeansTheTimesThatTheTaskMeans) {
  using namespace std::chrono_literals;
  std::vector<Task> tasks;
  for (const year_month_day begin :
       {2026y / November / 22, 2026y / November / 30, 2026y / December / 31}) {
    for (const Repetition repetition :
         {Repetition::Once, Repetition::Daily, Repetition::Weekly, Repetition::Monthly}) {
      Task task = DailyTask("t");
      task.begin_date = local_days(begin);
      task.repetition = repetition;
      if (repetition == Repetition::Weekly) task.week_days = {0, 2, 6};
      tasks.push_back(task);
    }
  }
  for (const Task& task : tasks) {
    for (const year_month_day from :
         {2026y / November / 1, 2026y / November / 23, 2027y / February / 1, 2028y / March / 2}) {
      std::vector<std::string> starts;
      for (const std::string& line : Lines(TimerText(task))) {
        if (!line.starts_with("OnCalendar=")) continue;
        const test::Outcome outcome =
            test::Run({"systemd-analyze", "calendar",
                       "--base-time=" + DateText(local_days(from)) + " 00:00:00", line.substr(11)},
                      10s, {{"TZ", "UTC"}, {"LC_ALL", "C.UTF-8"}});
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        const auto place = outcome.output.find("Next elapse: ");
        ASSERT_NE(place, std::string::npos) << outcome.output;
        if (outcome.output.substr(place + 13, 5) == "never") continue;
        starts.push_back(outcome.output.substr(place + 17, 16));  // behind "Next elapse: Sun "
      }
      const auto expected = NextStart(task, local_days(from));
      ASSERT_EQ(starts.empty(), !expected) << TimerText(task);
      if (!expected) continue;
      const local_days day = floor<days>(*expected);
      EXPECT_EQ(*std::ranges::min_element(starts), DateText(day) + " 21:05") << TimerText(task);
    }
  }
}

}  // namespace
}  // namespace dorvane::scheduler
