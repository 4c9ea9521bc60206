#include "job/endpoints.h"

#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"

namespace dorvane {

std::unique_ptr<IDatabase> MakeEndpoint(ServerKind kind, IRunHost& host) {
  if (kind == ServerKind::MsSql) return std::make_unique<MsSqlDatabase>(host);
  return std::make_unique<MySqlDatabase>(host);
}

}  // namespace dorvane
