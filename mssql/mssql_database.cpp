#include "mssql/mssql_database.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "endpoint/names.h"
#include "mssql/to_mysql/conversion.h"

namespace dorvane {

namespace {

constexpr std::string_view kTitle = "MS SQL Server";
constexpr std::string_view kLogPrefix = "Conversion Failed! ";

// The provider's summary stands first in the list, the server's own error second.
constexpr std::size_t kServerEntry = 1;

struct ConnectionMessage {
  std::int32_t native_error;
  std::string_view message;   // "{}" is the database
  std::string_view log_text;  // behind the prefix
};

constexpr std::string_view kNotFound =
    "MS SQL Server can not be found at that server. Make sure that you entered the correct host "
    "name";
constexpr std::string_view kNoDatabase = "Database {} does not exist. Please create it first.";
constexpr std::string_view kNoPermission =
    "the current windows user has no permission to access this server. Please make sure the "
    "current user has permission to access this server ";

constexpr std::array kConnectionMessages{
    ConnectionMessage{17, kNotFound, kNotFound},
    ConnectionMessage{18456, "Invalid username or password. Access denied for this user.",
                      "Access denied while trying to connect to MS SQL server"},
    ConnectionMessage{4060, kNoDatabase, kNoDatabase},
    // Servers that only speak the protocol say so of a database that they cannot select.
    ConnectionMessage{911, kNoDatabase, kNoDatabase},
    ConnectionMessage{18452, kNoPermission, kNoPermission},
};

constexpr std::array kCreationMessages{
    NativeMessage{1801, "Database {} already exists."},
    NativeMessage{262, "This user does not have the permission to create a new database."},
    NativeMessage{5105, "Invalid database name!"},
};

}  // namespace

MsSqlDatabase::MsSqlDatabase(IRunHost& host, ado::ProviderLookup providers)
    : DatabaseBase(host, std::move(providers)) {}

std::optional<ConnectionFailure> MsSqlDatabase::DescribeConnectionFailure(
    const RunTimeError& error, const ado::Connection& connection) const {
  if (error.Number() == 0) {
    if (connection.State() != ado::ObjectState::Closed) return std::nullopt;
    constexpr std::string_view kClosed =
        "MS SQL Server can not be found at that host. Make sure that you entered the correct host "
        "name";
    return ConnectionFailure{std::string(kClosed), fmt::format("Conversion failed! {}", kClosed),
                             std::string(kTitle)};
  }
  const std::int32_t native = NativeSummary(connection.Errors(), kServerEntry, error).number;
  for (const ConnectionMessage& row : kConnectionMessages) {
    if (row.native_error != native) continue;
    return ConnectionFailure{
        fmt::format(fmt::runtime(row.message), DbName()),
        std::string(kLogPrefix) + fmt::format(fmt::runtime(row.log_text), DbName()),
        std::string(kTitle)};
  }
  return ConnectionFailure{
      fmt::format("Unkown error {} - {}", native, error.Description()),
      fmt::format("Conversion failed! Unknow error {} - {}", native, error.Description()),
      std::string(kTitle)};
}

std::optional<NameList> MsSqlDatabase::GetDatabases() {
  const auto connection = OpenConnection(false);
  if (!connection) return std::nullopt;
  try {
    NameList names;
    ado::Recordset databases = connection->Execute("sp_databases", ado::CommandType::StoredProc);
    for (; !databases.AtEnd(); databases.MoveNext()) {
      names.push_back(databases.Field("Database_Name").Text());
      Host().Yield();
    }
    return names;
  } catch (const RunTimeError& error) {
    const ErrorSummary summary = NativeSummary(connection->Errors(), kServerEntry, error);
    Host().ShowMessage(
        fmt::format("Unexpected Error No. {} - {}", summary.number, summary.description),
        message_style::kError, kTitle);
    return std::nullopt;
  }
}

bool MsSqlDatabase::CreateDatabase(const std::string& name) {
  const auto connection = OpenConnection(false);
  if (!connection) return false;
  try {
    connection->Execute("Create Database " + MsSqlName(name));
    return true;
  } catch (const RunTimeError& error) {
    const ErrorSummary summary = NativeSummary(connection->Errors(), 0, error);
    const auto text = FindMessage(kCreationMessages, summary.number);
    Events().ErrorOccured(
        text ? fmt::format(fmt::runtime(*text), name)
             : fmt::format("Unexpected Error No. {} - {}", summary.number, summary.description),
        message_style::kError, kTitle);
    return false;
  }
}

std::optional<NameList> MsSqlDatabase::GetTablesFromDatabase() {
  const auto connection = OpenConnection(true);
  if (!connection) return std::nullopt;
  NameList names;
  for (const ado::TableInfo& table : connection->Tables()) {
    if (table.type == "TABLE") names.push_back(table.name.Text());
  }
  return names;
}

std::string_view MsSqlDatabase::SizesQuestion() const {
  return "select case when t.schema_id = schema_id() then '' else schema_name(t.schema_id) end, "
         "t.name, "
         "(select sum(p.rows) from sys.partitions p"
         " where p.object_id = t.object_id and p.index_id in (0, 1)), "
         "(select sum(a.total_pages) * 8192 from sys.partitions p"
         " join sys.allocation_units a on a.container_id = p.partition_id"
         " where p.object_id = t.object_id) "
         "from sys.tables t";
}

ServerInfo MsSqlDatabase::AskServerInfo(ado::Connection& connection) const {
  const auto ask = [&](std::string_view question) {
    return connection.Execute(question).Field(0).Text();
  };
  ServerInfo info{
      .product = "Microsoft SQL Server",
      .version = ask("select convert(nvarchar(128), serverproperty('productversion'))")};
  try {
    info.is_encrypted =
        ask("select encrypt_option from sys.dm_exec_connections where session_id = @@spid") ==
        "TRUE";
  } catch (const RunTimeError&) {
    // Not every login may ask.
    if (connection.IsExposed()) info.is_encrypted = false;
    if (Settings().encryption != ado::Encryption::Offered) info.is_encrypted = true;
  }
  return info;
}

std::unique_ptr<Conversion> MsSqlDatabase::MakeConversion(Conversion::Context context) {
  return std::make_unique<to_mysql::MsSqlToMySql>(std::move(context));
}

}  // namespace dorvane
