#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/storage/sqlite.h"

namespace sandbox {

/// What the sessions of one database share. Counters never run backwards, not even on rollback.
class DatabaseState {
 public:
  DatabaseState(std::string name, std::filesystem::path file, int id);

  const std::string name;
  const std::filesystem::path file;
  const int id;
  /// Changes with every committed definition, so that sessions read the catalog anew. The lock
  /// keeps a session from reading the version between a commit and its change.
  std::uint64_t definition_version = 1;
  std::mutex definition_mutex;
  /// Sessions that have the database selected; it can't be dropped meanwhile.
  std::atomic<int> users{0};

  /// The last identity value given out in the table, if any session knows it yet.
  std::optional<std::int64_t> LastIdentity(int table_id);
  void SetLastIdentity(int table_id, std::optional<std::int64_t> value);
  /// The next row version, after `stored` at least.
  std::int64_t NextRowVersion(std::int64_t stored);

 private:
  std::mutex mutex_;
  std::map<int, std::int64_t> last_identity_;
  std::int64_t row_version_ = 2000;
};

/// The folder of a server: one file for each database, and "master" always. Thread-safe.
class ServerFolder {
 public:
  /// Makes the folder when needed. Throws std::runtime_error, also for one of another version.
  ServerFolder(std::filesystem::path folder, bool durable);

  std::shared_ptr<DatabaseState> Find(std::string_view name) const;
  std::vector<std::shared_ptr<DatabaseState>> All() const;
  /// Null when the name is taken.
  std::shared_ptr<DatabaseState> Create(std::string_view name);
  void Drop(const DatabaseState& database);
  SqliteConnection Connect(const DatabaseState& database) const;

  /// Logins besides the one that the server was started with; false when there is such a login.
  /// Passwords are kept as they are: it is a practice server.
  bool AddLogin(std::string_view name, std::string_view password);
  bool HasLogin(std::string_view name) const;
  bool LoginMatches(std::string_view name, std::string_view password) const;

 private:
  void CheckVersion();
  std::shared_ptr<DatabaseState> Add(std::string_view name);

  const std::filesystem::path folder_;
  const bool durable_;
  mutable std::mutex mutex_;
  std::unique_ptr<SqliteConnection> index_;  // "server.db": which databases and logins there are
  std::vector<std::shared_ptr<DatabaseState>> databases_;
};

}  // namespace sandbox
