#include "mysql/mysql_database.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"

namespace dorvane {

namespace {

constexpr std::string_view kTitle = "MySQL Server";
constexpr std::string_view kLogPrefix = "Conversion Failed! ";

// The driver reports the server's own error alone.
constexpr std::size_t kServerEntry = 0;

struct ConnectionMessage {
  std::int32_t native_error;
  std::string_view message;   // "{}" is the database
  std::string_view log_text;  // behind the prefix
};

constexpr std::string_view kNotFound =
    "MySQL Server can not be found at that server. Make sure that you entered the correct host "
    "name";

constexpr std::array kConnectionMessages{
    ConnectionMessage{2003, kNotFound, kNotFound},
    ConnectionMessage{2017, kNotFound, kNotFound},
    ConnectionMessage{1045, "Invalid username or password. Access denied for this user.",
                      "Access denied while trying to connect to MySQL server"},
    ConnectionMessage{1049, "Database {} does not exist. Please create it first.",
                      "Database {} does not exist in MySQL Server. Please create it first."},
};

constexpr std::array kCreationMessages{
    NativeMessage{1007, "Database {} already exists."},
    NativeMessage{1044, "This user does not have the permission to create a new database."},
    NativeMessage{1102, "Invalid database name!"},
};

}  // namespace

MySqlDatabase::MySqlDatabase(IRunHost& host, ado::ProviderLookup providers)
    : DatabaseBase(host, std::move(providers)) {}

std::optional<ConnectionFailure> MySqlDatabase::DescribeConnectionFailure(
    const RunTimeError& error, const ado::Connection& connection) const {
  const ErrorSummary summary = NativeSummary(connection.Errors(), kServerEntry, error);
  for (const ConnectionMessage& row : kConnectionMessages) {
    if (row.native_error != summary.number) continue;
    return ConnectionFailure{
        fmt::format(fmt::runtime(row.message), DbName()),
        std::string(kLogPrefix) + fmt::format(fmt::runtime(row.log_text), DbName()),
        std::string(kTitle)};
  }
  const ado::Error* entry = PrimaryError(connection.Errors(), kServerEntry);
  return ConnectionFailure{
      fmt::format("Unknown Error No. {} - {}", summary.number, summary.description),
      fmt::format("{}Unkown error {} - {}{}", kLogPrefix, error.Number(),
                  entry != nullptr ? entry->description : std::string(), error.Description()),
      std::string(kTitle)};
}

std::optional<NameList> MySqlDatabase::GetDatabases() {
  const auto connection = OpenConnection(false);
  if (!connection) return std::nullopt;
  try {
    NameList names;
    ado::Recordset databases = connection->Execute("show databases");
    for (; !databases.AtEnd(); databases.MoveNext()) names.push_back(databases.Field(0).Text());
    return names;
  } catch (const RunTimeError& error) {
    const ErrorSummary summary = NativeSummary(connection->Errors(), kServerEntry, error);
    Host().ShowMessage(
        fmt::format("Unknown error no. {} - {}", summary.number, summary.description),
        message_style::kError, kTitle);
    return std::nullopt;
  }
}

bool MySqlDatabase::CreateDatabase(const std::string& name) {
  const auto connection = OpenConnection(false);
  if (!connection) return false;
  try {
    connection->Execute("Create Database " + MySqlName(name));
    return true;
  } catch (const RunTimeError& error) {
    const ErrorSummary summary = NativeSummary(connection->Errors(), kServerEntry, error);
    const auto text = FindMessage(kCreationMessages, summary.number);
    Host().ShowMessage(
        text ? fmt::format(fmt::runtime(*text), name)
             : fmt::format("Unknown Error No. {} - {}", summary.number, summary.description),
        message_style::kError, kTitle);
    return false;
  }
}

std::optional<NameList> MySqlDatabase::GetTablesFromDatabase() {
  const auto connection = OpenConnection(true);
  if (!connection) return std::nullopt;
  NameList names;
  for (const ado::TableInfo& table : connection->Tables()) names.push_back(table.name.Text());
  return names;
}

std::string_view MySqlDatabase::SizesQuestion() const {
  return "select '', table_name, table_rows, data_length + index_length "
         "from information_schema.tables "
         "where table_schema = database() and table_type = 'BASE TABLE'";
}

ServerInfo MySqlDatabase::AskServerInfo(ado::Connection& connection) const {
  const std::string answer = connection.Execute("select version()").Field(0).Text();
  ado::Recordset cipher = connection.Execute("show session status like 'Ssl_cipher'");
  return {.product = answer.find("MariaDB") != answer.npos ? "MariaDB" : "MySQL",
          .version = answer.substr(0, answer.find('-')),
          .is_encrypted = !cipher.AtEnd() && !cipher.Field(1).Text().empty()};
}

std::unique_ptr<Conversion> MySqlDatabase::MakeConversion(Conversion::Context context) {
  return std::make_unique<to_mssql::MySqlToMsSql>(std::move(context));
}

}  // namespace dorvane
