#include "sandbox/storage/sqlite.h"

namespace sandbox {

namespace {

constexpr int kBusyTimeoutMilliseconds = 60'000;
constexpr int kCacheKibibytes = 16 * 1024;
// Loads come in commits of about a megabyte; every checkpoint waits for the disk twice.
constexpr int kPagesBetweenCheckpoints = 4000;

// A connection belongs to one session's thread, so SQLite's own locks, and its statistics, which
// lock at every allocation, are left out.
void Configure() {
  static const bool once = [] {
    sqlite3_config(SQLITE_CONFIG_MULTITHREAD);
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    return true;
  }();
  (void)once;
}

void Check(int result, sqlite3* connection) {
  if (result == SQLITE_OK) return;
  throw SqliteError(sqlite3_extended_errcode(connection), sqlite3_errmsg(connection));
}

}  // namespace

SqliteStatement::SqliteStatement(sqlite3* connection, std::string_view sql) {
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v3(connection, sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  handle_.reset(statement);
  Check(result, connection);
}

bool SqliteStatement::Step() {
  const int result = sqlite3_step(handle_.get());
  if (result == SQLITE_ROW) return true;
  if (result == SQLITE_DONE) return false;
  sqlite3* connection = sqlite3_db_handle(handle_.get());
  throw SqliteError(sqlite3_extended_errcode(connection), sqlite3_errmsg(connection));
}

void SqliteStatement::Run() {
  ResetGuard guard(*this);
  while (Step()) {
  }
}

void SqliteStatement::Reset() {
  if (handle_) sqlite3_reset(handle_.get());
}

SqliteStatement& SqliteStatement::Bind(int index, std::int64_t value) {
  sqlite3_bind_int64(handle_.get(), index, value);
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int index, std::string_view text) {
  sqlite3_bind_text(handle_.get(), index, text.data(), static_cast<int>(text.size()),
                    SQLITE_TRANSIENT);
  return *this;
}

std::string SqliteStatement::Text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle_.get(), column));
  const int bytes = sqlite3_column_bytes(handle_.get(), column);
  return text ? std::string(text, static_cast<std::size_t>(bytes)) : std::string();
}

SqliteConnection::SqliteConnection(const std::filesystem::path& file, bool durable) {
  Configure();
  sqlite3* connection = nullptr;
  const int result =
      sqlite3_open_v2(file.c_str(), &connection,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  handle_.reset(connection);
  Check(result, connection);
  sqlite3_extended_result_codes(connection, 1);
  sqlite3_busy_timeout(connection, kBusyTimeoutMilliseconds);
  Execute("PRAGMA journal_mode=WAL");
  Execute(durable ? "PRAGMA synchronous=FULL" : "PRAGMA synchronous=OFF");
  Execute("PRAGMA cache_size=-" + std::to_string(kCacheKibibytes));
  sqlite3_wal_autocheckpoint(connection, kPagesBetweenCheckpoints);
}

void SqliteConnection::Execute(const std::string& sql) {
  Check(sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr), handle_.get());
}

}  // namespace sandbox
