#include "platform/ado/odbc/logon.h"

#include <sql.h>
#include <sqlext.h>

#include <cstring>
#include <mutex>
#include <optional>
#include <string>

#include "platform/ado/odbc/connection_string.h"
#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/freetds_configuration.h"
#include "platform/ado/odbc/socket_search.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/ado/transport.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

// The drivers' own attribute for connections that rows are loaded through.
constexpr SQLINTEGER kTakesBulkLoads = 1219;

/// Whether an encrypted connection is only a wish. FreeTDS does not tell what became of it, so it
/// is asked for encryption first, and for none where that fails. On the way to this machine nobody
/// reads along; Microsoft's drivers always encrypt.
bool MayBeExposed(const Driver& driver, const ConnectionSettings& settings) {
  return settings.encryption == Encryption::Offered && driver.kind == DriverKind::FreeTds &&
         !IsLoopback(ParseServer(settings.server, settings.port).host);
}

}  // namespace

Logon::Logon(const ConnectionSettings& settings, std::chrono::seconds timeout) {
  const Driver driver = InstalledDriver();
  environment_ = NewEnvironment();
  ConnectionSettings attempt = settings;
  if (MayBeExposed(driver, settings)) attempt.encryption = Encryption::Required;
  Diagnostics failure = Connect(driver, attempt, timeout);
  if (attempt.encryption != settings.encryption && IsTlsFailure(failure)) {
    failure = Connect(driver, settings, timeout);
    is_exposed_ = true;
  }
  if (!failure.empty()) throw LogonError(failure, settings);
}

Diagnostics Logon::Connect(const Driver& driver, const ConnectionSettings& settings,
                           std::chrono::seconds timeout) {
  static std::mutex one_at_a_time;
  const std::lock_guard lock(one_at_a_time);
  std::optional<FreeTdsConfiguration> configuration;
  if (settings.encryption == Encryption::Verified && driver.kind == DriverKind::FreeTds) {
    configuration.emplace(ParseServer(settings.server, settings.port), AuthoritiesFile(settings));
  }
  std::string utf8 = DriverConnectionString(driver, settings);
  std::u16string text = ToUtf16(utf8);
  connection_ = ConnectionHandle(environment_.Get());
  if (!connection_) throw LibraryError(hresult::kFail, "No connection could be set up.");
  SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_LOGIN_TIMEOUT,
                     AttributeValue(static_cast<SQLULEN>(timeout.count())), 0);
  SQLSetConnectAttrW(connection_.Get(), kTakesBulkLoads, AttributeValue(1), SQL_IS_INTEGER);
  const SocketSearch search;
  const SQLRETURN result = SQLDriverConnectW(
      connection_.Get(), nullptr, reinterpret_cast<SQLWCHAR*>(text.data()),
      static_cast<SQLSMALLINT>(text.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
  // They hold the password, which has done its work.
  explicit_bzero(utf8.data(), utf8.size());
  explicit_bzero(text.data(), text.size() * sizeof(char16_t));
  if (SQL_SUCCEEDED(result)) {
    watchdog_.emplace(search.NewSocket(ParseServer(settings.server, settings.port).port));
    return {};
  }
  Diagnostics failure = ReadDiagnostics(SQL_HANDLE_DBC, connection_.Get());
  if (failure.empty()) failure.push_back({"HY000", 0, "The driver gave no reason."});
  return failure;
}

Logon::~Logon() {
  if (connection_) SQLDisconnect(connection_.Get());
}

Statement Logon::NewStatement() const {
  Statement statement(connection_.Get());
  if (!statement) throw StatementError(ReadDiagnostics(SQL_HANDLE_DBC, connection_.Get()));
  SQLSetStmtAttrW(statement.Get(), SQL_ATTR_NOSCAN, AttributeValue(SQL_NOSCAN_ON), 0);
  return statement;
}

bool Logon::IsLost() const {
  SQLUINTEGER state = SQL_CD_FALSE;
  SQLGetConnectAttrW(connection_.Get(), SQL_ATTR_CONNECTION_DEAD, &state, 0, nullptr);
  return state == SQL_CD_TRUE;
}

}  // namespace dorvane::ado::odbc
