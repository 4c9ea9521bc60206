#include "platform/ado/odbc/diagnostics.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>

#include "platform/ado/odbc/utf16.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

constexpr std::int32_t kNoTls = 18;
constexpr std::int32_t kLoginFailed = 18456;
constexpr std::int32_t kUntrustedLogin = 18452;
constexpr std::int32_t kNoSuchDatabase = 4060;

/// Server errors whose SQLSTATE drivers leave at the general 42000.
struct StateOfError {
  std::int32_t native_error;
  std::string_view sql_state;
};
constexpr auto kKnownErrors = std::to_array<StateOfError>({
    {220, "22003"},   // overflow of a small integer type
    {232, "22003"},   // overflow
    {241, "22007"},   // text that is no date
    {242, "22007"},   // a date out of range
    {245, "22018"},   // text that is no number
    {273, "42000"},   // a value for a timestamp column
    {515, "23000"},   // NULL in a NOT NULL column
    {544, "42000"},   // a value for an identity column
    {547, "23000"},   // a constraint
    {1222, "HYT00"},  // waited too long for a lock
    {2601, "23000"},  // a unique index
    {2627, "23000"},  // a key
    {2628, "22001"},  // text too long, with its column
    {8114, "22018"},  // a type that does not convert
    {8115, "22003"},  // overflow
    {8152, "22001"},  // text too long
});

struct HresultOfState {
  std::string_view prefix;
  std::int32_t number;
};
constexpr auto kHresults = std::to_array<HresultOfState>({
    {"22001", hresult::kDataOverflow},
    {"22", hresult::kErrorsOccurred},
    {"23", hresult::kIntegrityViolation},
    {"HYT", hresult::kTimeout},
    {"21", hresult::kErrorsInCommand},
    {"37", hresult::kErrorsInCommand},
    {"42", hresult::kErrorsInCommand},
    {"S0", hresult::kErrorsInCommand},
});

/// What a server says of a logon, as opposed to what the way to it says.
bool IsFromServer(const Diagnostic& record) {
  return record.native_error > 0 &&
         (record.sql_state.starts_with("42") || record.sql_state.starts_with("28"));
}

bool IsUnreachable(const Diagnostic& record) {
  return record.sql_state.starts_with("08") || record.sql_state.starts_with("HYT");
}

/// The driver manager's own states for a driver that it cannot load.
bool IsMissingDriver(const Diagnostic& record) {
  return record.sql_state == "IM002" || record.sql_state == "IM003" ||
         record.sql_state == "IM004" ||
         (record.sql_state.starts_with("01") && record.message.starts_with("Can't open lib"));
}

/// What FreeTDS says of every logon that failed before the server had answered it.
constexpr std::int32_t kConnectionFailed = 20002;

/// FreeTDS's own messages of a way to the server that ended early: a timeout, a failed read or
/// write, an unavailable server, an unknown host, an unexpected end.
bool IsNetworkError(const Diagnostic& record) {
  static constexpr std::array<std::int32_t, 6> kNumbers = {20003, 20004, 20006,
                                                           20009, 20013, 20017};
  return record.sql_state.starts_with("HYT") ||
         std::find(kNumbers.begin(), kNumbers.end(), record.native_error) != kNumbers.end();
}

template <typename Predicate>
const Diagnostic* Find(const Diagnostics& records, Predicate predicate) {
  const auto found = std::find_if(records.begin(), records.end(), predicate);
  return found == records.end() ? nullptr : &*found;
}

/// "[FreeTDS][SQL Server]text" is "text"; a server's own text may begin with "[" as well.
std::string WithoutPrefixes(std::string message) {
  static constexpr std::string_view kServer = "[SQL Server]";
  std::size_t begin = 0;
  while (begin < message.size() && message[begin] == '[') {
    const std::size_t end = message.find(']', begin);
    if (end == std::string::npos) break;
    const bool is_last = std::string_view(message).substr(begin).starts_with(kServer);
    begin = end + 1;
    if (is_last) break;
  }
  return message.substr(begin);
}

/// The error that decides what a failed logon is: a missing database before a refused login, since
/// a server reports both of a login that has no other database to go to.
const Diagnostic* PrimaryRecord(const Diagnostics& records) {
  for (const std::int32_t number : {kNoSuchDatabase, kUntrustedLogin}) {
    const auto* record =
        Find(records, [number](const auto& r) { return r.native_error == number; });
    if (record != nullptr) return record;
  }
  const auto* other = Find(
      records, [](const auto& r) { return IsFromServer(r) && r.native_error != kLoginFailed; });
  return other != nullptr ? other : Find(records, IsFromServer);
}

std::string JoinedMessages(const Diagnostics& records) {
  std::string text;
  for (const Diagnostic& record : records) text += (text.empty() ? "" : ". ") + record.message;
  return text;
}

/// Drivers do not tell more.
std::string TlsFailureText(Encryption encryption) {
  std::string text = "The server offers no encrypted connection, and the settings allow no other";
  if (encryption == Encryption::Verified) {
    text += ", or its certificate is not from a known authority or not for this host name";
  }
  return text + ".";
}

