#include "ui/wizard/unexpected_failure.h"

#include <fmt/format.h>

#include <exception>

#include "platform/run_time_error.h"

namespace dorvane {

FailureFacts CurrentFailure() {
  try {
    throw;
  } catch (const RunTimeError& error) {
    return {error.Number(), error.Description()};
  } catch (const std::exception& error) {
    return {0, error.what()};
  }
}

std::string DescribeUnexpectedFailure() {
  const FailureFacts failure = CurrentFailure();
  return fmt::format("Unexpected error no. {} _ {}", failure.number, failure.description);
}

}  // namespace dorvane
