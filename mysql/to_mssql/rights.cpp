#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "endpoint/failure.h"
#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/rehearsed_server.h"

namespace dorvane::to_mssql {

namespace {

/// "1", "0", or empty where there is no such securable or the server does not tell.
std::string HasRight(ado::Connection& connection, const std::string& securable,
                     std::string_view kind, std::string_view right) {
  ado::Recordset answer = connection.Execute(
      fmt::format("select has_perms_by_name({}, '{}', '{}')", securable, kind, right));
  return answer.AtEnd() ? "" : answer.Field(0).Text();
}

/// A permission on the database, or on the table: what the server says that lacks it, of {0} the
/// permission and {1} the database or table.
struct Permission {
  TableRight right;
  bool is_of_database;
  std::string_view name;
  std::int32_t native_error;
  const char* words;
};
constexpr const char* kNotInDatabase = "{0} permission denied in database '{1}'.";
constexpr const char* kNotOnObject = "The {0} permission was denied on the object '{1}'.";
constexpr const char* kNoObject =
    "Cannot find the object \"{1}\" because it does not exist or you do not have permissions.";
constexpr std::array kPermissions{
    Permission{TableRight::Create, true, "CREATE TABLE", 262, kNotInDatabase},
    Permission{TableRight::MakeSchema, true, "CREATE SCHEMA", 262, kNotInDatabase},
    Permission{TableRight::Insert, false, "INSERT", 229, kNotOnObject},
    Permission{TableRight::Refer, false, "REFERENCES", 229, kNotOnObject},
    Permission{TableRight::Alter, false, "ALTER", 4902, kNoObject},
    Permission{TableRight::Index, false, "ALTER", 1088, kNoObject},
};

/// A table that is made in the run gets what its schema gives.
bool IsDeniedOnTable(ado::Connection& connection, std::string_view permission,
                     const ado::TableName& table) {
  const std::string schema = table.IsBare() ? "schema_name()" : "N'" + SqlText(table.schema) + "'";
  const std::string object = "N'" + SqlText(MsSqlTable(table)) + "'";
  return HasRight(connection, schema, "SCHEMA", permission) == "0" &&
         HasRight(connection, object, "OBJECT", permission) != "1";
}

}  // namespace

std::optional<ado::ProviderError> RehearsedMsSql::Denial(TableRight right,
                                                         const ado::TableName& table) {
  const auto* permission = std::ranges::find(kPermissions, right, &Permission::right);
  if (permission == kPermissions.end()) return std::nullopt;
  const bool is_denied =
      permission->is_of_database
          ? HasRight(connection_, "db_name()", "DATABASE", permission->name) == "0"
          : IsDeniedOnTable(connection_, permission->name, table);
  if (!is_denied) return std::nullopt;
  const std::string on = permission->is_of_database
                             ? connection_.Execute("select db_name()").Field(0).Text()
                             : table.name;
  return Refusal(ServerKind::MsSql, permission->native_error,
                 fmt::format(fmt::runtime(permission->words), permission->name, on));
}

}  // namespace dorvane::to_mssql
