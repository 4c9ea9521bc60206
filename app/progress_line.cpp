#include "app/progress_line.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>

namespace dorvane {

namespace {

constexpr std::chrono::milliseconds kRedrawEvery(200);
constexpr double kSettlingSeconds = 0.5;  // before that a rate says nothing

std::string Grouped(std::int64_t number) {
  std::string text = fmt::to_string(number);
  for (auto i = static_cast<std::ptrdiff_t>(text.size()) - 3; i > 0; i -= 3) {
    text.insert(static_cast<std::size_t>(i), ",");
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
  if (done == 0 || elapsed.count() < kSettlingSeconds) return text;
  const double rate = static_cast<double>(done) / elapsed.count();
  text += fmt::format(", {} rows/s", Grouped(static_cast<std::int64_t>(rate)));
  if (total_known && done < rows) {
    text += fmt::format(", {} left", TimeText(static_cast<double>(rows - done) / rate));
  }
  return text;
}

ProgressLine::ProgressLine() : on_terminal_(isatty(STDERR_FILENO) == 1) {}

void ProgressLine::StartTable(std::string_view name, std::int64_t rows) {
  name_ = name;
  rows_ = rows;
  done_ = 0;
  ++table_;
  started_ = last_drawn_ = Clock::now();
  if (on_terminal_) Draw(started_);
}

void ProgressLine::CountRow() {
  ++done_;
  if (!on_terminal_ || done_ % 64 != 0) return;  // the clock is not free
  const auto now = Clock::now();
  if (now - last_drawn_ >= kRedrawEvery) Draw(now);
}

void ProgressLine::Draw(Clock::time_point now) {
  last_drawn_ = now;
  drawn_ = true;
  fmt::print(stderr, "\r\x1b[K{} ({} of {}): {}", name_, table_, tables_,
             ProgressText(done_, rows_, now - started_));
  std::fflush(stderr);
}

void ProgressLine::Clear() {
  if (!drawn_) return;
  drawn_ = false;
  fmt::print(stderr, "\r\x1b[K");
  std::fflush(stderr);
}

}  // namespace dorvane
