#include "ui/wizard/transfer_progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "job/progress_text.h"

namespace dorvane {

namespace {

// A rate from longer ago would say that rows are arriving.
constexpr std::chrono::seconds kSilence(3);

// Before that a few rows say little of the time that all take.
constexpr std::chrono::seconds kFirstEstimate(5);

constexpr const char* kFinishing = "The block in hand is finished first.";
constexpr const char* kLeaving =
    "The program ends within 5 seconds. Close the window once more to end it at once.";

}  // namespace

TransferProgress::TransferProgress(std::function<Clock::time_point()> now) : now_(std::move(now)) {}

void TransferProgress::ConversionStarted(std::int16_t tables, bool relations_included,
                                         bool is_compared) {
  tables_ = {0, tables * (1 + int{relations_included} + int{is_compared})};
  records_.value = 0;
  started_ = now_();
  stopping_ = nullptr;
  is_running_ = true;
  copies_rows_ = is_side_by_side_ = is_comparing_ = false;
  all_tables_ = all_rows_ = 0;
  summary_.clear();
  status_ = "Initializing the conversion.......";
}

void TransferProgress::TableConversionStarted(std::string_view table) {
  if (is_side_by_side_) return;
  records_.value = 0;
  copies_rows_ = false;
  status_ = fmt::format("Converting table '{}' .....", table);
}

void TransferProgress::TableContentTransferStarted(std::int32_t records) {
  if (is_side_by_side_) return;
  ExpectRows(records);
}

void TransferProgress::ExpectRows(std::int64_t rows) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  records_ = rows > 0 ? Bar{0, static_cast<std::int32_t>(std::min(rows, kMost))} : Bar{1, 1};
  rows_expected_ = rows;
  rows_done_ = 0;
  rows_started_ = last_row_ = now_();
  copies_rows_ = true;
}

void TransferProgress::RecordsConverted(std::int64_t count) {
  all_rows_ += count;
  if (is_side_by_side_) return;
  rows_done_ += count;
  FillBar();
}

void TransferProgress::FillBar() {
  last_row_ = now_();
  const std::int64_t rows = std::min<std::int64_t>(rows_done_, records_.maximum);
  records_.value = std::max(records_.value, static_cast<std::int32_t>(rows));
}

void TransferProgress::ShowTablesInHand(const TablesInHand& tables) {
  if (!std::exchange(is_side_by_side_, true) || tables.rows == 0) rows_started_ = now_();
  std::string names;
  for (const std::string& name : tables.names) {
    names += fmt::format("{}'{}'", names.empty() ? "" : ", ", name);
  }
  status_ = fmt::format("{} tables {} .....", is_comparing_ ? "Comparing" : "Converting", names);
  if (tables.rows != rows_done_ || !copies_rows_) last_row_ = now_();
  rows_done_ = tables.rows;
  rows_expected_ = tables.announced;
  copies_rows_ = tables.announced > 0;
  constexpr std::int32_t kFull = 1000;
  const auto share = static_cast<double>(rows_done_) / static_cast<double>(rows_expected_);
  records_ = {copies_rows_ ? static_cast<std::int32_t>(share * kFull) : 0, kFull};
}

void TransferProgress::TableConverted() {
  ++all_tables_;
  TableEnded();
}

void TransferProgress::TableEnded() {
  tables_.value = std::min(tables_.value + 1, tables_.maximum);
}

void TransferProgress::TableRelationsConversionStarted(std::string_view table) {
  status_ = fmt::format("Converting relationships for table '{}' ......", table);
  records_.value = 0;
  copies_rows_ = false;
  TableEnded();
}

void TransferProgress::ComparisonStarted() {
  is_comparing_ = true;
  copies_rows_ = false;
  records_.value = 0;
}

void TransferProgress::TableComparisonStarted(std::string_view table, std::int64_t rows) {
  if (is_side_by_side_) return;
  status_ = fmt::format("Comparing table '{}' .....", table);
  ExpectRows(rows);
}

void TransferProgress::RowsCompared(std::int64_t rows) {
  if (is_side_by_side_ || rows <= rows_done_) return;
  rows_done_ = rows;
  FillBar();
}

void TransferProgress::TableStepEnded() {
  if (is_comparing_) TableEnded();
}

void TransferProgress::ConversionEnded() {
  ended_ = now_();
  stopping_ = nullptr;
  is_running_ = copies_rows_ = false;
  summary_ = SummaryText(all_tables_, all_rows_, ended_ - started_);
  status_ = "Done...";
}

void TransferProgress::SummaryShown() {
  status_ = "Conversion Completed.";
}

void TransferProgress::Stopping(bool leaving) {
  status_ = "Stopping.......";
  stopping_ = leaving ? kLeaving : kFinishing;
}

void TransferProgress::Stopped() {
  status_ = "Stopped.";
}

void TransferProgress::GivenBack() {
  status_ = kNotStarted;
  stopping_ = nullptr;
  is_running_ = copies_rows_ = false;
}

bool TransferProgress::IsSilent() const {
  return copies_rows_ && now_() - last_row_ >= kSilence;
}

double TransferProgress::Share() const {
  const double in_hand =
      copies_rows_ && !is_side_by_side_ && tables_.value < tables_.maximum
          ? static_cast<double>(records_.value) / static_cast<double>(records_.maximum)
          : 0;
  return (static_cast<double>(tables_.value) + in_hand) /
         static_cast<double>(std::max(tables_.maximum, 1));
}

std::optional<int> TransferProgress::Percent() const {
  if (!is_running_) return std::nullopt;
  return static_cast<int>(Share() * 100);
}

std::string TransferProgress::TimeText() const {
  if (!is_running_) return {};
  const Clock::duration elapsed = now_() - started_;
  const auto in_seconds = [](auto time) {
    return ElapsedText(std::chrono::duration_cast<std::chrono::seconds>(time));
  };
  std::string text = "Elapsed " + in_seconds(elapsed);
  const double share = Share();
  if (share > 0 && share < 1 && elapsed >= kFirstEstimate && !stopping_ && !IsSilent()) {
    text += fmt::format(", about {} left", in_seconds(elapsed * ((1 - share) / share)));
  }
  return text;
}

std::string TransferProgress::RowsText() const {
  if (stopping_) return stopping_;
  if (!copies_rows_) return summary_;
  if (IsSilent()) {
    const auto silence = std::chrono::duration_cast<std::chrono::seconds>(now_() - last_row_);
    return fmt::format("{}, nothing has arrived for {}",
                       ProgressText(rows_done_, rows_expected_, {}), ElapsedText(silence));
  }
  return ProgressText(rows_done_, rows_expected_, now_() - rows_started_);
}

std::string TransferProgress::Summary(std::size_t converted, std::size_t failed,
                                      std::size_t compared, std::size_t equal) const {
  const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(ended_ - started_);
  const std::string verified =
      compared > 0 ? fmt::format("\r\nVerified: {} of {} tables equal", equal, compared) : "";
  return fmt::format(
      "Transfer Complete!\r\n"
      "No. of converted tables: {}\r\n"
      "No. of Failed tables: {}\r\n"
      "Elapsed time: {}{}",
      converted, failed, ElapsedText(elapsed), verified);
}

std::string ElapsedText(std::chrono::seconds elapsed) {
  const auto seconds = elapsed.count();
  return fmt::format("{:02}:{:02}:{:02}", seconds / 3600 % 24, seconds / 60 % 60, seconds % 60);
}

}  // namespace dorvane
