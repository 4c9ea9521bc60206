#include "job/progress_text.h"

#include <fmt/format.h>

#include <cmath>
#include <string_view>

namespace dorvane {

namespace {

constexpr double kMinimumSeconds = 0.5;  // a rate over less means nothing

std::string TimeText(double seconds) {
  const std::int64_t whole = std::llround(seconds);
  if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
  return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string Counted(std::int64_t count, std::string_view what) {
  return fmt::format("{} {}{}", GroupedDigits(count), what, count == 1 ? "" : "s");
}

/// Behind other words; empty where a rate means nothing.
std::string RateText(std::int64_t rows, double seconds) {
  if (rows == 0 || seconds < kMinimumSeconds) return {};
  return fmt::format(", {} rows/s",
                     GroupedDigits(static_cast<std::int64_t>(static_cast<double>(rows) / seconds)));
}

}  // namespace

std::string GroupedDigits(std::int64_t number) {
  std::string text = fmt::to_string(number);
  for (auto i = static_cast<std::ptrdiff_t>(text.size()) - 3; i > 0; i -= 3) {
    text.insert(static_cast<std::size_t>(i), 1, ',');
  }
  return text;
}

std::string ProgressText(std::int64_t done, std::int64_t rows,
                         std::chrono::duration<double> elapsed) {
  const bool total_known = rows > 0 && done <= rows;
  std::string text = total_known
                         ? fmt::format("{} of {} rows", GroupedDigits(done), GroupedDigits(rows))
                         : fmt::format("{} rows", GroupedDigits(done));
  const std::string rate = RateText(done, elapsed.count());
  if (rate.empty() || !total_known || done == rows) return text + rate;
  const double seconds_a_row = elapsed.count() / static_cast<double>(done);
  return text + fmt::format("{}, {} left", rate,
                            TimeText(static_cast<double>(rows - done) * seconds_a_row));
}

std::string SummaryText(std::int64_t tables, std::int64_t rows,
                        std::chrono::duration<double> elapsed) {
  return fmt::format("{}, {} in {}{}", Counted(tables, "table"), Counted(rows, "row"),
                     TimeText(elapsed.count()), RateText(rows, elapsed.count()));
}

}  // namespace dorvane
