#pragma once

#include <QObject>
#include <QTimer>
#include <atomic>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "endpoint/database.h"
#include "job/preview_script.h"
#include "ui/wizard/failure_boxes.h"
#include "ui/wizard/messages_pane.h"
#include "ui/wizard/table_outcome.h"
#include "ui/wizard/transfer_progress.h"

namespace dorvane {

/// The interactive run: what endpoints report and ask while a person watches. Endpoints may call it
/// from a worker thread; everything is carried out in the thread of this object, and the caller
/// waits for it, except for single rows: they are only counted, and the count is flushed to the
/// window some thirty times a second and before every other event.
class WizardRun : public QObject, public IConversionListener, public IRunHost {
  Q_OBJECT

 public:
  WizardRun();

  const TransferProgress& Progress() const { return progress_; }

  /// Runs the conversion and returns when it has ended; the window stays alive meanwhile. False
  /// when it could not connect or broke off: everything is as before then.
  bool Transfer(IDatabase& src, IDatabase& dest, const NameList& tables);
  /// Rehearses the conversion for the script; returns when that has ended. False when it was
  /// stopped. The source has no listener then.
  bool Preview(IDatabase& src, IDatabase& dest, const NameList& tables, PreviewScript& script);
  void StopPreview() { stopping_ = true; }
  bool IsPreviewing() const { return script_ != nullptr; }
  bool IsTransferring() const { return transferring_; }
  /// Asks a running conversion to end soon. Who leaves sees no summary.
  void Stop(bool leave);

  /// Gives the numbers of the summary: the entries of the page's two lists, and of the tables that
  /// were compared. Called while the endpoint waits.
  struct TableCounts {
    std::size_t converted = 0;
    std::size_t waiting = 0;
    std::size_t compared = 0;
    std::size_t equal = 0;  // of those
  };
  void SetTableCounts(std::function<TableCounts()> counts) { table_counts_ = std::move(counts); }

  // IConversionListener
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

  // IRunHost
  void ConnectionFailed(const ConnectionFailure& failure) override;
  void ShowMessage(std::string_view message, std::int32_t style, std::string_view title) override;
  void Inform(std::string_view message) override;
  void ShowTablesInHand(const TablesInHand& tables) override;
  void TableStepStarted(std::string_view table_name) override;
  void TableStepEnded(std::string_view table_name, std::chrono::duration<double> took) override;
  void ComparisonStarted() override;
  void TableComparisonStarted(std::string_view table_name, std::int64_t no_of_records) override;
  void ShowRowsCompared(std::int64_t rows) override { compared_rows_ = rows; }
  void UnclassifiedFailure(std::string_view message, std::int32_t style,
                           std::string_view title) override;
  void Yield() override {}
  bool IsStopping() const override { return stopping_; }

 signals:
  void Started();
  void ProgressChanged();
  /// Some tables have ended, one as a rule.
  void TablesEnded(const std::vector<dorvane::TableOutcome>& tables);
  /// Everything that a transfer tells: failures, notes and its summary. `table` is the one that it
  /// is about, empty where it is about none.
  void Told(dorvane::Severity severity, const std::string& table, const std::string& message);
  /// Right before the user sees the summary.
  void SummaryReady(const std::string& summary);
  /// After that.
  void Ended();

 private:
  template <typename Action>
  void RunInGuiThread(const Action& action);
  /// Shows the message, in the thread of this object.
  void RedirectErrorMessage(std::string_view message, std::string_view source, std::int32_t style);
  void FlushRowCount();
  /// The table that a message is about.
  std::string TableOf(std::string_view message) const;
  void EndTable(std::string_view table, TableState state);
  /// Who has stopped the run needs no box that says so.
  void TellStopped();

  /// Shows a failure in a box, unless the boxes have had enough.
  void ShowFailure(std::string_view message, std::string_view source, std::int32_t style);

  PreviewScript* script_ = nullptr;  // of the rehearsal that is under way
  TransferProgress progress_;
  FailureBoxes boxes_;
  OutcomeRecorder outcomes_;
  std::unordered_set<std::string> tables_;  // of the run
  std::string table_;                       // in hand
  std::chrono::steady_clock::time_point clock_shown_;
  std::function<TableCounts()> table_counts_;
  QTimer row_timer_;
  std::atomic<std::int64_t> new_rows_ = 0;
  std::atomic<std::int64_t> compared_rows_ = 0;  // of the table in hand
  std::atomic<bool> stopping_ = false;
  bool transferring_ = false;
  bool compares_ = false;  // what has arrived
  bool leaving_ = false;
  bool has_ended_ = false;
};

}  // namespace dorvane
