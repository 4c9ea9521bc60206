#include "job/progress_text.h"

#include <fmt/format.h>

#include <cmath>

namespace dorvane {

namespace {

constexpr double kMinimumSeconds = 0.5;  // a rate over less means nothing

std::string Grouped(std::int64_t number) {
  std::string text = fmt::to_string(number);
  for (auto i = static_cast<std::ptrdiff_t>(text.size()) - 3; i > 0; i -= 3) {
    text.insert(static_cast<std::size_t>(i), 1, ',');
  }
  return text;
}

std::string TimeText(double seconds) {
  const std::int64_t whole = std::llround(seconds);
  if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
  return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

}  // namespace

std::string ProgressText(std::int64_t done, std::int64_t rows,
                         std::chrono::duration<double> elapsed) {
  const bool total_known = rows > 0 && done <= rows;
  std::string text = total_known ? fmt::format("{} of {} rows", Grouped(done), Grouped(rows))
                                 : fmt::format("{} rows", Grouped(done));
  if (done == 0 || elapsed.count() < kMinimumSeconds) return text;
  const double rate = static_cast<double>(done) / elapsed.count();
  text += fmt::format(", {} rows/s", Grouped(static_cast<std::int64_t>(rate)));
  if (total_known && done < rows) {
    text += fmt::format(", {} left", TimeText(static_cast<double>(rows - done) / rate));
  }
  return text;
}

}  // namespace dorvane
