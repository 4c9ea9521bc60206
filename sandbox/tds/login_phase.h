#pragma once

#include <string>

#include "sandbox/tds/client_session.h"

namespace sandbox::tds {

/// Who may log in.
struct Credentials {
  std::string user;  // case does not matter
  std::string password;
};

/// Takes a new connection through its handshake. False when the client left or was refused, which
/// it has been told. Throws ProtocolError, Disconnected.
bool LogIn(ClientSession& client, Engine& engine, const Credentials& credentials);

}  // namespace sandbox::tds
