#include "platform/ado/odbc/session_state.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <string>
#include <vector>

#include "platform/ado/odbc/catalog_rows.h"
#include "platform/ado/odbc/diagnostics.h"

namespace dorvane::ado::odbc {

namespace {

SessionState AskOver(const std::shared_ptr<Logon>& logon, int id) {
  try {
    const std::vector<CatalogRow> rows = ReadCatalog(
        logon,
        fmt::format("select case when has_perms_by_name(null, null, 'VIEW SERVER STATE') = 1 then "
                    "(select count(*) from sys.dm_exec_requests where session_id = {} and "
                    "isnull(wait_type, '') <> 'ASYNC_NETWORK_IO') end as requests",
                    id));
    const auto requests = rows.empty() ? std::nullopt : rows.front().OptionalNumber("requests");
    if (!requests) return SessionState::Unknown;
    return *requests == 0 ? SessionState::Lost : SessionState::Working;
  } catch (const ProviderError&) {
    return logon->IsLost() ? SessionState::Lost : SessionState::Unknown;
  }
}

}  // namespace

void SetUpSession(const std::shared_ptr<Logon>& logon, const ConnectionSettings& settings) {
  const std::vector<CatalogRow> rows =
      ReadCatalog(logon, "set lock_timeout 60000 select @@spid as session_id");
  const int id = rows.empty() ? 0 : rows.front().Number("session_id");
  logon->SetLimit(std::chrono::seconds(settings.idle_limit),
                  [settings, id] { return AskForSession(settings, id); });
}

SessionState AskForSession(const ConnectionSettings& settings, int id) noexcept {
  try {
    return AskOver(std::make_shared<Logon>(settings, Watchdog::kAnswerLimit), id);
  } catch (const ProviderError& failure) {
    // A server that refuses the logon lives.
    const bool is_absent = std::ranges::find(failure.Entries(), kServerNotFound,
                                             &Error::native_error) != failure.Entries().end();
    return is_absent ? SessionState::Lost : SessionState::Unknown;
  } catch (const std::exception&) {
    return SessionState::Unknown;
  }
}

}  // namespace dorvane::ado::odbc
