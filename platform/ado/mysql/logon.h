#pragma once

#include <memory>

#include "platform/ado/mysql/client.h"
#include "platform/ado/mysql/session_settings.h"
#include "platform/ado/provider.h"
#include "platform/ado/watchdog.h"

namespace dorvane::ado::mysql {

/// A logged-on client and what it has to know of its server.
struct ServerLink {
  Client client;
  std::unique_ptr<Watchdog> watchdog;  // of the client
  SessionLimits limits;
  bool is_exposed = false;       // see Session
  bool takes_bulk = false;       // the server knows the bulk protocol
  bool quotes_defaults = false;  // the catalog gives defaults as expressions, texts quoted
};

/// Logs on and sets the session up; its watchdog keeps the settings' idle limit. Reads no option
/// file. The password goes to the server hashed, or encrypted by TLS or with the server's RSA key;
/// a server that wants it otherwise does not get it. Throws ProviderError; a server that can't be
/// reached has the native error 2003, one whose TLS is not what the settings demand 2026. Throws
/// RunTimeError when the file of the authorities can't be read.
ServerLink LogOn(const ConnectionSettings& settings);

/// Logs on as LogOn does and leaves the session as the server has it.
Client Connect(const ConnectionSettings& settings);

}  // namespace dorvane::ado::mysql
