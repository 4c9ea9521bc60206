#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "endpoint/database.h"
#include "endpoint/run_host.h"

namespace dorvane {

/// How a table of a run ended. Left out: the run was over before it.
enum class TableState { Done, Failed, LeftOut };

/// What a run made of one table.
struct TableOutcome {
  std::string name;
  TableState state = TableState::LeftOut;
  std::int64_t rows = 0;                    // handled
  std::optional<std::int64_t> announced{};  // none where no rows were copied
  std::chrono::duration<double> took{};     // while it was in hand
};

/// Measures the tables of a run by its events.
class OutcomeRecorder {
 public:
  using Clock = std::chrono::steady_clock;

  explicit OutcomeRecorder(std::function<Clock::time_point()> now = Clock::now);

  void RunStarted(const NameList& tables);
  /// Of tables that are converted side by side the events come when they have ended; their time
  /// begins when they are first seen here.
  void TablesInHandSeen(const TablesInHand& tables);
  /// A table whose rows had to wait is started twice.
  void TableStarted(const std::string& name);
  void RowsAnnounced(std::int64_t rows);
  void RowsConverted(std::int64_t rows);
  TableOutcome TableEnded(const std::string& name, TableState state);
  /// The tables that have not ended, in the order of the run: those that were begun have failed,
  /// but for the one that was in hand when the run was stopped.
  std::vector<TableOutcome> RunEnded(bool is_stopped);

 private:
  void Pause();

  std::function<Clock::time_point()> now_;
  NameList tables_;
  std::unordered_map<std::string, TableOutcome> open_;
  std::unordered_map<std::string, Clock::time_point> seen_;
  std::unordered_set<std::string> begun_;
  std::string current_;  // in hand; may have ended
  Clock::time_point since_;
};

}  // namespace dorvane
