#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

#include "platform/ado/connection.h"

namespace dorvane::ado {

/// The failure of an operation: the HRESULT thrown and the server's number for it.
struct Failure {
  std::int32_t number = 0;
  std::int32_t native_error = 0;
  bool operator==(const Failure&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Failure& failure) {
  return out << fmt::format("{:#x}/{}", static_cast<std::uint32_t>(failure.number),
                            failure.native_error);
}

/// What an operation of the connection fails with; nothing where it does not.
template <typename Operation>
Failure FailureOf(Connection& connection, Operation operation) {
  try {
    operation();
  } catch (const RunTimeError& error) {
    const Errors& errors = connection.Errors();
    if (errors.empty()) return {error.Number(), 0};
    EXPECT_EQ(errors[0].number, error.Number());
    // Before the server's own entry there may be a summary.
    const auto servers =
        std::ranges::find_if(errors, [](const Error& entry) { return entry.native_error != 0; });
    const Error& told = servers == errors.end() ? errors[0] : *servers;
    EXPECT_EQ(told.description, error.Description());
    return {error.Number(), told.native_error};
  }
  return {};
}

}  // namespace dorvane::ado
