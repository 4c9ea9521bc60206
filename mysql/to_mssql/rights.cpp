#include <fmt/format.h>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"

namespace dorvane::to_mssql {

namespace {

/// False too when the server does not tell.
bool IsDenied(ado::Connection& connection, const std::string& securable, std::string_view kind,
              std::string_view right) {
  ado::Recordset answer = connection.Execute(
      fmt::format("select has_perms_by_name({}, '{}', '{}')", securable, kind, right));
  return !answer.AtEnd() && answer.Field(0).Text() == "0";
}

}  // namespace

std::optional<ado::ProviderError> MySqlToMsSql::Denial(ado::Connection& asked, TableRight right,
                                                       const ado::TableName& table) {
  const std::string schema = table.IsBare() ? "schema_name()" : "N'" + SqlText(table.schema) + "'";
  const std::string object = "N'" + SqlText(MsSqlTable(table)) + "'";
  if (right == TableRight::Create && IsDenied(asked, "db_name()", "DATABASE", "CREATE TABLE")) {
    const std::string database = asked.Execute("select db_name()").Field(0).Text();
    return Refusal(ServerKind::MsSql, 262,
                   fmt::format("CREATE TABLE permission denied in database '{}'.", database));
  }
  if (right == TableRight::Insert && IsDenied(asked, schema, "SCHEMA", "INSERT") &&
      IsDenied(asked, object, "OBJECT", "INSERT")) {
    return Refusal(ServerKind::MsSql, 229,
                   fmt::format("The INSERT permission was denied on the object '{}'.", table.name));
  }
  return std::nullopt;
}

}  // namespace dorvane::to_mssql
