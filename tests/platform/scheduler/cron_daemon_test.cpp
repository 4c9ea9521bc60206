#include <gmock/gmock.h>
#include <sys/stat.h>

#include <ctime>
#include <fstream>
#include <optional>
#include <thread>

#include "platform/process/child_process.h"
#include "platform/scheduler/cron_scheduler.h"
#include "tests/e2e/rig.h"
#include "tests/platform/scheduler/tasks.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

namespace dorvane::scheduler {

namespace {

using namespace std::chrono;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAreArray;

/// A cron daemon that sees a spool of its own and none of the computer's jobs.
class PrivateCron {
 public:
  PrivateCron() {
    for (const char* name : {"spool", "run", "cron.d"}) {
      std::filesystem::create_directory(folder_ / name);
    }
    std::ofstream(folder_ / "crontab") << "";
    process_.emplace(
        std::vector<std::string>{"unshare", "-m", "--propagation", "private", "sh", "-c",
                                 "mount --bind \"$0/spool\" /var/spool/cron/crontabs && "
                                 "mount --bind \"$0/run\" /run && "
                                 "mount --bind \"$0/cron.d\" /etc/cron.d && "
                                 "mount --bind \"$0/crontab\" /etc/crontab && exec cron -f",
                                 folder_.Path().string()},
        folder_ / "output");
  }

  /// False where this user may not make a private view of the file system.
  bool IsUp() {
    const std::string comm = "/proc/" + std::to_string(process_->Id()) + "/comm";
    for (int i = 0; i < 500 && process_->IsRunning(); ++i) {
      if (test::ReadFile(comm) == "cron\n") return true;
      std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
  }

  std::vector<std::string> CrontabCommand() const {
    return {"nsenter", "-t", std::to_string(process_->Id()), "-m", "crontab"};
  }

 private:
  test::TempFolder folder_;
  std::optional<test::Process> process_;
};

/// A database with one table on the practice SQL Server, to be converted to MariaDB: its name.
std::string PrepareConversion(const std::filesystem::path& settings,
                              const std::filesystem::path& log) {
  test::Rig& rig = test::Rig::Get();
  const std::string database = rig.NewDatabases();
  rig.MsSql().Script(
      "create table Clients (Id int identity primary key, Name nvarchar(40))\n"
      "insert Clients (Name) values (N'Zürich'), (null)\ngo\n",
      database);
  test::WriteSettings({.source_db = database, .dest_db = database, .tables = {"Clients"}}, settings,
                      log);
  return database;
}

/// A minute that cron still has ahead, far enough to get the crontab in place.
LocalMinute ComingMinute() {
  const std::time_t now = std::time(nullptr);
  return LocalNow() + minutes(now % 60 < 50 ? 1 : 2);
}

TEST(CronDaemon, StartsTheTasksThatAreDue) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give cron a spool of its own";
  PrivateCron cron;
  if (!cron.IsUp()) GTEST_SKIP() << "no private mounts here";
  // cron compares whole seconds: a crontab of the second that it started in would stay unseen.
  std::this_thread::sleep_for(milliseconds(1100));
  const std::string own = "# mine\nMAILTO=\"\"\n\n5 4 * * 1\techo \\% done  \n";
  const auto crontab = [&](const char* option, std::string_view input) {
    std::vector<std::string> command = cron.CrontabCommand();
    command.emplace_back(option);
    return process::RunChildOrThrow(command, input);
  };
  crontab("-", own);
  CronScheduler scheduler(cron.CrontabCommand());
  const test::TempFolder folder;
  const std::filesystem::path job = folder / "100% it's a \"job\"";
  std::ofstream(job) << "#!/bin/sh\nprintf '%s|%s|%s\\n' \"$PWD\" $# \"$1\" >> out\n";
  chmod(job.c_str(), 0755);

  const std::filesystem::path log = folder / "log.txt";
  const std::string database = PrepareConversion(folder / "a conversion.dcs", log);
  const LocalMinute due = ComingMinute();
  const local_days today = floor<days>(due);
  std::vector<std::string> saved;
  const auto save = [&](const std::string& name, Repetition repetition, days from_today,
                        bool enabled) {
    Task task = DailyTask(name);
    task.program = job;
    task.working_directory = folder.Path();
    task.begin_date = today + from_today;
    task.start_time = due - today;
    task.repetition = repetition;
    task.enabled = enabled;
    const unsigned week_day = weekday(today).c_encoding();
    task.week_days = {name == "other day" ? (week_day + 1) % 7 : week_day};
    scheduler.Save(task);
    saved.push_back(name);
  };

  std::vector<std::string> expected;
  const auto expect = [&](const std::string& name) {
    expected.push_back(folder.Path().string() + "|1|" + name + ".dcs");
  };
  for (const std::string& name : HostileNames()) {
    save(name, Repetition::Daily, days(0), true);
    expect(name);
  }
  for (const auto& [name, repetition] : std::initializer_list<std::pair<std::string, Repetition>>{
           {"once", Repetition::Once},
           {"weekly", Repetition::Weekly},
           {"monthly", Repetition::Monthly}}) {
    save(name, repetition, days(0), true);
    expect(name);
  }
  save("off", Repetition::Daily, days(0), false);
  save("tomorrow", Repetition::Daily, days(1), true);
  save("other day", Repetition::Weekly, days(0), true);
  save("last year", Repetition::Once, -days(365), true);

  Task conversion = DailyTask("a conversion");
  conversion.program = DORVANE_PROGRAM;
  conversion.working_directory = folder.Path();
  conversion.begin_date = today;
  conversion.start_time = due - today;
  scheduler.Save(conversion);
  saved.push_back(conversion.name);

  const auto limit = steady_clock::now() + minutes(3);
  const auto is_done = [&] {
    if (Lines(test::ReadFile(folder / "out")).size() < expected.size()) return false;
    return test::ReadLog(log).find("Done!") != std::string::npos;
  };
  while (!is_done() && steady_clock::now() < limit) std::this_thread::sleep_for(milliseconds(200));
  std::this_thread::sleep_for(seconds(1));  // for those that must not come

  EXPECT_THAT(Lines(test::ReadFile(folder / "out")), UnorderedElementsAreArray(expected));
  EXPECT_FALSE(std::filesystem::exists(folder / "pwned"));
  for (const std::string& name : saved) scheduler.Remove(name);
  EXPECT_EQ(crontab("-l", ""), own);

  EXPECT_THAT(test::ReadLog(log),
              HasSubstr("############### Dorvane (New Conversion) #############\n"));
  EXPECT_THAT(test::ReadLog(log), HasSubstr("Converting table 'Clients'"));
  EXPECT_THAT(test::ReadLog(log), HasSubstr("\nDone!"));
  EXPECT_EQ(test::Rig::Get().MySqlValue("select Name from Clients order by Id", database),
            "Zürich\nNULL");
}

}  // namespace
}  // namespace dorvane::scheduler
