#include "job/run_recorder.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "job/settings_options.h"

namespace dorvane {

namespace {

using State = ReportedTable::State;

/// "MySQL, host:3306, database shop".
std::string NameOf(const IDatabase& endpoint) {
  return fmt::format("{}, {}:{}, database {}",
                     endpoint.Kind() == ServerKind::MsSql ? "SQL Server" : "MySQL",
                     endpoint.Server(), endpoint.PortNo(), endpoint.DbName());
}

std::vector<std::pair<std::string, std::string>> OptionsOf(const IDatabase& src,
                                                           const IDatabase& dest) {
  const ConversionOptions& given = src.Options();
  std::vector<std::pair<std::string, std::string>> options{
      {"Rows", given.copy_table_content ? "copied" : "left out"},
      {"Existing tables",
       given.convert_mode == convert_mode::kOverwrite ? "overwritten" : "merged into"},
      {"Foreign keys", given.convert_relationships ? "converted" : "left out"},
      {"Blanks in names", given.replace_space_with_underscore ? "become underscores" : "kept"}};
  for (const std::string& line : OptionLines(src, dest)) {
    const auto equals = line.find('=');
    std::string name = line.substr(0, equals);
    // Where this stands, its reader knows.
    if (name != kReportOption) options.emplace_back(std::move(name), line.substr(equals + 1));
  }
  return options;
}

bool HasFailures(const std::vector<ReportedMessage>& messages) {
  return std::ranges::any_of(messages, &ReportedMessage::is_failure);
}

bool HasFailed(const ReportedTable& table) {
  return table.state == State::Failed || table.state == State::DoneWithErrors ||
         HasFailures(table.messages);
}

bool IsOpen(const ReportedTable& table) {
  return table.state == State::NotBegun || table.state == State::AtWork;
}

/// The state of a table whose step has ended without a word of its success or failure.
State StateBehind(const ReportedTable& table) {
  if (HasFailures(table.messages)) return State::Failed;
  // In a run that only compares.
  if (table.verification)
    return table.verification->is_failure ? State::DoneWithErrors : State::Done;
  return table.state;  // some rows wait, or the run is stopping
}

std::string Told(std::string_view source, std::string_view message) {
  return source.empty() ? std::string(message) : fmt::format("{} - {}", source, message);
}

/// A message that begins by naming the table it stands with.
std::string_view WithoutName(std::string_view message, std::string_view table) {
  const std::string beginning = fmt::format("Table {}: ", table);
  if (message.starts_with(beginning)) message.remove_prefix(beginning.size());
  return message;
}

RunReport::Time Now() {
  return std::chrono::system_clock::now();
}

}  // namespace

void RunRecorder::Begin(std::string_view task, const IDatabase& src, const IDatabase& dest,
                        const NameList& tables) {
  Take({.task = std::string(task),
        .source = NameOf(src),
        .destination = NameOf(dest),
        .options = OptionsOf(src, dest),
        .started = Now()});
  for (const std::string& name : tables) TakeInHand(name);
  in_hand_ = nullptr;
}

void RunRecorder::Continue(const RunReport& earlier, const NameList& tables) {
  Take(earlier);
  for (const std::string& name : tables) TakeInHand(name) = {.name = name};
  // What ended the run before is not what this one comes to.
  std::erase_if(report_.messages, &ReportedMessage::is_failure);
  report_.is_complete = false;
  in_hand_ = nullptr;
}

void RunRecorder::Take(RunReport report) {
  report_ = std::move(report);
  positions_.clear();
  for (std::size_t i = 0; i < report_.tables.size(); ++i) {
    positions_.emplace(report_.tables[i].name, i);
  }
  in_hand_ = nullptr;
  is_comparing_ = false;
}

RunReport RunRecorder::Report() const {
  RunReport report = report_;
  if (!report.is_complete) report.ended = Now();
  report.succeeded = report.is_complete && !HasFailures(report.messages) &&
                     std::ranges::none_of(report.tables, HasFailed);
  return report;
}

ReportedTable& RunRecorder::TakeInHand(std::string_view name) {
  const auto [entry, is_new] = positions_.try_emplace(std::string(name), report_.tables.size());
  if (is_new) report_.tables.push_back({.name = std::string(name)});
  is_comparing_ = false;
  in_hand_ = &report_.tables[entry->second];
  return *in_hand_;
}

void RunRecorder::Add(bool is_failure, std::string_view source, std::string_view message) {
  if (in_hand_ == nullptr) {
    report_.messages.push_back({is_failure, Told(source, message)});
    return;
  }
  // Relationships and comparisons come when the table is done.
  if (is_failure && in_hand_->state == State::Done) in_hand_->state = State::DoneWithErrors;
  const std::string_view own = WithoutName(message, in_hand_->name);
  if (is_comparing_ && !in_hand_->verification) {
    in_hand_->verification = {is_failure, std::string(own)};
  } else {
    in_hand_->messages.push_back({is_failure, Told(source, own)});
  }
}

void RunRecorder::End(std::string_view table_name, State state) {
  TakeInHand(table_name).state = state;
}

void RunRecorder::ErrorOccured(std::string_view message, std::int32_t message_style,
                               std::string_view source) {
  Add(true, source, message);
  events_.ErrorOccured(message, message_style, source);
}

void RunRecorder::ConversionStarted(std::int16_t no_of_tables, bool relations_included) {
  events_.ConversionStarted(no_of_tables, relations_included);
}

void RunRecorder::ConversionEnded() {
  in_hand_ = nullptr;
  if (!IsStopping()) {
    report_.is_complete = true;
    report_.ended = Now();
  }
  events_.ConversionEnded();
}

void RunRecorder::TableConversionStarted(std::string_view table_name) {
  TakeInHand(table_name).state = State::AtWork;
  events_.TableConversionStarted(table_name);
}

void RunRecorder::TableConversionSuccessed(std::string_view table_name) {
  End(table_name,
      HasFailures(TakeInHand(table_name).messages) ? State::DoneWithErrors : State::Done);
  events_.TableConversionSuccessed(table_name);
}

void RunRecorder::TableConversionFailed(std::string_view table_name) {
  End(table_name, State::Failed);
  events_.TableConversionFailed(table_name);
}

void RunRecorder::TableContentTransferStarted(std::string_view table_name,
                                              std::int32_t no_of_records) {
  TakeInHand(table_name).announced = no_of_records;
  events_.TableContentTransferStarted(table_name, no_of_records);
}

void RunRecorder::TableRecordConverted() {
  if (in_hand_ != nullptr) ++in_hand_->rows;
  events_.TableRecordConverted();
}

void RunRecorder::TableRelationsConversionStarted(std::string_view table_name) {
  TakeInHand(table_name);
  events_.TableRelationsConversionStarted(table_name);
}

void RunRecorder::TableStepStarted(std::string_view table_name) {
  TakeInHand(table_name);
  host_.TableStepStarted(table_name);
}

void RunRecorder::TableStepEnded(std::string_view table_name, std::chrono::duration<double> took) {
  const bool was_comparing = std::exchange(is_comparing_, false);
  ReportedTable& table = TakeInHand(table_name);
  (was_comparing ? table.verification_time : table.conversion_time) += took;
  if (IsOpen(table)) table.state = StateBehind(table);
  in_hand_ = nullptr;
  host_.TableStepEnded(table_name, took);
}

void RunRecorder::TableComparisonStarted(std::string_view table_name, std::int64_t no_of_records) {
  TakeInHand(table_name);
  is_comparing_ = true;
  host_.TableComparisonStarted(table_name, no_of_records);
}

void RunRecorder::ConnectionFailed(const ConnectionFailure& failure) {
  Add(true, {}, failure.log_line);
  host_.ConnectionFailed(failure);
}

void RunRecorder::ShowMessage(std::string_view message, std::int32_t style,
                              std::string_view title) {
  Add(true, title, message);
  host_.ShowMessage(message, style, title);
}

void RunRecorder::Inform(std::string_view message) {
  Add(false, {}, message);
  host_.Inform(message);
}

void RunRecorder::UnclassifiedFailure(std::string_view message, std::int32_t style,
                                      std::string_view title) {
  Add(true, title, message);
  host_.UnclassifiedFailure(message, style, title);
}

}  // namespace dorvane
