#pragma once

#include <string>

namespace dorvane {

enum class ServerKind { MsSql, MySql };

namespace ado {

enum class Encryption {
  Offered,   // encrypted when the server offers it
  Required,  // encrypted or not at all
  Verified,  // likewise, and the certificate's chain and host name are right
};

/// Where a server is and who logs on there: all that a provider needs.
struct ConnectionSettings {
  std::string server = {};  // host, on SQL Server also "host\instance" or "host,port"
  int port = 0;             // TCP, 1 to 65535; 0: the server's usual port
  std::string user_id = {};
  std::string password = {};         // plain text
  std::string database = {};         // empty: none selected
  bool integrated_security = false;  // SQL Server: log on as the current user; no user, no password
  Encryption encryption = Encryption::Offered;
  std::string ca_file = {};  // PEM, for Verified; empty: the system's authorities
  int idle_limit = 600;      // seconds of silence while the server owes an answer; 0: no limit
};

/// ADO's connection string for these settings. It is made to be read by people: nothing in it is
/// quoted, so a value that holds ";" cannot be told from the next key.
std::string ConnectionString(ServerKind kind, const ConnectionSettings& settings);

}  // namespace ado
}  // namespace dorvane
