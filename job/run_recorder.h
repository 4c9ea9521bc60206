#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "endpoint/database.h"
#include "endpoint/events.h"
#include "endpoint/run_host.h"
#include "job/run_report.h"

namespace dorvane {

/// Stands between an endpoint and the run that it works for: hands everything on, and takes down
/// what a report says. The run must outlive it.
class RunRecorder : public IConversionListener, public IRunHost {
 public:
  RunRecorder(IConversionListener& events, IRunHost& host) : events_(events), host_(host) {}

  /// A run of these tables begins; what was taken down of an earlier one is forgotten. `task` is
  /// what it is called: "Conversion".
  void Begin(std::string_view task, const IDatabase& src, const IDatabase& dest,
             const NameList& tables);
  /// A run goes on with these tables, which are converted once more; what its report says of the
  /// others stays.
  void Continue(const RunReport& earlier, const NameList& tables);
  /// A failure that no endpoint tells.
  void AddFailure(std::string_view message) { Add(true, {}, message); }
  /// Of the run so far.
  RunReport Report() const;

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
  void ShowTablesInHand(const TablesInHand& tables) override { host_.ShowTablesInHand(tables); }
  void TableStepStarted(std::string_view table_name) override;
  void TableStepEnded(std::string_view table_name, std::chrono::duration<double> took) override;
  void ComparisonStarted() override { host_.ComparisonStarted(); }
  void TableComparisonStarted(std::string_view table_name, std::int64_t no_of_records) override;
  void ShowRowsCompared(std::int64_t rows) override { host_.ShowRowsCompared(rows); }
  void Yield() override { host_.Yield(); }
  bool IsStopping() const override { return host_.IsStopping(); }

 private:
  /// Takes the report's tables for those that follow.
  void Take(RunReport report);
  /// The table, which is the one in hand from now on. Its name is one of the list.
  ReportedTable& TakeInHand(std::string_view name);
  /// A message of the table in hand, or of the run. `source` may be empty.
  void Add(bool is_failure, std::string_view source, std::string_view message);
  void End(std::string_view table_name, ReportedTable::State state);

  IConversionListener& events_;
  IRunHost& host_;
  RunReport report_;
  std::map<std::string, std::size_t, std::less<>> positions_;  // of the tables in the report
  ReportedTable* in_hand_ = nullptr;
  bool is_comparing_ = false;  // the table in hand
};

}  // namespace dorvane
