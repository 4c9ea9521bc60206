#include "platform/scheduler/task.h"

#include <gmock/gmock.h>

#include <set>

#include "platform/scheduler/task_fields.h"
#include "tests/platform/scheduler/tasks.h"
#include "tests/support/refusal.h"

namespace dorvane::scheduler {

namespace {

using namespace std::chrono;

LocalMinute At(year_month_day date, int hour, int minute) {
  return local_days(date) + hours(hour) + minutes(minute);
}

std::string NextText(const Task& task, LocalMinute from) {
  const auto next = NextStart(task, from);
  if (!next) return "never";
  const local_days day = floor<days>(*next);
  return DateText(day) + " " + TimeText(*next - day);
}

TEST(NextStart, FollowsTheRepetition) {
  Task task = DailyTask("t");  // from 2026-11-22, a Sunday, at 21:05
  const LocalMinute before = At(2026y / November / 1, 12, 0);
  const LocalMinute exact = At(2026y / November / 22, 21, 5);
  const LocalMinute after = exact + minutes(1);

  EXPECT_EQ(NextText(task, before), "2026-11-22 21:05");
  EXPECT_EQ(NextText(task, exact), "2026-11-22 21:05");
  EXPECT_EQ(NextText(task, after), "2026-11-23 21:05");

  task.repetition = Repetition::Once;
  EXPECT_EQ(NextText(task, exact), "2026-11-22 21:05");
  EXPECT_EQ(NextText(task, after), "never");

  task.repetition = Repetition::Weekly;
  task.week_days = {1, 5};
  EXPECT_EQ(NextText(task, before), "2026-11-23 21:05");
  EXPECT_EQ(NextText(task, At(2026y / November / 23, 21, 6)), "2026-11-27 21:05");

  task.repetition = Repetition::Monthly;
  task.begin_date = local_days(2026y / December / 31);
  EXPECT_EQ(NextText(task, before), "2026-12-31 21:05");
  EXPECT_EQ(NextText(task, At(2027y / January / 31, 21, 6)), "2027-03-31 21:05");
}

TEST(TaskName, RefusesWhatCanBeNoFileOfItsOwn) {
  for (const std::string& name :
       {std::string(), std::string("."), std::string(".."), std::string("../evil"),
        std::string("a/b"), std::string("a\nb"), std::string("a\0b", 3), std::string("\x7F"),
        std::string(201, 'x'), std::string("\xFF\xFE"), std::string("cut \xC3")}) {
    EXPECT_EQ(test::RefusalOf([&] { CheckTaskName(name); }),
              std::pair(kInvalidTaskName, std::string("Please enter a valid task name")))
        << name;
  }
  for (const std::string& name : HostileNames()) EXPECT_NO_THROW(CheckTaskName(name)) << name;
}

TEST(TaskName, EscapesToDistinctShortFileNames) {
  std::vector<std::string> names = HostileNames();
  std::string umlauts;
  for (int i = 0; i < 100; ++i) umlauts += "ä";
  names.push_back(umlauts);
  umlauts.back() = '\xB6';
  names.push_back(umlauts);
  std::set<std::string> escaped;
  for (const std::string& name : names) {
    const std::string file = EscapeTaskName(name);
    EXPECT_LE(file.size(), 200U);
    EXPECT_EQ(file.find_first_of("/ \"'%$"), std::string::npos) << file;
    EXPECT_NE(file.front(), '.');
    EXPECT_TRUE(escaped.insert(file).second) << file;
  }
  EXPECT_EQ(EscapeTaskName("a b-c.d"), "a\\x20b\\x2dc.d");
}

TEST(TaskFields, GiveBackEveryTask) {
  Task task = DailyTask("x");
  task.repetition = Repetition::Weekly;
  task.week_days = {0, 3, 6};
  task.run_missed_start = true;
  task.enabled = false;
  for (const std::string& name : HostileNames()) {
    task.name = name;
    task.program = "/opt/" + name;
    EXPECT_EQ(ReadFields(WriteFields(task, "# "), "# "), task) << name;
  }
  const std::string fields = WriteFields(task, "");
  EXPECT_THROW(ReadFields("", ""), RunTimeError);
  for (const auto& [good, bad] : std::initializer_list<std::pair<std::string, std::string>>{
           {"2026-11-22", "2026-11-32"},
           {"21:05", "24:00"},
           {"weekly", "hourly"},
           {"Enabled=\"no\"", "Enabled=\"perhaps\""},
           {"Enabled=\"no\"", "Enabled=\"no"}}) {
    std::string damaged = fields;
    damaged.replace(damaged.find(good), good.size(), bad);
    EXPECT_THROW(ReadFields(damaged, ""), RunTimeError) << bad;
  }
}

}  // namespace
}  // namespace dorvane::scheduler
