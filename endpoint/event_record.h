#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "endpoint/events.h"
#include "endpoint/run_host.h"

namespace dorvane {

/// What was reported, in its order.
class Report {
 public:
  using Telling = std::function<void(IConversionListener& events, IRunHost& host)>;
  void Add(Telling telling) { entries_.push_back({std::move(telling)}); }
  void AddRow();
  bool IsEmpty() const { return entries_.empty(); }
  void TellTo(IConversionListener& events, IRunHost& host) const;

 private:
  struct Entry {
    Telling telling;        // none for rows
    std::int64_t rows = 0;  // TableRecordConverted so many times
  };
  std::vector<Entry> entries_;
};

/// Takes down in a thread of its own what has to be told in another one.
class EventRecord : public IConversionListener, public IRunHost {
 public:
  /// What IsStopping says; must outlive this.
  explicit EventRecord(const std::atomic<bool>& is_stopping) : is_stopping_(is_stopping) {}

  /// What was reported since the last call. Rows that were announced and did not come are not to
  /// come any more.
  Report Take();
  /// Since the beginning; for any thread, as AnnouncedRows is.
  std::int64_t Rows() const { return rows_; }
  std::int64_t AnnouncedRows() const { return announced_; }

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
  void UnclassifiedFailure(std::string_view message, std::int32_t style,
                           std::string_view title) override;
  void TableStepStarted(std::string_view table_name) override;
  void TableStepEnded(std::string_view table_name, std::chrono::duration<double> took) override;
  void TableComparisonStarted(std::string_view table_name, std::int64_t no_of_records) override;
  void ShowRowsCompared(std::int64_t rows) override;
  void Yield() override {}
  bool IsStopping() const override { return is_stopping_; }

 private:
  const std::atomic<bool>& is_stopping_;
  Report report_;
  std::atomic<std::int64_t> rows_ = 0;
  std::atomic<std::int64_t> announced_ = 0;
  std::int64_t compared_ = 0;  // rows of the table in hand
};

}  // namespace dorvane
