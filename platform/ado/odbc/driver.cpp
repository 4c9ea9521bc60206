#include "platform/ado/odbc/driver.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <system_error>

#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/freetds_configuration.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

struct KnownDriver {
  std::string_view name;
  DriverKind kind;
};
constexpr auto kPreferred = std::to_array<KnownDriver>({
    {"ODBC Driver 18 for SQL Server", DriverKind::Microsoft},
    {"ODBC Driver 17 for SQL Server", DriverKind::Microsoft},
    {"FreeTDS", DriverKind::FreeTds},
});

constexpr std::string_view kLibrary = "libtdsodbc.so";
constexpr std::string_view kNoDriver =
    "No ODBC driver for SQL Server is installed. Install the package \"tdsodbc\", or Microsoft's "
    "\"msodbcsql18\".";

/// FreeTDS reads no configuration file for a connection string that gives "Server", but these
/// variables win over the string: another server, another protocol version, a log of every byte
/// (the password among them).
void ForgetUserSettings() {
  static std::once_flag done;
  std::call_once(done, [] {
    for (const char* name :
         {"TDSVER", "TDSHOST", "TDSPORT", "TDSQUERY", "TDSDUMP", "TDSDUMPCONFIG"}) {
      unsetenv(name);
    }
    FreeTdsConfiguration::Announce();
    // A pooled connection would outlive its logoff.
    SQLSetEnvAttr(SQL_NULL_HENV, SQL_ATTR_CONNECTION_POOLING, AttributeValue(SQL_CP_OFF), 0);
  });
}

std::vector<std::string> RegisteredDrivers() {
  const Environment environment = NewEnvironment();
  std::vector<std::string> names;
  char16_t name[256];
  SQLSMALLINT length = 0;
  SQLSMALLINT ignored = 0;
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  while (SQL_SUCCEEDED(SQLDriversW(environment.Get(), direction, reinterpret_cast<SQLWCHAR*>(name),
                                   std::size(name), &length, nullptr, 0, &ignored))) {
    names.push_back(ToUtf8(name));
    direction = SQL_FETCH_NEXT;
  }
  return names;
}

/// Where distributions put driver libraries: lib, lib64 and the multiarch folders, in "odbc" below
/// them or at their top.
std::vector<std::filesystem::path> DriverLibraries() {
  std::vector<std::filesystem::path> folders;
  for (const char* root : {"/usr/lib", "/usr/lib64", "/usr/local/lib", "/opt/homebrew/lib"}) {
    folders.emplace_back(root);
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(root, ignored)) {
      if (entry.path().filename().string().find("-linux-") != std::string::npos) {
        folders.push_back(entry.path());
      }
    }
  }
  std::vector<std::filesystem::path> found;
  for (const auto& folder : folders) {
    for (const auto& path : {folder / "odbc" / kLibrary, folder / kLibrary}) {
      std::error_code ignored;
      if (std::filesystem::exists(path, ignored)) found.push_back(path);
    }
  }
  return found;
}

}  // namespace

Environment NewEnvironment() {
  ForgetUserSettings();
  Environment environment(SQL_NULL_HANDLE);
  if (!environment) throw LibraryError(hresult::kFail, "The ODBC library could not be set up.");
  SQLSetEnvAttr(environment.Get(), SQL_ATTR_ODBC_VERSION, AttributeValue(SQL_OV_ODBC3), 0);
  return environment;
}

Driver ChooseDriver(const std::vector<std::string>& registered,
                    const std::vector<std::filesystem::path>& libraries) {
  for (const KnownDriver& known : kPreferred) {
    if (std::find(registered.begin(), registered.end(), known.name) != registered.end()) {
      return {known.kind, std::string(known.name)};
    }
  }
  if (!libraries.empty()) return {DriverKind::FreeTds, libraries.front().string()};
  throw LibraryError(kProviderNotFound, std::string(kNoDriver));
}

Driver InstalledDriver() {
  return ChooseDriver(RegisteredDrivers(), DriverLibraries());
}

}  // namespace dorvane::ado::odbc
