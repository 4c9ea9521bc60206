#include "platform/scheduler/systemd_scheduler.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>

#include "platform/files/replace_file.h"
#include "platform/process/child_process.h"
#include "platform/run_time_error.h"
#include "platform/scheduler/quoting.h"
#include "platform/scheduler/task_fields.h"

namespace dorvane::scheduler {

namespace {

constexpr std::string_view kUnitPrefix = "dorvane-";

constexpr std::array<std::string_view, 7> kWeekDays{"Sun", "Mon", "Tue", "Wed",
                                                    "Thu", "Fri", "Sat"};

std::filesystem::path UserUnitFolder() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config != nullptr && *config == '/') return std::filesystem::path(config) / "systemd/user";
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home != '/') {
    throw RunTimeError(run_time::kPathNotFound, "Scheduler", "The home folder is not known");
  }
  return std::filesystem::path(home) / ".config/systemd/user";
}

/// The quotes keep a name that ends in a backslash from joining the next line.
std::string Description(const Task& task) {
  return EscapeSpecifiers(fmt::format("{} \"{}\"", task.comment, task.name));
}

std::string WeekDaysOf(const Task& task) {
  if (task.repetition != Repetition::Weekly) return "";
  std::string days;
  for (const unsigned day : task.week_days) {
    days += fmt::format("{}{}", days.empty() ? "" : ",", kWeekDays.at(day));
  }
  return days + " ";
}

/// "22..31", or "31" alone: systemd takes no range of one number.
std::string Range(unsigned first, unsigned last) {
  return first == last ? fmt::format("{:02}", first) : fmt::format("{:02}..{:02}", first, last);
}

/// Every start from the begin date on: the rest of its month, of its year, and the years after.
std::vector<std::string> CalendarsOf(const Task& task) {
  const std::chrono::year_month_day date(task.begin_date);
  const int year = static_cast<int>(date.year());
  const unsigned month = static_cast<unsigned>(date.month());
  const unsigned day = static_cast<unsigned>(date.day());
  const std::string time = TimeText(task.start_time);
  if (task.repetition == Repetition::Once) {
    return {fmt::format("{:04}-{:02}-{:02} {}", year, month, day, time)};
  }
  if (task.repetition == Repetition::Monthly) {
    return {fmt::format("{:04}-{}-{:02} {}", year, Range(month, 12), day, time),
            fmt::format("{:04}/1-*-{:02} {}", year + 1, day, time)};
  }
  const std::string days = WeekDaysOf(task);
  std::vector<std::string> calendars{
      fmt::format("{}{:04}-{:02}-{} {}", days, year, month, Range(day, 31), time)};
  if (month < 12) {
    calendars.push_back(fmt::format("{}{:04}-{}-* {}", days, year, Range(month + 1, 12), time));
  }
  calendars.push_back(fmt::format("{}{:04}/1-*-* {}", days, year + 1, time));
  return calendars;
}

void CheckProgram(const std::filesystem::path& program) {
  if (program.string().find_first_of("\"'\\") == std::string::npos) return;
  throw RunTimeError(
      run_time::kInvalidArgument, "Scheduler",
      fmt::format("systemd starts no program with quotes or backslashes in its path: {}",
                  program.string()));
}

}  // namespace

std::string UnitName(const std::string& task_name) {
  return std::string(kUnitPrefix) + EscapeTaskName(task_name);
}

std::string ServiceText(const Task& task) {
  // ":" keeps "$" as it stands; the last "/" keeps blanks and backslashes at a folder's end.
  return fmt::format(
      "[Unit]\n"
      "Description={}\n"
      "\n"
      "[Service]\n"
      "Type=oneshot\n"
      "WorkingDirectory={}/\n"
      "ExecStart=:{} {}\n",
      Description(task), EscapeSpecifiers(task.working_directory.string()),
      EscapeSpecifiers(QuoteC(task.program.string())), EscapeSpecifiers(QuoteC(task.arguments)));
}

std::string TimerText(const Task& task) {
  std::string calendars;
  for (const std::string& calendar : CalendarsOf(task)) {
    calendars += fmt::format("OnCalendar={}\n", calendar);
  }
  return fmt::format(
      "[Unit]\n"
      "Description={}\n"
      "\n"
      "[Timer]\n"
      "{}"
      "Persistent={}\n"
      "AccuracySec=1s\n"
      "\n"
      "[Install]\n"
      "WantedBy=timers.target\n"
      "\n"
      "[X-Dorvane]\n"
      "{}",
      Description(task), calendars, task.run_missed_start, WriteFields(task, ""));
}

SystemdScheduler::SystemdScheduler(Settings settings) : settings_(std::move(settings)) {
  if (settings_.unit_folder.empty()) settings_.unit_folder = UserUnitFolder();
  if (settings_.systemctl.empty()) settings_.systemctl = {"systemctl", "--user"};
}

bool SystemdScheduler::Answers() {
  try {
    const auto shown =
        process::RunChild({"systemctl", "--user", "show-environment"}, {}, std::chrono::seconds(5));
    return shown.status == 0;
  } catch (const RunTimeError&) {
    return false;
  }
}

std::optional<Task> SystemdScheduler::Find(const std::string& name) const {
  std::ifstream file(UnitFile(name, ".timer"), std::ios::binary);
  if (!file) return std::nullopt;
  const std::string text(std::istreambuf_iterator<char>(file), {});
  return ReadFields(text, "");
}

std::vector<Task> SystemdScheduler::Tasks() const {
  std::vector<Task> tasks;
  std::error_code failure;  // no folder, no tasks
  for (const auto& entry : std::filesystem::directory_iterator(settings_.unit_folder, failure)) {
    const std::string name = entry.path().filename();
    if (!name.starts_with(kUnitPrefix) || !name.ends_with(".timer")) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    AddReadable(std::string(std::istreambuf_iterator<char>(file), {}), "", tasks);
  }
  return ByName(std::move(tasks));
}

void SystemdScheduler::Store(const Task& task) {
  CheckProgram(task.program);
  files::MakeFolders(settings_.unit_folder);
  files::ReplaceFile(UnitFile(task.name, ".service"), ServiceText(task), files::kReadableByAll);
  files::ReplaceFile(UnitFile(task.name, ".timer"), TimerText(task), files::kReadableByAll);
  const std::string timer = UnitName(task.name) + ".timer";
  Systemctl({"daemon-reload"});
  Systemctl({task.enabled ? "enable" : "disable", "--now", timer});
  // A timer that was running already keeps its old times until it is started anew.
  if (task.enabled) Systemctl({"restart", timer});
}

void SystemdScheduler::Remove(const std::string& name) {
  Load(name);
  Systemctl({"disable", "--now", UnitName(name) + ".timer"});
  std::filesystem::remove(UnitFile(name, ".timer"));
  std::filesystem::remove(UnitFile(name, ".service"));
  Systemctl({"daemon-reload"});
}

void SystemdScheduler::Start(const Task& task) {
  Systemctl({"start", "--no-block", UnitName(task.name) + ".service"});
}

std::filesystem::path SystemdScheduler::UnitFile(const std::string& name,
                                                 std::string_view ending) const {
  return settings_.unit_folder / fmt::format("{}{}", UnitName(name), ending);
}

void SystemdScheduler::Systemctl(const std::vector<std::string>& arguments) const {
  std::vector<std::string> command = settings_.systemctl;
  command.insert(command.end(), arguments.begin(), arguments.end());
  process::RunChildOrThrow(command);
}

}  // namespace dorvane::scheduler
