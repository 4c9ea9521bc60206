#include "endpoint/destination.h"

#include <algorithm>
#include <array>
#include <exception>

namespace dorvane {

const ado::Error* SpeakingEntry(const ado::Errors& errors, std::size_t index) {
  if (errors.empty()) return nullptr;
  return &errors[std::min(index, errors.size() - 1)];
}

FailureWords NativeWords(const ado::Errors& errors, std::size_t index, const RunTimeError& error) {
  const ado::Error* entry = SpeakingEntry(errors, index);
  if (entry == nullptr) return {error.Number(), error.Description()};
  return {entry->native_error, entry->description};
}

DestinationFailure::DestinationFailure(const RunTimeError& error, ado::Errors entries)
    : RunTimeError(error.Number(), error.Source(), error.Description()),
      entries_(std::move(entries)) {}

FailureWords DestinationFailure::Words() const {
  const ado::Error* entry = FirstEntry();
  if (entry == nullptr) return {Number(), Description()};
  return {entry->number, entry->description};
}

FailureWords ProviderWords(const RunTimeError& error) {
  if (const auto* failure = dynamic_cast<const DestinationFailure*>(&error)) {
    return failure->Words();
  }
  return {error.Number(), error.Description()};
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
