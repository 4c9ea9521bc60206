#pragma once

#include <string>

#include "platform/ado/odbc/driver.h"
#include "platform/ado/provider.h"

namespace dorvane::ado::odbc {

inline constexpr int kUsualPort = 1433;

/// The server's name taken apart as SQL Server's own clients read it.
struct ServerAddress {
  std::string host;      // "localhost" for "." and "(local)"
  std::string instance;  // empty: the default instance
  int port = 0;          // 0: the usual port, or the one that the server tells for the instance
};

/// "host", "host\instance", "host,port", each perhaps with "tcp:" in front. A port in the name wins
/// over `port`. A named instance never listens on the usual port 1433 by default, so that port is
/// taken as not given and the server is asked for the instance's own.
ServerAddress ParseServer(const std::string& server, int port);

/// The whole connection string for SQLDriverConnect: nothing is left to a configuration file.
/// Throws ProviderError for a value that the driver's syntax cannot hold.
std::string DriverConnectionString(const Driver& driver, const ConnectionSettings& settings);

}  // namespace dorvane::ado::odbc
