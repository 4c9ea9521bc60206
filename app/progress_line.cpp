#include "app/progress_line.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

#include "job/progress_text.h"

namespace dorvane {

namespace {

constexpr std::chrono::milliseconds kRedrawEvery(200);

}  // namespace

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
