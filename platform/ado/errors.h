#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/run_time_error.h"

namespace dorvane::ado {

/// One entry of a connection's error list.
struct Error {
  std::int32_t number = 0;        // HRESULT
  std::int32_t native_error = 0;  // the server's or the client library's own number
  std::string description;
  std::string sql_state;  // five characters, or empty
};

/// The entries of a connection's latest failing operation, the provider's summary (if any) first.
using Errors = std::vector<Error>;

/// What a provider throws: a run-time error (number, source, description) with the list behind it.
/// The connection copies the list into its own before the error goes on to the caller.
class ProviderError : public RunTimeError {
 public:
  ProviderError(std::int32_t number, std::string source, const std::string& description,
                Errors entries)
      : RunTimeError(number, std::move(source), description), entries_(std::move(entries)) {}
  const Errors& Entries() const { return entries_; }

 private:
  Errors entries_;
};

}  // namespace dorvane::ado