Diagnostic LogonCause(const Diagnostics& records, const ConnectionSettings& settings) {
  if (const Diagnostic* record = PrimaryRecord(records)) return *record;
  if (settings.integrated_security && Find(records, IsNetworkError) == nullptr) {
    return {
        "28000", kUntrustedLogin,
        "Login failed. There is no Kerberos ticket for a trusted connection to this server, or the "
        "server does not take it."};
  }
  if (settings.encryption != Encryption::Offered && IsTlsFailure(records)) {
    return {"08001", kNoTls, TlsFailureText(settings.encryption)};
  }
  if (Find(records, IsUnreachable) != nullptr) {
    return {"08001", kServerNotFound,
            "SQL Server does not exist or access denied. " + JoinedMessages(records)};
  }
  return records.front();
}

Error ToEntry(const Diagnostic& record, std::int32_t number) {
  return {number, record.native_error, record.message, record.sql_state};
}

}  // namespace

bool IsError(const Diagnostic& record) {
  return !record.sql_state.starts_with("01");
}

Diagnostics ReadDiagnostics(SQLSMALLINT handle_type, SQLHANDLE handle) {
  Diagnostics records;
  std::u16string text(1024, u'\0');
  for (SQLSMALLINT index = 1;; ++index) {
    char16_t state[6] = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    const auto read = [&] {
      return SQLGetDiagRecW(handle_type, handle, index, reinterpret_cast<SQLWCHAR*>(state), &native,
                            reinterpret_cast<SQLWCHAR*>(text.data()),
                            static_cast<SQLSMALLINT>(text.size()), &length);
    };
    SQLRETURN result = read();
    if (result == SQL_SUCCESS_WITH_INFO && static_cast<std::size_t>(length) >= text.size()) {
      text.resize(static_cast<std::size_t>(length) + 1);
      result = read();
    }
    if (!SQL_SUCCEEDED(result)) return records;
    const auto size = std::min<std::size_t>(length, text.size() - 1);
    records.push_back({ToUtf8(state), native,
                       WithoutPrefixes(ToUtf8(std::u16string_view(text).substr(0, size)))});
  }
}

std::int32_t StatementHresult(std::string_view sql_state, std::int32_t native_error) {
  const auto known = std::find_if(kKnownErrors.begin(), kKnownErrors.end(), [&](const auto& entry) {
    return entry.native_error == native_error;
  });
  if (known != kKnownErrors.end()) sql_state = known->sql_state;
  const auto found = std::find_if(kHresults.begin(), kHresults.end(), [&](const auto& entry) {
    return sql_state.starts_with(entry.prefix);
  });
  return found == kHresults.end() ? hresult::kFail : found->number;
}

ProviderError StatementError(const Diagnostics& records) {
  Errors entries;
  for (const Diagnostic& record : records) {
    if (!IsError(record)) continue;
    entries.push_back(ToEntry(record, StatementHresult(record.sql_state, record.native_error)));
  }
  if (entries.empty()) {
    for (const Diagnostic& record : records) entries.push_back(ToEntry(record, hresult::kFail));
  }
  if (entries.empty()) {
    entries.push_back({hresult::kFail, 0, "The driver failed without a message.", "HY000"});
  }
  const Error first = entries.front();
  return {first.number, std::string(kSource), first.description, std::move(entries)};
}

ProviderError LostConnectionError(const Diagnostics& records) {
  const std::string text = "The connection to SQL Server was lost. " + JoinedMessages(records);
  return {hresult::kFail, std::string(kSource), text, {{hresult::kFail, 0, text, "08S01"}}};
}

bool IsTlsFailure(const Diagnostics& records) {
  if (Find(records, IsFromServer) != nullptr || Find(records, IsNetworkError) != nullptr) {
    return false;
  }
  return Find(records, [](const Diagnostic& record) {
           return record.native_error == kConnectionFailed ||
                  record.message.starts_with("SSL Provider");
         }) != nullptr;
}

ProviderError LogonError(const Diagnostics& records, const ConnectionSettings& settings) {
  if (const Diagnostic* record = Find(records, IsMissingDriver)) {
    return LibraryError(kProviderNotFound, record->message);
  }
  const Diagnostic cause = LogonCause(records, settings);
  Errors entries = {{hresult::kFail, 0, "The logon to SQL Server failed.", "08001"},
                    ToEntry(cause, hresult::kFail)};
  for (const Diagnostic& record : records) {
    if (IsFromServer(record) && record.native_error != cause.native_error) {
      entries.push_back(ToEntry(record, hresult::kFail));
    }
  }
  return {hresult::kFail, std::string(kSource), cause.message, std::move(entries)};
}

ProviderError LibraryError(std::int32_t number, const std::string& description) {
  return {number, std::string(kSource), description, {{number, 0, description, "HY000"}}};
}

void CheckStatement(SQLRETURN result, SQLHANDLE statement) {
  if (!SQL_SUCCEEDED(result)) throw StatementError(ReadDiagnostics(SQL_HANDLE_STMT, statement));
}

}  // namespace dorvane::ado::odbc
