#include "platform/ado/odbc/environment.h"

#include <cstdlib>
#include <mutex>

#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

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
    // A pooled connection would outlive its logoff.
    SQLSetEnvAttr(SQL_NULL_HENV, SQL_ATTR_CONNECTION_POOLING, AttributeValue(SQL_CP_OFF), 0);
  });
}

}  // namespace

Environment NewEnvironment() {
  ForgetUserSettings();
  Environment environment(SQL_NULL_HANDLE);
  if (!environment) throw LibraryError(hresult::kFail, "The ODBC library could not be set up.");
  SQLSetEnvAttr(environment.Get(), SQL_ATTR_ODBC_VERSION, AttributeValue(SQL_OV_ODBC3), 0);
  return environment;
}

}  // namespace dorvane::ado::odbc
