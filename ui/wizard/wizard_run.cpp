#include "ui/wizard/wizard_run.h"

#include <QThread>

#include "ui/dialogs/message_box.h"
#include "ui/wizard/worker_call.h"

namespace dorvane {

namespace {

constexpr std::chrono::milliseconds kRowInterval(30);
constexpr std::chrono::milliseconds kClockInterval(500);

}  // namespace

WizardRun::WizardRun() {
  row_timer_.setInterval(kRowInterval);
  connect(&row_timer_, &QTimer::timeout, this, [this] {
    FlushRowCount();
    const auto now = std::chrono::steady_clock::now();
    if (now - clock_shown_ < kClockInterval) return;
    clock_shown_ = now;
    emit ProgressChanged();
  });
}

bool WizardRun::Transfer(IDatabase& src, IDatabase& dest, const NameList& tables) {
  transferring_ = true;
  compares_ = src.CopyTableContent() && src.Options().verification != Verification::None;
  stopping_ = has_ended_ = false;
  boxes_.Clear();
  table_.clear();
  tables_ = {tables.begin(), tables.end()};
  outcomes_.RunStarted(tables);
  row_timer_.start();
  try {
    RunInWorker([&] { src.TransferToDest(dest, tables); });
  } catch (...) {
    dorvane::ShowMessage(DescribeUnexpectedFailure(), message_style::kPlain, "");
  }
  row_timer_.stop();
  FlushRowCount();
  transferring_ = false;
  if (!has_ended_ && !leaving_) {
    progress_.GivenBack();
    emit ProgressChanged();
  }
  return has_ended_;
}

bool WizardRun::Preview(IDatabase& src, IDatabase& dest, const NameList& tables,
                        PreviewScript& script) {
  stopping_ = false;
  script_ = &script;
  try {
    RunInWorker([&] { script.Rehearse(src, dest, tables); });
  } catch (const std::exception& error) {
    script.Fail(error.what(), "Dorvane");
  }
  script_ = nullptr;
  return !stopping_;
}

void WizardRun::Stop(bool leave) {
  stopping_ = true;
  leaving_ = leaving_ || leave;
  progress_.Stopping(leaving_);
  emit ProgressChanged();
}

template <typename Action>
void WizardRun::RunInGuiThread(const Action& action) {
  const auto in_order = [&] {
    FlushRowCount();
    action();
  };
  if (QThread::currentThread() == thread()) return in_order();
  QMetaObject::invokeMethod(this, in_order, Qt::BlockingQueuedConnection);
}

void WizardRun::FlushRowCount() {
  if (const std::int64_t compared = compared_rows_.exchange(0)) {
    progress_.RowsCompared(compared);
    emit ProgressChanged();
  }
  const std::int64_t rows = new_rows_.exchange(0);
  if (rows == 0) return;
  progress_.RecordsConverted(rows);
  outcomes_.RowsConverted(rows);
  emit ProgressChanged();
}

std::string WizardRun::TableOf(std::string_view message) const {
  constexpr std::string_view kBegin = "Table ";
  if (!message.starts_with(kBegin)) return table_;
  // "Table Orders: ...", where the name itself may hold a colon.
  for (auto end = message.find(": "); end != message.npos; end = message.find(": ", end + 1)) {
    std::string name(message.substr(kBegin.size(), end - kBegin.size()));
    if (tables_.contains(name)) return name;
  }
  return table_;
}

void WizardRun::EndTable(std::string_view table, TableState state) {
  emit TablesEnded({outcomes_.TableEnded(std::string(table), state)});
}

void WizardRun::RedirectErrorMessage(std::string_view message, std::string_view source,
                                     std::int32_t style) {
  if (script_ != nullptr) return script_->Fail(message, source);
  RunInGuiThread([&] {
    if (!transferring_) return dorvane::ShowMessage(message, style, source);
    emit Told(Severity::Error, TableOf(message), std::string(message));
    ShowFailure(message, source, style);
  });
}

void WizardRun::ShowFailure(std::string_view message, std::string_view source, std::int32_t style) {
  if (!boxes_.Wants(message, table_)) return;
  if (!boxes_.Offers()) return dorvane::ShowMessage(message, style, source);
  if (ShowMessageOffering(message, style, source, "Show the rest in the list only")) {
    boxes_.ShowRestInListOnly();
  }
}

void WizardRun::ErrorOccured(std::string_view message, std::int32_t message_style,
                             std::string_view source) {
  RedirectErrorMessage(message, source, message_style);
}

void WizardRun::ConversionStarted(std::int16_t no_of_tables, bool relations_included) {
  RunInGuiThread([&] {
    emit Started();
    progress_.ConversionStarted(no_of_tables, relations_included, compares_);
    emit ProgressChanged();
  });
}

void WizardRun::TableConversionStarted(std::string_view table_name) {
  RunInGuiThread([&] {
    table_ = table_name;
    outcomes_.TableStarted(table_);
    progress_.TableConversionStarted(table_name);
    emit ProgressChanged();
  });
}

void WizardRun::TableContentTransferStarted(std::string_view, std::int32_t no_of_records) {
  RunInGuiThread([&] {
    progress_.TableContentTransferStarted(no_of_records);
    outcomes_.RowsAnnounced(no_of_records);
    emit ProgressChanged();
  });
}

void WizardRun::TableRecordConverted() {
  ++new_rows_;
}

void WizardRun::TableConversionSuccessed(std::string_view table_name) {
  RunInGuiThread([&] {
    progress_.TableConverted();
    emit ProgressChanged();
    EndTable(table_name, TableState::Done);
  });
}

void WizardRun::TableConversionFailed(std::string_view table_name) {
  RunInGuiThread([&] {
    progress_.TableEnded();
    emit ProgressChanged();
    EndTable(table_name, TableState::Failed);
  });
}

void WizardRun::TableRelationsConversionStarted(std::string_view table_name) {
  RunInGuiThread([&] {
    table_ = table_name;
    progress_.TableRelationsConversionStarted(table_name);
    emit ProgressChanged();
  });
}

void WizardRun::ConversionEnded() {
  RunInGuiThread([&] {
    if (leaving_) return;
    has_ended_ = true;
    progress_.ConversionEnded();
    emit TablesEnded(outcomes_.RunEnded(stopping_));
    if (stopping_) return TellStopped();
    emit ProgressChanged();
    const TableCounts counts = table_counts_ ? table_counts_() : TableCounts();
    const std::string summary =
        progress_.Summary(counts.converted, counts.waiting, counts.compared, counts.equal);
    emit Told(Severity::Information, "", summary);
    emit SummaryReady(summary);
    dorvane::ShowMessage(summary, message_style::kInformation, "");
    emit Ended();
    progress_.SummaryShown();
    emit ProgressChanged();
  });
}

void WizardRun::TellStopped() {
  progress_.Stopped();
  emit ProgressChanged();
  emit Ended();
}

void WizardRun::ConnectionFailed(const ConnectionFailure& failure) {
  RedirectErrorMessage(failure.message, failure.title, message_style::kError);
}

void WizardRun::ShowMessage(std::string_view message, std::int32_t style, std::string_view title) {
  RedirectErrorMessage(message, title, style);
}

void WizardRun::Inform(std::string_view message) {
  if (script_ != nullptr) return script_->Note(message);
  RunInGuiThread([&] { emit Told(Severity::Note, TableOf(message), std::string(message)); });
}

void WizardRun::ShowTablesInHand(const TablesInHand& tables) {
  RunInGuiThread([&] {
    if (stopping_) return;
    progress_.ShowTablesInHand(tables);
    outcomes_.TablesInHandSeen(tables);
    emit ProgressChanged();
  });
}

void WizardRun::TableStepStarted(std::string_view table_name) {
  RunInGuiThread([&] { table_ = table_name; });
}

void WizardRun::TableStepEnded(std::string_view, std::chrono::duration<double>) {
  if (!compares_) return;  // then the events tell it
  RunInGuiThread([&] {
    progress_.TableStepEnded();
    emit ProgressChanged();
  });
}

void WizardRun::ComparisonStarted() {
  RunInGuiThread([&] {
    progress_.ComparisonStarted();
    emit ProgressChanged();
  });
}

void WizardRun::TableComparisonStarted(std::string_view table_name, std::int64_t no_of_records) {
  RunInGuiThread([&] {
    progress_.TableComparisonStarted(table_name, no_of_records);
    emit ProgressChanged();
  });
}

void WizardRun::UnclassifiedFailure(std::string_view message, std::int32_t style,
                                    std::string_view title) {
  RedirectErrorMessage(message, title, style);
}

}  // namespace dorvane
