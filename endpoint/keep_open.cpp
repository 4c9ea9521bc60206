#include "endpoint/keep_open.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <thread>

#include "platform/run_time_error.h"

namespace dorvane {

namespace {

using std::chrono::milliseconds;

/// False when the host stops meanwhile.
bool Wait(milliseconds pause, IRunHost& host) {
  constexpr milliseconds kMoment(50);
  for (; pause.count() > 0 && !host.IsStopping(); pause -= std::min(pause, kMoment)) {
    std::this_thread::sleep_for(std::min(pause, kMoment));
    host.Yield();
  }
  return !host.IsStopping();
}

/// False, and the host is told why, when it cannot be opened.
bool Reopen(ado::Connection& connection, std::string_view side, IRunHost& host) {
  try {
    connection.Reopen();
    host.Inform(fmt::format("The connection to the {} is open again", side));
    return true;
  } catch (const RunTimeError& error) {
    host.Inform(
        fmt::format("The connection to the {} could not be opened: {}", side, error.Description()));
    return false;
  }
}

}  // namespace

void KeepOpen(ado::Connection& connection, std::string_view side, IRunHost& host,
              std::span<const milliseconds> pauses) {
  if (connection.IsAlive()) return;
  const bool is_given_up = connection.State() == ado::ObjectState::Closed;
  connection.Close();
  for (std::size_t i = 0; i < pauses.size() && !is_given_up; ++i) {
    host.Inform(
        fmt::format("The connection to the {} was lost. It is opened again in {} s (try {} "
                    "of {})",
                    side, pauses[i].count() / 1000, i + 1, pauses.size()));
    if (!Wait(pauses[i], host)) break;
    if (Reopen(connection, side, host)) return;
  }
  throw RunTimeError(ado::kObjectClosed, "Dorvane",
                     fmt::format("The connection to the {} was lost", side));
}

}  // namespace dorvane
