#include "platform/ado/connection_settings.h"

#include <fmt/format.h>

namespace dorvane::ado {

namespace {

// Flags of the driver: don't optimise column widths (1), return matching rows (2), BIGINT as INT
// (16384).
constexpr int kMySqlDriverOptions = 16387;

std::string MsSqlString(const ConnectionSettings& settings) {
  const std::string logon = settings.integrated_security
                                ? fmt::format("Integrated Security=SSPI;Server={}", settings.server)
                                : fmt::format("Password={};User ID={};Data Source={}",
                                              settings.password, settings.user_id, settings.server);
  return fmt::format("Provider=SQLOLEDB.1;{};port={}", logon, settings.port);
}

std::string MySqlString(const ConnectionSettings& settings) {
  return fmt::format(
      "Driver={{MySql ODBC 3.51 Driver}};Password={};User ID={};Server={};port={};option={}",
      settings.password, settings.user_id, settings.server, settings.port, kMySqlDriverOptions);
}

}  // namespace

std::string ConnectionString(ServerKind kind, const ConnectionSettings& settings) {
  std::string text = kind == ServerKind::MsSql ? MsSqlString(settings) : MySqlString(settings);
  if (!settings.database.empty()) text += ";Database=" + settings.database;
  return text;
}

}  // namespace dorvane::ado
