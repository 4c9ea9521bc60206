#pragma once

#include <memory>

#include "platform/ado/connection_settings.h"
#include "platform/ado/odbc/logon.h"

namespace dorvane::ado::odbc {

/// Makes a session that has just begun wait a minute for locks, not for ever, and lets its watchdog
/// keep the settings' idle limit. Throws ProviderError.
void SetUpSession(const std::shared_ptr<Logon>& logon, const ConnectionSettings& settings);

/// Asks the server over a connection of its own about the session with this id, for its watchdog: a
/// session that the server sends to is not working. The server tells a login that may view its
/// state.
SessionState AskForSession(const ConnectionSettings& settings, int id) noexcept;

}  // namespace dorvane::ado::odbc
