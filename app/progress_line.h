#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace dorvane {

/// One line on a terminal that is drawn over again a few times a second: table, rows of rows, rows
/// per second, time left. Draws nothing where standard error is no terminal.
class ProgressLine {
 public:
  ProgressLine();
  void StartConversion(int tables) { tables_ = tables; }
  void StartTable(std::string_view name, std::int64_t rows);
  void CountRow();
  /// Takes the line off the terminal, so that something else can be written.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;
  void Draw(Clock::time_point now);

  bool on_terminal_;
  bool drawn_ = false;
  int tables_ = 0;
  int table_ = 0;
  std::string name_;
  std::int64_t rows_ = 0;
  std::int64_t done_ = 0;
  Clock::time_point started_;
  Clock::time_point last_drawn_;
};

/// "12,345 of 500,000 rows, 46,000 rows/s, 0:10 left": what both the terminal and the window show.
/// `rows` 0 or below `done` leaves the total and the time left out.
std::string ProgressText(std::int64_t done, std::int64_t rows,
                         std::chrono::duration<double> elapsed);

}  // namespace dorvane
