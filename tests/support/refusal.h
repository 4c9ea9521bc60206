#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/run_time_error.h"

namespace dorvane::test {

/// The number and the text of the RunTimeError that an operation ends with; 0 and "" without one.
template <typename Operation>
std::pair<std::int32_t, std::string> RefusalOf(Operation operation) {
  try {
    operation();
  } catch (const RunTimeError& error) {
    return {error.Number(), error.Description()};
  }
  return {};
}

template <typename Operation>
std::int32_t NumberOf(Operation operation) {
  return RefusalOf(operation).first;
}

}  // namespace dorvane::test
