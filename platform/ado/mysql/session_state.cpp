#include "platform/ado/mysql/session_state.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <exception>
#include <string>
#include <string_view>

#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/logon.h"

namespace dorvane::ado::mysql {

namespace {

// The columns of "show processlist"; information_schema has the same on some servers only.
constexpr std::size_t kId = 0;
constexpr std::size_t kCommand = 4;
constexpr std::size_t kState = 6;

// What a session does when it waits for its client.
constexpr std::string_view kIdle = "Sleep";
constexpr std::array<std::string_view, 4> kOnTheWire = {
    "Writing to net", "Sending to client", "Reading from net", "Receiving from client"};

SessionState StateIn(const TextRows& processes, unsigned long id) {
  const auto found = std::ranges::find_if(processes, [text = fmt::to_string(id)](const auto& row) {
    return row.size() > kState && row[kId] == text;
  });
  if (found == processes.end() || found->at(kCommand) == kIdle) return SessionState::Lost;
  const std::string state = found->at(kState).value_or("");
  const bool is_on_the_wire = std::ranges::find(kOnTheWire, state) != kOnTheWire.end();
  return is_on_the_wire ? SessionState::Lost : SessionState::Working;
}

}  // namespace

SessionState AskForSession(const ConnectionSettings& settings, unsigned long id) noexcept {
  try {
    const Client client = Connect(settings);
    Watchdog watchdog(mysql_get_socket(client.get()));
    const TextRows processes =
        watchdog.Watch([&] { return Query(client.get(), "show processlist"); });
    return StateIn(processes, id);
  } catch (const ProviderError& failure) {
    // A server that refuses the question, for having too many connections perhaps, lives.
    const bool is_silent = IsClientError(failure.Entries().at(0).native_error);
    return is_silent ? SessionState::Lost : SessionState::Unknown;
  } catch (const std::exception&) {
    return SessionState::Unknown;
  }
}

}  // namespace dorvane::ado::mysql
