#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "endpoint/run_host.h"

namespace dorvane {

/// What the transfer page shows of a running conversion, moved on by its events.
class TransferProgress {
 public:
  using Clock = std::chrono::steady_clock;

  struct Bar {
    std::int32_t value = 0;
    std::int32_t maximum = 1;
    bool operator==(const Bar&) const = default;
  };

  explicit TransferProgress(std::function<Clock::time_point()> now = Clock::now);

  void ConversionStarted(std::int16_t tables, bool relations_included, bool is_compared = false);
  void TableConversionStarted(std::string_view table);
  void TableContentTransferStarted(std::int32_t records);
  /// `count` rows more. Rows beyond the announced number leave the bar full.
  void RecordsConverted(std::int64_t count);
  void TableConverted();
  /// A table has ended, either way.
  void TableEnded();
  /// Tables that are converted at once: the status names them, and the rows shown are those of all
  /// tables that have begun. From now on the tables' own events move the bar of tables only, since
  /// they come when a table is over.
  void ShowTablesInHand(const TablesInHand& tables);
  void TableRelationsConversionStarted(std::string_view table);
  /// The tables are there, and are compared.
  void ComparisonStarted();
  void TableComparisonStarted(std::string_view table, std::int64_t rows);
  /// Rows of the table in hand by now.
  void RowsCompared(std::int64_t rows);
  /// The run has done something for a table.
  void TableStepEnded();
  void ConversionEnded();
  /// The user has seen the summary.
  void SummaryShown();
  /// The block in hand is finished first; `leaving`: then the program ends.
  void Stopping(bool leaving);
  /// After ConversionEnded: the user has stopped it.
  void Stopped();
  /// Nothing was converted.
  void GivenBack();
  /// Rows are being copied, but none has arrived for some seconds.
  bool IsSilent() const;

  /// The share of the run that is done, 0 to 100; none before it begins and when it is over.
  std::optional<int> Percent() const;
  /// "Elapsed 00:01:05, about 00:02:10 left" while it runs, the time left as soon as something can
  /// be said of it; empty otherwise.
  std::string TimeText() const;

  const std::string& Status() const { return status_; }
  const Bar& Tables() const { return tables_; }
  const Bar& Records() const { return records_; }
  /// Rows done of rows in all, rows per second and time left, or since when nothing arrives; what
  /// follows while the run is being stopped; empty while no rows are copied. At the end tables,
  /// rows and time of the conversion.
  std::string RowsText() const;
  /// The four lines shown at the end, and one more where tables were compared.
  std::string Summary(std::size_t converted, std::size_t failed, std::size_t compared = 0,
                      std::size_t equal = 0) const;

 private:
  static constexpr const char* kNotStarted = "- - - - -";

  double Share() const;
  /// Rows are about to come, so many of them.
  void ExpectRows(std::int64_t rows);
  void FillBar();

  std::function<Clock::time_point()> now_;
  std::string status_ = kNotStarted;
  Bar tables_;
  Bar records_;
  Clock::time_point started_;
  Clock::time_point ended_;
  Clock::time_point rows_started_;
  Clock::time_point last_row_;
  std::int64_t rows_done_ = 0;
  std::int64_t rows_expected_ = 0;
  bool is_running_ = false;
  bool copies_rows_ = false;
  const char* stopping_ = nullptr;  // what is told then
  bool is_side_by_side_ = false;
  bool is_comparing_ = false;
  std::int64_t all_tables_ = 0;  // that were converted
  std::int64_t all_rows_ = 0;    // that were handled
  std::string summary_;
};

/// "hh:mm:ss", hours modulo 24.
std::string ElapsedText(std::chrono::seconds elapsed);

}  // namespace dorvane
