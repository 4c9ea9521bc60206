#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "endpoint/run_host.h"

namespace dorvane {

/// One line on a terminal that is drawn over again a few times a second: table, rows of rows, rows
/// per second, time left. Of tables that are converted at once it tells how many they are, and
/// counts the rows of all tables that have begun. Draws nothing where standard error is no
/// terminal.
class ProgressLine {
 public:
  ProgressLine();
  void StartConversion(int tables) { tables_ = tables; }
  /// From now on tables are compared.
  void StartComparisons();
  void StartTable(std::string_view name, std::int64_t rows);
  /// Of the table that is compared, by now.
  void ShowRowsCompared(std::int64_t rows);
  void CountRow();
  /// From now on single tables and rows are not drawn: they are told when they are over.
  void ShowTablesInHand(const TablesInHand& tables);
  /// Leaves a line that stays.
  void End(std::string_view summary);
  /// Takes the line off the terminal, so that something else can be written.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;
  /// Not more often than the line can be read.
  void DrawInTime();
  void Draw(Clock::time_point now);
  void DrawLine(std::string_view line);

  bool on_terminal_;
  bool drawn_ = false;
  int tables_ = 0;
  int table_ = 0;  // of those that are converted, and then of those compared
  bool is_comparing_ = false;
  bool is_side_by_side_ = false;
  std::string name_;
  std::int64_t rows_ = 0;
  std::int64_t done_ = 0;
  Clock::time_point started_;
  Clock::time_point last_drawn_;
};

}  // namespace dorvane
