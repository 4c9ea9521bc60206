#pragma once

#include <optional>
#include <string>
#include <vector>

#include "endpoint/database.h"
#include "platform/ado/connection.h"
#include "tests/faults/disk.h"
#include "tests/support/proxy.h"
#include "tests/support/servers.h"

namespace dorvane::test {

/// The tables of the database "source" of both servers; "Loose" has no key.
inline const NameList kStageTables = {"First", "Big", "Loose", "Last"};
inline const NameList kKeyedTables = {"First", "Big", "Last"};

/// What a table holds.
struct Content {
  bool has_primary_key = false;
  std::size_t indexes = 0;        // with the primary key
  std::vector<std::string> rows;  // as text, in the order of their numbers
};

/// A server of either kind with the same tables, and a proxy in front of each. What a server has
/// committed outlives its death.
class Stage {
 public:
  Stage();

  SmallDisk& Disk() { return disk_; }
  PrivateMySql& MySql() { return *my_sql_; }
  SandboxServer& MsSql() { return *ms_sql_; }
  Proxy& ProxyOf(ServerKind server) {
    return server == ServerKind::MySql ? *my_sql_proxy_ : *ms_sql_proxy_;
  }
  /// A fresh, empty database.
  std::string NewDatabase(ServerKind server);
  void DropDatabase(ServerKind server, const std::string& database);
  /// How to log on as the servers' administrator, past the proxy.
  ado::ConnectionSettings Settings(ServerKind server, const std::string& database) const;
  /// Ends it as a crash would, and starts it again.
  void Restart(ServerKind server);
  void Signal(ServerKind server, int number) const;
  /// Throws RunTimeError.
  Content ContentOf(ServerKind server, const std::string& database, const std::string& table) const;

 private:
  SmallDisk disk_;
  std::optional<PrivateMySql> my_sql_;
  std::optional<SandboxServer> ms_sql_;
  std::optional<Proxy> my_sql_proxy_;
  std::optional<Proxy> ms_sql_proxy_;
  int databases_ = 0;
};

}  // namespace dorvane::test
