#include "platform/ado/odbc/logon.h"

#include <sql.h>
#include <sqlext.h>

#include <string>

#include "platform/ado/odbc/connection_string.h"
#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/odbc/driver.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

// The drivers' own attribute for connections that rows are loaded through.
constexpr SQLINTEGER kTakesBulkLoads = 1219;

}  // namespace

Logon::Logon(const ConnectionSettings& settings, std::chrono::seconds timeout) {
  std::u16string text = ToUtf16(DriverConnectionString(InstalledDriver(), settings));
  environment_ = NewEnvironment();
  connection_ = ConnectionHandle(environment_.Get());
  if (!connection_) throw LibraryError(hresult::kFail, "No connection could be set up.");
  SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_LOGIN_TIMEOUT,
                     AttributeValue(static_cast<SQLULEN>(timeout.count())), 0);
  SQLSetConnectAttrW(connection_.Get(), kTakesBulkLoads, AttributeValue(1), SQL_IS_INTEGER);
  const SQLRETURN result = SQLDriverConnectW(
      connection_.Get(), nullptr, reinterpret_cast<SQLWCHAR*>(text.data()),
      static_cast<SQLSMALLINT>(text.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(result)) {
    throw LogonError(ReadDiagnostics(SQL_HANDLE_DBC, connection_.Get()),
                     settings.integrated_security);
  }
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
