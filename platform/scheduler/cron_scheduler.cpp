#include "platform/scheduler/cron_scheduler.h"

#include <fmt/format.h>

#include <optional>

#include "platform/process/child_process.h"
#include "platform/run_time_error.h"
#include "platform/scheduler/quoting.h"
#include "platform/scheduler/task_fields.h"

namespace dorvane::scheduler {

namespace {

/// Cron cuts a longer command off without a word.
constexpr std::size_t kLongestCommand = 998;
constexpr std::string_view kFieldPrefix = "# ";

constexpr std::string_view kBegin = "# BEGIN Dorvane task ";
constexpr std::string_view kEnd = "# END Dorvane task ";

std::string BeginMarker(const std::string& name) {
  return fmt::format("{}{}\n", kBegin, QuoteC(name));
}

std::string EndMarker(const std::string& name) {
  return fmt::format("{}{}\n", kEnd, QuoteC(name));
}

std::string WeekDaysOf(const Task& task) {
  if (task.repetition != Repetition::Weekly) return "*";
  return fmt::format("{}", fmt::join(task.week_days, ","));
}

std::string TimesOf(const Task& task) {
  const std::chrono::year_month_day date(task.begin_date);
  const bool by_day = task.repetition == Repetition::Once || task.repetition == Repetition::Monthly;
  const bool by_month = task.repetition == Repetition::Once;
  const auto number = [](bool fixed, unsigned value) {
    return fixed ? std::to_string(value) : std::string("*");
  };
  return fmt::format("{} {} {} {} {}", task.start_time.count() % 60, task.start_time.count() / 60,
                     number(by_day, static_cast<unsigned>(date.day())),
                     number(by_month, static_cast<unsigned>(date.month())), WeekDaysOf(task));
}

/// Crontabs know no year: a shell test of today's date stands before the command.
std::string DateTest(const Task& task) {
  std::string digits = DateText(task.begin_date);
  std::erase(digits, '-');
  return fmt::format("test \"$(date +\\%Y\\%m\\%d)\" -{} {}",
                     task.repetition == Repetition::Once ? "eq" : "ge", digits);
}

struct Range {
  std::size_t begin = 0;
  std::size_t size = 0;
};

/// Where a line that equals `line` (its end included) starts at or behind `from`.
std::size_t FindLine(std::string_view text, std::string_view line, std::size_t from) {
  auto place = text.find(line, from);
  while (place != std::string_view::npos && place > 0 && text[place - 1] != '\n') {
    place = text.find(line, place + 1);
  }
  return place;
}

/// The task's lines in a crontab, markers included.
std::optional<Range> FindEntry(std::string_view crontab, const std::string& name) {
  const auto begin = FindLine(crontab, BeginMarker(name), 0);
  if (begin == std::string_view::npos) return std::nullopt;
  const std::string marker = EndMarker(name);
  const auto end = FindLine(crontab, marker, begin);
  if (end == std::string_view::npos) {
    throw RunTimeError(run_time::kTypeMismatch, "Scheduler",
                       fmt::format("The crontab lacks the line: {}", marker));
  }
  return Range{begin, end + marker.size() - begin};
}

}  // namespace

std::string CrontabEntry(const Task& task) {
  const std::string command = fmt::format(
      "{} && cd {} && exec {} {}", DateTest(task), QuoteForCron(task.working_directory.string()),
      QuoteForCron(task.program.string()), QuoteForCron(task.arguments));
  if (command.size() > kLongestCommand) {
    throw RunTimeError(run_time::kInvalidArgument, "Scheduler",
                       "The task's name and folders are too long for the crontab");
  }
  const std::string line = task.enabled ? fmt::format("{} {}\n", TimesOf(task), command) : "";
  return BeginMarker(task.name) + WriteFields(task, kFieldPrefix) + line + EndMarker(task.name);
}

CronScheduler::CronScheduler(std::vector<std::string> crontab) : crontab_(std::move(crontab)) {}

std::optional<Task> CronScheduler::Find(const std::string& name) const {
  const std::string crontab = ReadCrontab();
  const std::optional<Range> entry = FindEntry(crontab, name);
  if (!entry) return std::nullopt;
  return ReadFields(std::string_view(crontab).substr(entry->begin, entry->size), kFieldPrefix);
}

std::vector<Task> CronScheduler::Tasks() const {
  const std::string crontab = ReadCrontab();
  std::vector<Task> tasks;
  auto begin = crontab.find(kBegin);
  while (begin != std::string::npos) {
    const auto next = crontab.find(kBegin, begin + 1);
    AddReadable(std::string_view(crontab).substr(begin, next - begin), kFieldPrefix, tasks);
    begin = next;
  }
  return ByName(std::move(tasks));
}

void CronScheduler::Store(const Task& task) {
  const std::string entry = CrontabEntry(task);
  std::string crontab = ReadCrontab();
  if (const std::optional<Range> old = FindEntry(crontab, task.name)) {
    crontab.replace(old->begin, old->size, entry);
  } else {
    if (!crontab.empty() && !crontab.ends_with('\n')) crontab += '\n';
    crontab += entry;
  }
  InstallCrontab(crontab);
}

void CronScheduler::Remove(const std::string& name) {
  Load(name);
  std::string crontab = ReadCrontab();
  if (const std::optional<Range> entry = FindEntry(crontab, name)) {
    crontab.erase(entry->begin, entry->size);
  }
  InstallCrontab(crontab);
}

void CronScheduler::Start(const Task& task) {
  process::StartDetached(task.program, task.arguments, task.working_directory);
}

std::string CronScheduler::ReadCrontab() const {
  std::vector<std::string> command = crontab_;
  command.emplace_back("-l");
  const process::ChildResult result = process::RunChild(command);
  if (result.status == 0) return result.output;
  if (result.errors.starts_with("no crontab for")) return "";
  throw RunTimeError(process::kCommandFailed, "Scheduler",
                     fmt::format("Can not read the crontab: {}", result.errors));
}

void CronScheduler::InstallCrontab(std::string_view text) const {
  std::vector<std::string> command = crontab_;
  command.emplace_back(text.empty() ? "-r" : "-");
  process::RunChildOrThrow(command, text);
}

}  // namespace dorvane::scheduler
