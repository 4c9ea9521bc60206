#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "app/progress_line.h"
#include "endpoint/events.h"
#include "endpoint/run_host.h"
#include "platform/files/text_file.h"
#include "platform/run_time_error.h"

namespace dorvane {

/// Turns the events of an unattended run into lines of its log and keeps whether anything failed.
class UnattendedListener : public IConversionListener, public IRunHost {
 public:
  /// `task` is what the run is called, "Conversion" unless it is another; it must outlive this.
  explicit UnattendedListener(std::string_view task) : task_(task) {}

  /// Lines before this go to standard error. Throws RunTimeError.
  void OpenLog(const std::string& path, files::TextForm form);
  /// Stores what was written.
  void CloseLog();
  /// A line of the log; a log that cannot be written is told once, and the run goes on.
  void Log(std::string_view text);
  void MarkFailed() { failed_ = true; }
  /// True when the conversion ran to its end and nothing was reported.
  bool Succeeded() const { return ended_ && !failed_; }

  void ErrorOccured(std::string_view message, std::int32_t message_style,
                    std::string_view source) override;
  void ConversionStarted(std::int16_t no_of_tables, bool relations_included) override;
  void ConversionEnded() override;
  void TableConversionSuccessed(std::string_view table_name) override;
  void TableConversionFailed(std::string_view table_name) override;
  void TableContentTransferStarted(std::string_view table_name,
                                   std::int32_t no_of_records) override;
  void TableRecordConverted() override;
  void TableConversionStarted(std::string_view table_name) override;
  void TableRelationsConversionStarted(std::string_view table_name) override;

  void ConnectionFailed(const ConnectionFailure& failure) override;
  void ShowMessage(std::string_view message, std::int32_t style, std::string_view title) override;
  void Inform(std::string_view message) override;
  void ShowTablesInHand(const TablesInHand& tables) override { progress_.ShowTablesInHand(tables); }
  void ComparisonStarted() override { progress_.StartComparisons(); }
  void TableComparisonStarted(std::string_view table_name, std::int64_t no_of_records) override {
    progress_.StartTable(table_name, no_of_records);
  }
  void ShowRowsCompared(std::int64_t rows) override { progress_.ShowRowsCompared(rows); }
  void UnclassifiedFailure(std::string_view message, std::int32_t style,
                           std::string_view title) override;
  void Yield() override {}
  bool IsStopping() const override;

 private:
  void TellSummary();
  /// Gives the log up and says why on standard error.
  void GiveUpLog(const RunTimeError& error);

  const std::string_view task_;
  std::optional<files::LineAppender> log_;
  ProgressLine progress_;
  bool log_broken_ = false;
  bool failed_ = false;
  bool table_failed_ = false;  // something of the table in hand was reported
  bool ended_ = false;
  std::chrono::steady_clock::time_point started_;
  std::int64_t tables_ = 0;  // converted
  std::int64_t rows_ = 0;    // handled
};

}  // namespace dorvane
