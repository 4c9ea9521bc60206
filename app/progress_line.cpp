#include "app/progress_line.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <utility>

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

void ProgressLine::StartComparisons() {
  is_comparing_ = true;
  table_ = 0;
}

void ProgressLine::StartTable(std::string_view name, std::int64_t rows) {
  name_ = text::Visible(name);
  rows_ = rows;
  done_ = 0;
  ++table_;
  if (is_side_by_side_) return;
  started_ = last_drawn_ = Clock::now();
  if (on_terminal_) Draw(started_);
}

void ProgressLine::CountRow() {
  ++done_;
  if (done_ % 64 == 0) DrawInTime();  // the clock is not free
}

void ProgressLine::ShowRowsCompared(std::int64_t rows) {
  done_ = rows;
  DrawInTime();
}

void ProgressLine::DrawInTime() {
  if (!on_terminal_ || is_side_by_side_) return;
  const auto now = Clock::now();
  if (now - last_drawn_ >= kRedrawEvery) Draw(now);
}

void ProgressLine::ShowTablesInHand(const TablesInHand& tables) {
  const auto now = Clock::now();
  if (!std::exchange(is_side_by_side_, true) || tables.rows == 0) started_ = now;
  if (!on_terminal_ || tables.announced == 0 || now - last_drawn_ < kRedrawEvery) return;
  last_drawn_ = now;
  DrawLine(fmt::format("{} tables at once, {} of {} done: {}", tables.names.size(), tables.ended,
                       tables_, ProgressText(tables.rows, tables.announced, now - started_)));
}

void ProgressLine::End(std::string_view summary) {
  Clear();
  if (on_terminal_) WriteStandardError(fmt::format("{}\n", summary));
}

void ProgressLine::Draw(Clock::time_point now) {
  last_drawn_ = now;
  DrawLine(fmt::format("{} ({} of {}): {}", name_, table_, tables_,
                       ProgressText(done_, rows_, now - started_)));
}

void ProgressLine::DrawLine(std::string_view line) {
  drawn_ = true;
  const std::string text = fmt::format("{}{}", is_comparing_ ? "Comparing " : "", line);
  WriteStandardError("\r\x1b[K" + std::string(text::FirstCharacters(text, TerminalWidth())));
}

void ProgressLine::Clear() {
  if (!drawn_) return;
  drawn_ = false;
  WriteStandardError("\r\x1b[K");
}

}  // namespace dorvane
