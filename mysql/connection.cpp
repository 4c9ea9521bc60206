#include <fmt/format.h>

#include <array>
#include <utility>

#include "mysql/mysql_database.h"

namespace dorvane {

namespace {

constexpr std::string_view kTitle = "MySQL Server";
constexpr std::string_view kLogPrefix = "Conversion Failed! ";

// The driver reports the server's own error alone.
constexpr std::size_t kServerEntry = 0;

// Flags of the driver: don't optimise column widths (1), return matching rows (2), BIGINT as INT
// (16384).
constexpr int kDriverOptions = 16387;

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

[[noreturn]] void ThrowInvalidProperty() {
  throw RunTimeError(run_time::kInvalidPropertyAccess, "MySql", "Invalid Property Access");
}

}  // namespace

MySqlDatabase::MySqlDatabase(IRunHost& host, ado::ProviderLookup providers)
    : DatabaseBase(host, std::move(providers)) {}

bool MySqlDatabase::WinNTAuthentication() const {
  ThrowInvalidProperty();
}

void MySqlDatabase::SetWinNTAuthentication(bool) {
  ThrowInvalidProperty();
}

void MySqlDatabase::PrepareConnection(ado::Connection& connection, bool with_db_name) const {
  std::string text = fmt::format(
      "Driver={{MySql ODBC 3.51 Driver}};Password={};User ID={};Server={};port={};option={}",
      Password(), UserId(), Server(), PortNo(), kDriverOptions);
  if (with_db_name) text += ";Database=" + DbName();
  connection.SetConnectionString(std::move(text));
  connection.SetSettings(LogonSettings(with_db_name));
  connection.SetCursorLocation(ado::CursorLocation::Server);
}

std::optional<ConnectionFailure> MySqlDatabase::DescribeConnectionFailure(
    const RunTimeError& error, const ado::Connection& connection) const {
  const FailureWords words = NativeWords(connection.Errors(), kServerEntry, error);
  for (const ConnectionMessage& row : kConnectionMessages) {
    if (row.native_error != words.number) continue;
    return ConnectionFailure{
        fmt::format(fmt::runtime(row.message), DbName()),
        std::string(kLogPrefix) + fmt::format(fmt::runtime(row.log_text), DbName()),
        std::string(kTitle)};
  }
  const ado::Error* entry = SpeakingEntry(connection.Errors(), kServerEntry);
  return ConnectionFailure{
      fmt::format("Unknown Error No. {} - {}", words.number, words.description),
      fmt::format("{}Unkown error {} - {}{}", kLogPrefix, error.Number(),
                  entry != nullptr ? entry->description : std::string(), error.Description()),
      std::string(kTitle)};
}

NameList MySqlDatabase::ReadDatabases(ado::Connection& connection) {
  NameList names;
  ado::Recordset databases = connection.Execute("show databases", ado::CommandType::Unknown);
  for (; !databases.AtEnd(); databases.MoveNext()) names.push_back(databases.Field(0).Text());
  return names;
}

void MySqlDatabase::ReportListingFailure(const RunTimeError& error, const ado::Errors& errors) {
  const FailureWords words = NativeWords(errors, kServerEntry, error);
  Host().ShowMessage(fmt::format("Unknown error no. {} - {}", words.number, words.description),
                     message_style::kError, kTitle);
}

std::string MySqlDatabase::CreateDatabaseStatement(const std::string& name) const {
  return "Create Database `" + name + "`";
}

void MySqlDatabase::ReportCreationFailure(const std::string& name, const RunTimeError& error,
                                          const ado::Errors& errors) {
  const FailureWords words = NativeWords(errors, kServerEntry, error);
  const auto text = FindMessage(kCreationMessages, words.number);
  Host().ShowMessage(
      text ? fmt::format(fmt::runtime(*text), name)
           : fmt::format("Unknown Error No. {} - {}", words.number, words.description),
      message_style::kError, kTitle);
}

bool MySqlDatabase::IsListed(const ado::TableInfo&) const {
  return true;
}

}  // namespace dorvane
