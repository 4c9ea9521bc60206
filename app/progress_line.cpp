#include "app/progress_line.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "app/standard_error.h"
#include "job/progress_text.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

constexpr std::chrono::milliseconds kRedrawEvery(200);
constexpr std::size_t kUsualWidth = 80;

/// Columns that a line may take without running into the next one.
std::size_t TerminalWidth() {
  winsize size{};
  const bool is_known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return (is_known ? size.ws_col : kUsualWidth) - 1;
}

}  // namespace

ProgressLine::ProgressLine() : on_terminal_(isatty(STDERR_FILENO) == 1) {}

void ProgressLine::StartTable(std::string_view name, std::int64_t rows) {
  name_ = text::Visible(name);
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
  const std::string line = fmt::format("{} ({} of {}): {}", name_, table_, tables_,
                                       ProgressText(done_, rows_, now - started_));
  WriteStandardError("\r\x1b[K" + std::string(text::FirstCharacters(line, TerminalWidth())));
}

void ProgressLine::Clear() {
  if (!drawn_) return;
  drawn_ = false;
  WriteStandardError("\r\x1b[K");
}

}  // namespace dorvane
