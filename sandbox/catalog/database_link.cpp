#include "sandbox/catalog/database_link.h"

#include <mutex>

#include "sandbox/storage/catalog_store.h"

namespace sandbox {

namespace {

constexpr std::size_t kMaxCachedStatements = 400;
constexpr int kStepsBetweenCancelChecks = 20'000;
constexpr const char* kRowVersion = "row_version";

std::string IdentityCounter(int table_id) {
  return fmt::format("identity_{}", table_id);
}

int CheckCancel(void* cancel) {
  return static_cast<std::atomic<bool>*>(cancel)->load() ? 1 : 0;
}

}  // namespace

DatabaseLink::DatabaseLink(const ServerFolder& folder, std::shared_ptr<DatabaseState> state,
                           std::string login, int session, std::atomic<bool>& cancel)
    : state_(std::move(state)),
      login_(std::move(login)),
      temporary_schema_(fmt::format("#{}", session)),
      cancel_(cancel),
      connection_(folder.Connect(*state_)) {
  sqlite3_progress_handler(connection_.get(), kStepsBetweenCancelChecks, CheckCancel, &cancel_);
  RegisterFunctions(connection_.get(), *this);
}

DatabaseLink::~DatabaseLink() = default;

const Catalog& DatabaseLink::Definitions() {
  const std::uint64_t current = [this] {
    const std::lock_guard lock(state_->definition_mutex);
    return state_->definition_version;
  }();
  if (keeps_definitions_ || definitions_changed_ || current == catalog_version_) return catalog_;
  ForgetStatements();
  catalog_ = LoadCatalog(connection_);
  catalog_version_ = current;
  return catalog_;
}

// Reading the definitions anew would end the statement that asks.
std::pair<Value, TypeInfo> DatabaseLink::SessionValue(std::string_view name,
                                                      const std::vector<Value>& args) {
  const bool kept = std::exchange(keeps_definitions_, true);
  auto value = session_value(name, args);
  keeps_definitions_ = kept;
  return value;
}

void DatabaseLink::ForgetStatements() {
  insert_plans.clear();
  statements_.clear();
}

SqliteStatement& DatabaseLink::Cached(const std::string& sql) {
  const auto found = statements_.find(sql);
  if (found != statements_.end()) {
    // A statement that still runs (a trigger of itself, in a sense) must not be disturbed.
    if (!sqlite3_stmt_busy(found->second.get())) return found->second;
    statements_.erase(found);
  }
  if (statements_.size() >= kMaxCachedStatements) statements_.clear();
  try {
    return statements_.emplace(sql, connection_.Prepare(sql)).first->second;
  } catch (const SqliteError& error) {
    Translate(error);
  }
}

void DatabaseLink::Translate(const SqliteError& error) {
  if (raised) {
    SqlError own = std::move(*raised);
    raised.reset();
    throw own;
  }
  switch (error.code & 0xFF) {
    case SQLITE_INTERRUPT:
      throw Cancelled();
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      Raise(1222);
    case SQLITE_CONSTRAINT:
      throw error;
    default:
      break;
  }
  const std::string_view text = error.what();
  if (text.find("too large") != std::string_view::npos ||
      text.find("depth") != std::string_view::npos ||
      text.find("stack overflow") != std::string_view::npos) {
    Raise(191);
  }
  Raise(15034, text);
}

bool DatabaseLink::Step(SqliteStatement& statement) {
  try {
    return statement.Step();
  } catch (const SqliteError& error) {
    sqlite3_reset(statement.get());
    Translate(error);
  }
}

void DatabaseLink::Run(SqliteStatement& statement) {
  ResetGuard guard(statement);
  while (Step(statement)) {
  }
}

void DatabaseLink::BeginWrite() {
  if (Writing()) return;
  auto begin = connection_.Prepare("BEGIN IMMEDIATE");
  Run(begin);
}

void DatabaseLink::SaveCounters() {
  for (const auto& [table, value] : unsaved_identities_) {
    StoreCounter(connection_, IdentityCounter(table), value);
  }
  unsaved_identities_.clear();
  if (row_version_moved_) StoreCounter(connection_, kRowVersion, *stored_row_version_);
  row_version_moved_ = false;
}

void DatabaseLink::Commit() {
  if (!Writing()) return;
  SaveCounters();
  auto commit = connection_.Prepare("COMMIT");
  std::unique_lock lock(state_->definition_mutex, std::defer_lock);
  if (definitions_changed_) lock.lock();
  Run(commit);
  if (!definitions_changed_) return;
  definitions_changed_ = false;
  catalog_version_ = ++state_->definition_version;
}

void DatabaseLink::Rollback() {
  if (Writing()) connection_.Execute("ROLLBACK");
  if (!definitions_changed_) return;
  definitions_changed_ = false;
  catalog_version_ = 0;
}

void DatabaseLink::Savepoint() {
  Run(Cached("SAVEPOINT statement"));
}

void DatabaseLink::ReleaseSavepoint() {
  Run(Cached("RELEASE statement"));
}

void DatabaseLink::RollbackToSavepoint() {
  connection_.Execute("ROLLBACK TO statement");
  if (!definitions_changed_) return;
  ForgetStatements();
  catalog_ = LoadCatalog(connection_);
}

void DatabaseLink::StoreChange() {
  definitions_changed_ = true;
  ForgetStatements();
  StoreShared(connection_, catalog_);
}

void DatabaseLink::Store(TableDef table) {
  StoreChange();
  TableDef& stored = catalog_.tables[table.id] = std::move(table);
  StoreTable(connection_, stored);
}

void DatabaseLink::Store(ViewDef view) {
  StoreChange();
  ViewDef& stored = catalog_.views[view.id] = std::move(view);
  StoreView(connection_, stored);
}

void DatabaseLink::Forget(int object_id) {
  StoreChange();
  ForgetObject(connection_, object_id);
  ForgetCounter(connection_, IdentityCounter(object_id));
  unsaved_identities_.erase(object_id);
  catalog_.tables.erase(object_id);
  catalog_.views.erase(object_id);
}

void DatabaseLink::DropTemporaryTables() {
  std::vector<int> own;
  for (const auto& [id, table] : Definitions().tables) {
    if (table.schema == temporary_schema_) own.push_back(id);
  }
  if (own.empty()) return;
  BeginWrite();
  for (const int id : own) {
    const std::string stored = Definitions().tables.at(id).StoredName();
    Forget(id);
    connection_.Execute("DROP TABLE " + stored);
  }
  Commit();
}

int DatabaseLink::NewObjectId() {
  return catalog_.NewObjectId();
}

std::optional<std::int64_t> DatabaseLink::LastIdentity(const TableDef& table) {
  if (const auto last = state_->LastIdentity(table.id)) return last;
  const std::int64_t stored = LoadCounter(connection_, IdentityCounter(table.id), INT64_MIN);
  if (stored == INT64_MIN) return std::nullopt;
  state_->SetLastIdentity(table.id, stored);
  return stored;
}

std::int64_t DatabaseLink::NextIdentity(const TableDef& table, const ColumnDef& column) {
  const auto last = LastIdentity(table);
  std::int64_t next = column.seed;
  if (last && __builtin_add_overflow(*last, column.increment, &next)) {
    Raise(8115, "IDENTITY", "bigint");
  }
  state_->SetLastIdentity(table.id, next);
  unsaved_identities_[table.id] = next;
  return next;
}

void DatabaseLink::NoteIdentity(const TableDef& table, const ColumnDef& column,
                                std::int64_t value) {
  const auto last = LastIdentity(table);
  const bool beyond = !last ? (column.increment > 0 ? value >= column.seed : value <= column.seed)
                            : (column.increment > 0 ? value > *last : value < *last);
  if (!beyond) return;
  state_->SetLastIdentity(table.id, value);
  unsaved_identities_[table.id] = value;
}

void DatabaseLink::ResetIdentity(const TableDef& table) {
  state_->SetLastIdentity(table.id, std::nullopt);
  unsaved_identities_.erase(table.id);
  ForgetCounter(connection_, IdentityCounter(table.id));
}

void DatabaseLink::SetIdentity(const TableDef& table, std::int64_t last) {
  state_->SetLastIdentity(table.id, last);
  unsaved_identities_[table.id] = last;
}

std::int64_t DatabaseLink::NextRowVersion() {
  if (!stored_row_version_) stored_row_version_ = LoadCounter(connection_, kRowVersion, 0);
  stored_row_version_ = state_->NextRowVersion(*stored_row_version_);
  row_version_moved_ = true;
  return *stored_row_version_;
}

StatementScope::StatementScope(DatabaseLink& link) : link_(link) {
  link_.Savepoint();
}

StatementScope::~StatementScope() {
  if (kept_ || !link_.Writing()) return;
  try {
    link_.RollbackToSavepoint();
    link_.ReleaseSavepoint();
  } catch (...) {
    link_.Rollback();  // better nothing of the transaction than half of it
  }
}

void StatementScope::Keep() {
  link_.ReleaseSavepoint();
  kept_ = true;
}

}  // namespace sandbox
