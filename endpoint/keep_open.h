#pragma once

#include <array>
#include <chrono>
#include <span>
#include <string_view>

#include "endpoint/run_host.h"
#include "platform/ado/connection.h"

namespace dorvane {

/// How long to wait before each try to open a lost connection again.
inline constexpr std::array<std::chrono::milliseconds, 3> kPausesBeforeTries{
    std::chrono::seconds(1), std::chrono::seconds(5), std::chrono::seconds(15)};

/// Opens a connection again that does not answer any more, and tells the host of every try. Not
/// while rows are streaming. `side` is what the connection leads to, "source" or "destination".
/// Throws RunTimeError when no try succeeds or the host is stopping; from then on the connection is
/// closed, and is not tried any more.
void KeepOpen(ado::Connection& connection, std::string_view side, IRunHost& host,
              std::span<const std::chrono::milliseconds> pauses = kPausesBeforeTries);

}  // namespace dorvane
