#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/connection_settings.h"
#include "platform/ado/errors.h"

namespace dorvane::ado::odbc {

inline constexpr std::string_view kSource = "SQL Server";

/// The native error of a logon to a server that cannot be reached.
inline constexpr std::int32_t kServerNotFound = 17;

/// One diagnostic record of a handle, its message without the names of driver and library in front.
struct Diagnostic {
  std::string sql_state;
  std::int32_t native_error = 0;
  std::string message;
};
using Diagnostics = std::vector<Diagnostic>;

/// False for what a driver or server merely lets know.
bool IsError(const Diagnostic& record);

/// All records that the handle's latest call left, in the driver's order.
Diagnostics ReadDiagnostics(SQLSMALLINT handle_type, SQLHANDLE handle);

/// The HRESULT by which callers know a failed statement of this SQLSTATE and server error number.
std::int32_t StatementHresult(std::string_view sql_state, std::int32_t native_error);

/// A failed statement: one entry per error, the first one speaks. Informational records are left
/// out, unless there is nothing else.
ProviderError StatementError(const Diagnostics& records);

/// A statement that failed because its connection is gone; drivers call that many things.
ProviderError LostConnectionError(const Diagnostics& records);

/// A logon that a driver was to encrypt and gave up before the server had a say in it.
bool IsTlsFailure(const Diagnostics& records);

/// A failed logon: a summary entry first and what the server said second. Whatever keeps the server
/// from being reached has native error 17, TLS that is not what the settings demand 18; a trusted
/// logon that got no further than this machine (no ticket) has 18452. A driver that cannot be
/// loaded is kProviderNotFound.
ProviderError LogonError(const Diagnostics& records, const ConnectionSettings& settings);

/// A failure of this library itself, without a server's error behind it.
ProviderError LibraryError(std::int32_t number, const std::string& description);

/// Throws the statement's error unless the call succeeded.
void CheckStatement(SQLRETURN result, SQLHANDLE statement);

}  // namespace dorvane::ado::odbc
