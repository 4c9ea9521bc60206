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

}  // namespace dorvane
