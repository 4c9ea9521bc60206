#include "sandbox/storage/server_folder.h"

#include <fmt/format.h>

#include <algorithm>

#include "sandbox/storage/catalog_store.h"
#include "sandbox/storage/collations.h"
#include "sandbox/text/text_order.h"

namespace sandbox {
DatabaseState::DatabaseState(std::string database_name, std::filesystem::path database_file,
                             int database_id)
    : name(std::move(database_name)), file(std::move(database_file)), id(database_id) {}

std::optional<std::int64_t> DatabaseState::LastIdentity(int table_id) {
  std::lock_guard lock(mutex_);
  const auto found = last_identity_.find(table_id);
  return found == last_identity_.end() ? std::nullopt : std::optional(found->second);
}

void DatabaseState::SetLastIdentity(int table_id, std::optional<std::int64_t> value) {
  std::lock_guard lock(mutex_);
  if (value) {
    last_identity_[table_id] = *value;
  } else {
    last_identity_.erase(table_id);
  }
}

std::int64_t DatabaseState::NextRowVersion(std::int64_t stored) {
  std::lock_guard lock(mutex_);
  row_version_ = std::max(row_version_, stored) + 1;
  return row_version_;
}

ServerFolder::ServerFolder(std::filesystem::path folder, bool durable)
    : folder_(std::move(folder)), durable_(durable) {
  std::filesystem::create_directories(folder_);
  index_ = std::make_unique<SqliteConnection>(folder_ / "server.db", durable_);
  CheckVersion();
  index_->Execute(
      "CREATE TABLE IF NOT EXISTS databases(id INTEGER PRIMARY KEY, name TEXT);"
      "CREATE TABLE IF NOT EXISTS logins(name TEXT PRIMARY KEY COLLATE NOCASE, password TEXT)");
  auto rows = index_->Prepare("SELECT id, name FROM databases ORDER BY id");
  while (rows.Step()) {
    const int id = static_cast<int>(rows.Integer(0));
    const auto file = folder_ / fmt::format("database{}.db", id);
    databases_.push_back(std::make_shared<DatabaseState>(rows.Text(1), file, id));
    SqliteConnection connection(file, durable_);
    RegisterTextOrder(connection.get());
    DropTemporaryTables(connection);
  }
  rows.Reset();
  for (const char* name : {"master", "tempdb", "model", "msdb"}) {
    if (!Find(name)) Add(name);
  }
}

// A folder of another version is left as it is.
void ServerFolder::CheckVersion() {
  constexpr int kVersion = 1;
  auto other = index_->Prepare(
      "SELECT 1 FROM sqlite_schema, pragma_user_version"
      " WHERE user_version<>?1");
  if (other.Bind(1, kVersion).Step())
    throw std::runtime_error(folder_.string() + " was made by another version of the server");
  index_->Execute(fmt::format("PRAGMA user_version={}", kVersion));
}

std::shared_ptr<DatabaseState> ServerFolder::Find(std::string_view name) const {
  std::lock_guard lock(mutex_);
  for (const auto& database : databases_) {
    if (CompareText(database->name, name) == 0) return database;
  }
  return nullptr;
}

std::vector<std::shared_ptr<DatabaseState>> ServerFolder::All() const {
  std::lock_guard lock(mutex_);
  return databases_;
}

std::shared_ptr<DatabaseState> ServerFolder::Create(std::string_view name) {
  std::lock_guard lock(mutex_);
  for (const auto& database : databases_) {
    if (CompareText(database->name, name) == 0) return nullptr;
  }
  return Add(name);
}

// The file is complete before the index names it: a crash in between leaves no half database.
std::shared_ptr<DatabaseState> ServerFolder::Add(std::string_view name) {
  int id = 1;
  for (const auto& database : databases_) id = std::max(id, database->id + 1);
  const auto file = folder_ / fmt::format("database{}.db", id);
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(file.string() + suffix);
  SqliteConnection connection(file, durable_);
  connection.Execute("BEGIN IMMEDIATE");
  CreateCatalogTables(connection);
  connection.Execute("COMMIT");
  auto insert = index_->Prepare("INSERT INTO databases VALUES(?1,?2)");
  insert.Bind(1, id).Bind(2, name).Run();
  databases_.push_back(std::make_shared<DatabaseState>(std::string(name), file, id));
  return databases_.back();
}

void ServerFolder::Drop(const DatabaseState& database) {
  std::lock_guard lock(mutex_);
  const auto file = database.file;
  const int id = database.id;
  auto remove = index_->Prepare("DELETE FROM databases WHERE id=?1");
  remove.Bind(1, id).Run();
  std::erase_if(databases_, [&](const auto& entry) { return entry->id == id; });
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(file.string() + suffix);
}

bool ServerFolder::AddLogin(std::string_view name, std::string_view password) {
  std::lock_guard lock(mutex_);
  auto insert = index_->Prepare("INSERT OR IGNORE INTO logins VALUES(?1,?2)");
  insert.Bind(1, name).Bind(2, password).Run();
  return sqlite3_changes(index_->get()) > 0;
}

bool ServerFolder::HasLogin(std::string_view name) const {
  std::lock_guard lock(mutex_);
  auto row = index_->Prepare("SELECT 1 FROM logins WHERE name=?1");
  return row.Bind(1, name).Step();
}

bool ServerFolder::LoginMatches(std::string_view name, std::string_view password) const {
  std::lock_guard lock(mutex_);
  auto row = index_->Prepare("SELECT 1 FROM logins WHERE name=?1 AND password=?2");
  return row.Bind(1, name).Bind(2, password).Step();
}

SqliteConnection ServerFolder::Connect(const DatabaseState& database) const {
  SqliteConnection connection(database.file, durable_);
  RegisterTextOrder(connection.get());
  return connection;
}

}  // namespace sandbox
