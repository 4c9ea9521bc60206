#pragma once

#include "platform/ado/connection_settings.h"
#include "platform/ado/watchdog.h"

namespace dorvane::ado::mysql {

/// Asks the server over a connection of its own about the session with this connection id, for its
/// watchdog: a session that the server reads from or writes to is not working.
SessionState AskForSession(const ConnectionSettings& settings, unsigned long id) noexcept;

}  // namespace dorvane::ado::mysql
