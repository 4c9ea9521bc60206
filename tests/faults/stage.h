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

/// A server of either kind with the same tables, and a proxy in front of each. What a server has
/// committed outlives its death.
class Stage {
 public:
  Stage();

  SmallDisk& Disk() { return disk_; }
  PrivateMySql& MySql() { return *my_sql_; }
  PrivateServer& ServerOf(ServerKind server);
  Proxy& ProxyOf(ServerKind server) {
    return server == ServerKind::MySql ? *my_sql_proxy_ : *ms_sql_proxy_;
  }
  /// A fresh, empty database.
  std::string NewDatabase(ServerKind server);
  /// Where the server lets it go: room for the runs that follow.
  void DropDatabase(ServerKind server, const std::string& database);
  /// How to log on as the servers' administrator, past the proxy.
  ado::ConnectionSettings Settings(ServerKind server, const std::string& database) const;
  /// What a table holds: whether it has a primary key, how many indexes if these are asked for, and
  /// its rows in the order of their numbers. Throws RunTimeError.
  std::vector<std::string> ContentOf(ServerKind server, const std::string& database,
                                     const std::string& table, bool with_indexes) const;

 private:
  /// As the administrator, in no database. Throws RunTimeError.
  void Execute(ServerKind server, const std::string& sql) const;

  SmallDisk disk_;
  std::optional<PrivateMySql> my_sql_;
  std::optional<SandboxServer> ms_sql_;
  std::optional<Proxy> my_sql_proxy_;
  std::optional<Proxy> ms_sql_proxy_;
  int databases_ = 0;
};

}  // namespace dorvane::test
