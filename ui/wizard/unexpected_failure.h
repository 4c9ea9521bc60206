#pragma once

#include <cstdint>
#include <string>

namespace dorvane {

/// Number and description of a failure; 0 for one that carries no number.
struct FailureFacts {
  std::int32_t number = 0;
  std::string description;
};

/// Of the exception being handled; to be called in a catch clause.
FailureFacts CurrentFailure();

/// "Unexpected error no. " + number + " _ " + description, of the exception being handled.
std::string DescribeUnexpectedFailure();

}  // namespace dorvane
