#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/ado/mysql/client.h"

namespace dorvane::ado::mysql {

/// What the server takes of a session.
struct SessionLimits {
  std::size_t max_allowed_packet = 0;  // bytes
  bool takes_local_files = false;      // LOAD DATA LOCAL
};

/// Makes a session that has just begun independent of how its server is set up: texts travel in
/// UTF-8, results come whole, locks are waited for a minute, new databases hold any text. What only
/// some users may set is left as it is where this one may not. Throws ProviderError.
SessionLimits SetUpSession(MYSQL* client);

/// The sql_mode of a session on a server whose own is `server_mode`: an identity value 0 stays 0,
/// a value that does not fit is refused, and strings and names mean what standard MySQL statements
/// mean by them. Everything else stays as the server has it.
std::string SessionSqlMode(std::string_view server_mode);

}  // namespace dorvane::ado::mysql
