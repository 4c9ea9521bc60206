#include "platform/scheduler/task_fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

#include "platform/run_time_error.h"
#include "platform/scheduler/quoting.h"

namespace dorvane::scheduler {

namespace {

using Fields = std::map<std::string, std::string, std::less<>>;

constexpr std::array<std::string_view, 4> kRepetitions{"once", "daily", "weekly", "monthly"};

[[noreturn]] void Refuse(std::string_view key) {
  throw RunTimeError(run_time::kTypeMismatch, "Scheduler",
                     fmt::format("The saved task is damaged: {}", key));
}

const std::string& Require(const Fields& fields, std::string_view key) {
  const auto field = fields.find(key);
  if (field == fields.end()) Refuse(key);
  return field->second;
}

bool ReadSwitch(const Fields& fields, std::string_view key) {
  const std::string& value = Require(fields, key);
  if (value != "yes" && value != "no") Refuse(key);
  return value == "yes";
}

Repetition ReadRepetition(const Fields& fields) {
  const auto place = std::ranges::find(kRepetitions, Require(fields, "Repetition"));
  if (place == kRepetitions.end()) Refuse("Repetition");
  return static_cast<Repetition>(place - kRepetitions.begin());
}

std::chrono::local_days ReadDate(const Fields& fields) {
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;
  const int read =
      std::sscanf(Require(fields, "BeginDate").c_str(), "%4d-%2u-%2u", &year, &month, &day);
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(day)};
  if (read != 3 || !date.ok()) Refuse("BeginDate");
  return std::chrono::local_days(date);
}

std::chrono::minutes ReadTime(const Fields& fields) {
  unsigned hour = 0;
  unsigned minute = 0;
  const int read = std::sscanf(Require(fields, "StartTime").c_str(), "%2u:%2u", &hour, &minute);
  if (read != 2 || hour > 23 || minute > 59) Refuse("StartTime");
  return std::chrono::hours(hour) + std::chrono::minutes(minute);
}

std::set<unsigned> ReadWeekDays(const Fields& fields) {
  std::set<unsigned> days;
  for (const char c : Require(fields, "WeekDays")) {
    if (c < '0' || c > '6') Refuse("WeekDays");
    days.insert(static_cast<unsigned>(c - '0'));
  }
  return days;
}

std::string WeekDaysText(const std::set<unsigned>& days) {
  std::string text;
  for (const unsigned day : days) text += std::to_string(day);
  return text;
}

Fields ParseFields(std::string_view text, std::string_view prefix) {
  Fields fields;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const auto sign = line.find("=\"");
    if (!line.starts_with(prefix) || sign == std::string_view::npos) continue;
    const std::string_view key = line.substr(prefix.size(), sign - prefix.size());
    if (key.find(' ') != std::string_view::npos) continue;
    fields.emplace(key, UnquoteC(line.substr(sign + 1)));
  }
  return fields;
}

}  // namespace

std::string DateText(std::chrono::local_days day) {
  const std::chrono::year_month_day date(day);
  return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

std::string TimeText(std::chrono::minutes since_midnight) {
  return fmt::format("{:02}:{:02}", since_midnight.count() / 60, since_midnight.count() % 60);
}

std::string WriteFields(const Task& task, std::string_view prefix) {
  const auto yes_or_no = [](bool value) { return std::string(value ? "yes" : "no"); };
  const std::pair<std::string_view, std::string> fields[] = {
      {"Name", task.name},
      {"Comment", task.comment},
      {"Program", task.program.string()},
      {"Arguments", task.arguments},
      {"WorkingDirectory", task.working_directory.string()},
      {"BeginDate", DateText(task.begin_date)},
      {"StartTime", TimeText(task.start_time)},
      {"Repetition", std::string(kRepetitions.at(static_cast<std::size_t>(task.repetition)))},
      {"WeekDays", WeekDaysText(task.week_days)},
      {"RunMissedStart", yes_or_no(task.run_missed_start)},
      {"Enabled", yes_or_no(task.enabled)},
  };
  std::string lines;
  for (const auto& [key, value] : fields) {
    lines += fmt::format("{}{}={}\n", prefix, key, QuoteC(value));
  }
  return lines;
}

Task ReadFields(std::string_view text, std::string_view prefix) {
  const Fields fields = ParseFields(text, prefix);
  return {.name = Require(fields, "Name"),
          .comment = Require(fields, "Comment"),
          .program = Require(fields, "Program"),
          .arguments = Require(fields, "Arguments"),
          .working_directory = Require(fields, "WorkingDirectory"),
          .begin_date = ReadDate(fields),
          .start_time = ReadTime(fields),
          .repetition = ReadRepetition(fields),
          .week_days = ReadWeekDays(fields),
          .run_missed_start = ReadSwitch(fields, "RunMissedStart"),
          .enabled = ReadSwitch(fields, "Enabled")};
}

void AddReadable(std::string_view text, std::string_view prefix, std::vector<Task>& tasks) {
  try {
    tasks.push_back(ReadFields(text, prefix));
  } catch (const RunTimeError&) {
    // Somebody else's, or damaged by hand.
  }
}

std::vector<Task> ByName(std::vector<Task> tasks) {
  std::ranges::sort(tasks, {}, &Task::name);
  return tasks;
}

}  // namespace dorvane::scheduler
