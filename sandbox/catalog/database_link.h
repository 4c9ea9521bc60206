#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "sandbox/functions/functions.h"
#include "sandbox/storage/catalog.h"
#include "sandbox/storage/server_folder.h"

namespace sandbox {

struct InsertPlan;
struct ObjectName;

/// Thrown when the client gave up what runs; nothing is reported for it.
struct Cancelled {};

/// A session's own connection to one database: its catalog, its write transaction, its statements.
class DatabaseLink final : public FunctionHost {
 public:
  DatabaseLink(const ServerFolder& folder, std::shared_ptr<DatabaseState> state, std::string login,
               int session, std::atomic<bool>& cancel);
  ~DatabaseLink() override;
  DatabaseLink(const DatabaseLink&) = delete;
  DatabaseLink& operator=(const DatabaseLink&) = delete;

  DatabaseState& State() const { return *state_; }
  const std::string& Name() const { return state_->name; }
  SqliteConnection& Connection() { return connection_; }

  /// The definitions as this session sees them now. References into it end with the next call.
  const Catalog& Definitions();

  // Names (name_lookup.cpp). A bare name is one of the default schema, else of dbo.
  /// Who the session is in this database; one that no user stands for is dbo.
  const UserDef& User();
  /// The schemas in which a name's object is looked for, in their order.
  std::vector<std::string> SearchPath(const ObjectName& name);
  const TableDef* FindTable(const ObjectName& name);
  const ViewDef* FindView(const ObjectName& name);
  const AliasTypeDef* FindType(const ObjectName& name);
  /// The schema that a new object of this name is in, as it is spelt. Raises 2760.
  std::string SchemaForNew(const ObjectName& name);

  /// A statement from the cache, reset. It lives until the definitions change.
  SqliteStatement& Cached(const std::string& sql);
  /// Steps a statement; an error raised by one of our functions or a cancel comes out as itself.
  bool Step(SqliteStatement& statement);
  void Run(SqliteStatement& statement);

  /// Starts the write transaction unless it runs. Waits for other writers.
  void BeginWrite();
  bool Writing() const { return connection_.InTransaction(); }
  void Commit();
  void Rollback();
  void Savepoint();
  void ReleaseSavepoint();
  void RollbackToSavepoint();

  // Changes of definitions, within a write transaction.
  /// Changes a definition (or adds it) and stores it.
  void Store(TableDef table);
  void Store(ViewDef view);
  /// Forgets a table or view.
  void Forget(int object_id);
  /// Adds a schema, user or type to its list.
  template <typename Definition>
  void Add(std::vector<Definition> Catalog::*list, Definition added) {
    (catalog_.*list).push_back(std::move(added));
    StoreChange();
  }
  int NewObjectId();
  /// Drops the session's own tables.
  void DropTemporaryTables();

  /// The next identity value; the counter moves on.
  std::int64_t NextIdentity(const TableDef& table, const ColumnDef& column);
  /// Notes an explicit value, beyond which the counter goes on.
  void NoteIdentity(const TableDef& table, const ColumnDef& column, std::int64_t value);
  void ResetIdentity(const TableDef& table);
  /// The next value follows this one.
  void SetIdentity(const TableDef& table, std::int64_t last);
  /// The last value given out; nothing before the first.
  std::optional<std::int64_t> LastIdentity(const TableDef& table);
  std::int64_t NextRowVersion();

  /// Kept until the definitions change.
  std::map<std::string, std::shared_ptr<InsertPlan>> insert_plans;
  /// What answers SessionValue.
  std::function<std::pair<Value, TypeInfo>(std::string_view name, const std::vector<Value>& args)>
      session_value;
  std::pair<Value, TypeInfo> SessionValue(std::string_view name,
                                          const std::vector<Value>& args) override;

 private:
  [[noreturn]] void Translate(const SqliteError& error);
  void ForgetStatements();
  void StoreChange();
  void SaveCounters();

  std::shared_ptr<DatabaseState> state_;
  const std::string login_;
  const std::string temporary_schema_;
  std::atomic<bool>& cancel_;
  SqliteConnection connection_;
  Catalog catalog_;
  std::uint64_t catalog_version_ = 0;
  bool definitions_changed_ = false;
  bool keeps_definitions_ = false;
  std::unordered_map<std::string, SqliteStatement> statements_;
  std::map<int, std::int64_t> unsaved_identities_;
  std::optional<std::int64_t> stored_row_version_;
  bool row_version_moved_ = false;
};

/// A savepoint around one statement: what is not kept is undone.
class StatementScope {
 public:
  explicit StatementScope(DatabaseLink& link);
  ~StatementScope();
  void Keep();
  StatementScope(const StatementScope&) = delete;
  StatementScope& operator=(const StatementScope&) = delete;

 private:
  DatabaseLink& link_;
  bool kept_ = false;
};

}  // namespace sandbox
