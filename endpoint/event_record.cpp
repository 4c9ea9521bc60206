#include "endpoint/event_record.h"

#include <string>

namespace dorvane {

void Report::AddRow() {
  if (entries_.empty() || entries_.back().rows == 0) entries_.push_back({});
  ++entries_.back().rows;
}

void Report::TellTo(IConversionListener& events, IRunHost& host) const {
  for (const Entry& entry : entries_) {
    if (entry.telling) entry.telling(events, host);
    for (std::int64_t row = 0; row < entry.rows; ++row) events.TableRecordConverted();
  }
}

Report EventRecord::Take() {
  announced_ = rows_.load();
  return std::exchange(report_, {});
}

void EventRecord::ErrorOccured(std::string_view message, std::int32_t message_style,
                               std::string_view source) {
  report_.Add([=, message = std::string(message), source = std::string(source)](
                  auto& events, auto&) { events.ErrorOccured(message, message_style, source); });
}

void EventRecord::ConversionStarted(std::int16_t no_of_tables, bool relations_included) {
  report_.Add(
      [=](auto& events, auto&) { events.ConversionStarted(no_of_tables, relations_included); });
}

void EventRecord::ConversionEnded() {
  report_.Add([](auto& events, auto&) { events.ConversionEnded(); });
}

void EventRecord::TableConversionSuccessed(std::string_view table_name) {
  report_.Add([name = std::string(table_name)](auto& events, auto&) {
    events.TableConversionSuccessed(name);
  });
}

void EventRecord::TableConversionFailed(std::string_view table_name) {
  report_.Add([name = std::string(table_name)](auto& events, auto&) {
    events.TableConversionFailed(name);
  });
}

void EventRecord::TableContentTransferStarted(std::string_view table_name,
                                              std::int32_t no_of_records) {
  announced_ += no_of_records;
  report_.Add([=, name = std::string(table_name)](auto& events, auto&) {
    events.TableContentTransferStarted(name, no_of_records);
  });
}

void EventRecord::TableRecordConverted() {
  ++rows_;
  report_.AddRow();
}

void EventRecord::TableConversionStarted(std::string_view table_name) {
  report_.Add([name = std::string(table_name)](auto& events, auto&) {
    events.TableConversionStarted(name);
  });
}

void EventRecord::TableRelationsConversionStarted(std::string_view table_name) {
  report_.Add([name = std::string(table_name)](auto& events, auto&) {
    events.TableRelationsConversionStarted(name);
  });
}

void EventRecord::ConnectionFailed(const ConnectionFailure& failure) {
  report_.Add([failure](auto&, auto& host) { host.ConnectionFailed(failure); });
}

void EventRecord::ShowMessage(std::string_view message, std::int32_t style,
                              std::string_view title) {
  report_.Add([=, message = std::string(message), title = std::string(title)](auto&, auto& host) {
    host.ShowMessage(message, style, title);
  });
}

void EventRecord::Inform(std::string_view message) {
  report_.Add([message = std::string(message)](auto&, auto& host) { host.Inform(message); });
}

void EventRecord::UnclassifiedFailure(std::string_view message, std::int32_t style,
                                      std::string_view title) {
  report_.Add([=, message = std::string(message), title = std::string(title)](auto&, auto& host) {
    host.UnclassifiedFailure(message, style, title);
  });
}

void EventRecord::TableStepStarted(std::string_view table_name) {
  report_.Add([name = std::string(table_name)](auto&, auto& host) { host.TableStepStarted(name); });
}

void EventRecord::TableStepEnded(std::string_view table_name, std::chrono::duration<double> took) {
  report_.Add(
      [=, name = std::string(table_name)](auto&, auto& host) { host.TableStepEnded(name, took); });
}

void EventRecord::TableComparisonStarted(std::string_view table_name, std::int64_t no_of_records) {
  announced_ += no_of_records;
  compared_ = 0;
  report_.Add([=, name = std::string(table_name)](auto&, auto& host) {
    host.TableComparisonStarted(name, no_of_records);
  });
}

void EventRecord::ShowRowsCompared(std::int64_t rows) {
  rows_ += rows - std::exchange(compared_, rows);
}

}  // namespace dorvane
