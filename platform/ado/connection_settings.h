#pragma once

#include <string>

namespace dorvane {

enum class ServerKind { MsSql, MySql };

namespace ado {

/// Where a server is and who logs on there: all that a provider needs.
struct ConnectionSettings {
  std::string server = {};  // host, on SQL Server also "host\instance" or "host,port"
  int port = 0;             // TCP, 1 to 65535; 0: the server's usual port
  std::string user_id = {};
  std::string password = {};         // plain text
  std::string database = {};         // empty: none selected
  bool integrated_security = false;  // SQL Server: log on as the current user; no user, no password
};

/// ADO's connection string for these settings. It is made to be read by people: nothing in it is
/// quoted, so a value that holds ";" cannot be told from the next key.
std::string ConnectionString(ServerKind kind, const ConnectionSettings& settings);

}  // namespace ado
}  // namespace dorvane
