#include "endpoint/failure.h"

#include <algorithm>
#include <array>
#include <exception>

namespace dorvane {

const ado::Error* PrimaryError(const ado::Errors& errors, std::size_t index) {
  if (errors.empty()) return nullptr;
  return &errors[std::min(index, errors.size() - 1)];
}

ErrorSummary NativeSummary(const ado::Errors& errors, std::size_t index,
                           const RunTimeError& error) {
  const ado::Error* entry = PrimaryError(errors, index);
  if (entry == nullptr) return {error.Number(), error.Description()};
  return {entry->native_error, entry->description};
}

DestinationFailure::DestinationFailure(const RunTimeError& error, ado::Errors entries)
    : RunTimeError(error.Number(), error.Source(), error.Description()),
      entries_(std::move(entries)) {}

std::int32_t DestinationFailure::NativeError() const {
  const ado::Error* entry = Primary();
  return entry != nullptr ? entry->native_error : 0;
}

ErrorSummary DestinationFailure::Summary() const {
  const ado::Error* entry = Primary();
  if (entry == nullptr) return {Number(), Description()};
  return {entry->number, entry->description};
}

ErrorSummary SummaryOf(const RunTimeError& error) {
  if (const auto* failure = dynamic_cast<const DestinationFailure*>(&error)) {
    return failure->Summary();
  }
  return {error.Number(), error.Description()};
}

ado::ProviderError Refusal(ServerKind server, std::int32_t number, const std::string& words,
                           std::int32_t hresult) {
  return {hresult,
          server == ServerKind::MySql ? "MySQL" : "MS SQL Server",
          words,
          {{hresult, number, words, ""}}};
}

bool IsRowRefusal(std::int32_t number) {
  constexpr std::array kRefusals{ado::hresult::kErrorsInCommand, ado::hresult::kErrorsOccurred,
                                 ado::hresult::kIntegrityViolation, ado::hresult::kDataOverflow};
  return std::ranges::find(kRefusals, number) != kRefusals.end();
}

void ExecuteOn(ado::Connection& destination, std::string_view sql) {
  OnDestination(destination, [&] { destination.Execute(sql); });
}

void TryExecute(ado::Connection& destination, std::string_view sql) noexcept {
  try {
    destination.Execute(sql);
  } catch (const std::exception&) {
    // The failure before this one is what gets reported.
  }
}

}  // namespace dorvane
