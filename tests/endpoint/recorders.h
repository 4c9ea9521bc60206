#pragma once

#include <fmt/format.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/events.h"
#include "endpoint/run_host.h"

namespace dorvane::test {

/// Writes down the events, one line each; consecutive rows share a line.
class EventRecorder : public IConversionListener {
 public:
  std::vector<std::string> events;
  int rows = 0;

  /// The lines that begin with this word.
  std::vector<std::string> Of(std::string_view word) const {
    std::vector<std::string> found;
    for (const std::string& event : events) {
      if (event.starts_with(word)) found.push_back(event);
    }
    return found;
  }
  std::vector<std::string> Errors() const { return Of("error "); }

  void ErrorOccured(std::string_view message, std::int32_t style,
                    std::string_view source) override {
    events.push_back(fmt::format("error {} [{}] {}", style, source, message));
  }
  void ConversionStarted(std::int16_t tables, bool relations) override {
    events.push_back(fmt::format("started {} {}", tables, relations));
  }
  void ConversionEnded() override { events.emplace_back("ended"); }
  void TableConversionSuccessed(std::string_view name) override {
    events.push_back(fmt::format("succeeded {}", name));
  }
  void TableConversionFailed(std::string_view name) override {
    events.push_back(fmt::format("failed {}", name));
  }
  void TableContentTransferStarted(std::string_view name, std::int32_t count) override {
    events.push_back(fmt::format("content {} {}", name, count));
    rows = 0;
  }
  void TableRecordConverted() override {
    if (rows++ > 0) events.pop_back();
    events.push_back(fmt::format("rows {}", rows));
  }
  void TableConversionStarted(std::string_view name) override {
    events.push_back(fmt::format("table {}", name));
  }
  void TableRelationsConversionStarted(std::string_view name) override {
    events.push_back(fmt::format("relations {}", name));
  }
};

/// A run that writes down what it is told.
class HostRecorder : public IRunHost {
 public:
  std::vector<ConnectionFailure> connection_failures;
  std::vector<std::string> messages;
  std::vector<std::string> unclassified;
  std::vector<std::string> notes;
  int yields = 0;
  int polls_until_stop = -1;  // below zero: never
  std::function<void(const TablesInHand& tables)> on_progress = {};

  void ConnectionFailed(const ConnectionFailure& failure) override {
    connection_failures.push_back(failure);
  }
  void ShowMessage(std::string_view message, std::int32_t style, std::string_view title) override {
    messages.push_back(fmt::format("{} [{}] {}", style, title, message));
  }
  void Inform(std::string_view message) override { notes.emplace_back(message); }
  void UnclassifiedFailure(std::string_view message, std::int32_t style,
                           std::string_view title) override {
    unclassified.push_back(fmt::format("{} [{}] {}", style, title, message));
  }
  void ShowTablesInHand(const TablesInHand& tables) override {
    if (on_progress) on_progress(tables);
  }
  void Yield() override { ++yields; }
  bool IsStopping() const override { return polls_until_stop >= 0 && polls_++ >= polls_until_stop; }

 private:
  mutable int polls_ = 0;
};

}  // namespace dorvane::test
