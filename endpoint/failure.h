#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "platform/ado/connection.h"
#include "platform/run_time_error.h"

namespace dorvane {

/// The primary error of a list: the entry at `index`, the last one of a shorter list, none of an
/// empty one.
const ado::Error* PrimaryError(const ado::Errors& errors, std::size_t index);

/// Native error and description of the primary error; of the run-time error when the list is
/// empty.
ErrorSummary NativeSummary(const ado::Errors& errors, std::size_t index, const RunTimeError& error);

/// A failure that came from the destination, with its error list of that moment. Failures of the
/// source are plain RunTimeErrors, so no old entry of the destination's list is taken for theirs.
class DestinationFailure : public RunTimeError {
 public:
  DestinationFailure(const RunTimeError& error, ado::Errors entries);
  const ado::Errors& Entries() const { return entries_; }
  /// The first entry, null when the destination left none.
  const ado::Error* Primary() const { return PrimaryError(entries_, 0); }
  /// Native error of the first entry; 0 when there is none.
  std::int32_t NativeError() const;
  /// HRESULT and description of the first entry; of the run-time error when there is none.
  ErrorSummary Summary() const;

 private:
  ado::Errors entries_;
};

/// HRESULT and description by which the failure of a conversion step is reported, whichever side it
/// came from.
ErrorSummary SummaryOf(const RunTimeError& error);

/// Runs an operation on the destination connection and marks its failure as the destination's.
template <typename Operation>
auto OnDestination(const ado::Connection& destination, Operation&& operation) {
  try {
    return std::forward<Operation>(operation)();
  } catch (const RunTimeError& error) {
    throw DestinationFailure(error, destination.Errors());
  }
}

/// What a server's provider throws for a statement that the server refuses; `number` is its own,
/// `hresult` the provider's.
ado::ProviderError Refusal(ServerKind server, std::int32_t number, const std::string& words,
                           std::int32_t hresult = ado::hresult::kErrorsInCommand);

/// True for the HRESULTs by which a provider says that a row, not the connection, is at fault.
bool IsRowRefusal(std::int32_t number);

/// Executes a statement without rows on the destination. Throws DestinationFailure.
void ExecuteOn(ado::Connection& destination, std::string_view sql);

/// Calls `take` with the first two values of each row, as text. False when the query failed.
template <typename Take>
bool TryEachRow(ado::Connection& connection, std::string_view query, Take take) {
  try {
    ado::Recordset rows = connection.Execute(query);
    for (; !rows.AtEnd(); rows.MoveNext()) take(rows.Field(0).Text(), rows.Field(1).Text());
    return true;
  } catch (const RunTimeError&) {
    return false;
  }
}

/// Executes a statement whose refusal changes nothing any more (tidying up after a failure).
void TryExecute(ado::Connection& destination, std::string_view sql) noexcept;

}  // namespace dorvane
