#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dorvane {

/// A connection that could not be opened, in the words of either kind of run.
struct ConnectionFailure {
  std::string message;   // for a person at the window
  std::string log_line;  // for the log of an unattended run
  std::string title;     // "MS SQL Server", "MySQL Server"
};

/// A run that converts several tables at once, at one moment. The rows are those of all tables that
/// have begun so far, so that rows a second and the time left are smooth and the whole run's.
struct TablesInHand {
  std::vector<std::string> names = {};  // in no order of theirs
  std::size_t ended = 0;                // tables
  std::int64_t rows = 0;                // handled
  std::int64_t announced = 0;           // by the tables that have begun
};

/// What an endpoint asks of the run it works for, beside the nine events. The interactive run shows
/// message boxes, the unattended one writes its log; the endpoint knows neither.
class IRunHost {
 public:
  virtual ~IRunHost() = default;

  virtual void ConnectionFailed(const ConnectionFailure& failure) = 0;
  /// A message of a catalog operation, shown at once (unattended runs call none of these).
  virtual void ShowMessage(std::string_view message, std::int32_t style,
                           std::string_view title) = 0;
  /// What a person should know and no failure is: how the destination differs by the rules of the
  /// conversion. An unattended run logs it; a window shows it without interrupting.
  virtual void Inform(std::string_view message) = 0;
  /// A failure that only an interactive run reports as ErrorOccured. An unattended run logs it and
  /// counts the run as failed.
  virtual void UnclassifiedFailure(std::string_view message, std::int32_t style,
                                   std::string_view title) = 0;
  /// Some times a second while several tables are converted at once. The events of such a table
  /// come together when it has ended, so that this alone tells how far they are.
  virtual void ShowTablesInHand(const TablesInHand& /*tables*/) {}
  /// The run begins one thing for a table: its definition, its conversion, its relationships or its
  /// comparison. What is told until it has ended is about that table.
  virtual void TableStepStarted(std::string_view /*table_name*/) {}
  /// The step has ended, well or not. The time was taken where the table was worked on.
  virtual void TableStepEnded(std::string_view /*table_name*/,
                              std::chrono::duration<double> /*took*/) {}
  /// The tables are there, and are compared from now on.
  virtual void ComparisonStarted() {}
  /// The step is a comparison of so many rows of the source with those of the destination.
  virtual void TableComparisonStarted(std::string_view /*table_name*/,
                                      std::int64_t /*no_of_records*/) {}
  /// How many rows of the table in hand are compared by now. Told often.
  virtual void ShowRowsCompared(std::int64_t /*rows*/) {}
  /// Called often during slow work: lets the window system process what is pending. Cheap.
  virtual void Yield() = 0;
  /// True when the user wants the run to end: the row or block in hand is finished, connections are
  /// closed, and the endpoint returns as if the listed tables had ended there.
  virtual bool IsStopping() const { return false; }
};

}  // namespace dorvane
