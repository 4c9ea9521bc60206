#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ado/errors.h"
#include "platform/ado/provider.h"
#include "platform/ado/recordset.h"
#include "platform/ado/rehearsal.h"

namespace dorvane::ado {

/// The values are ADO's published ones.
enum class ObjectState { Closed = 0, Open = 1 };
enum class CommandType { Text = 1, Table = 2, StoredProc = 4, Unknown = 8 };

/// A connection to one server. A statement that is issued while an earlier one is still streaming
/// its rows runs on a further session that the connection opens by itself and keeps.
///
/// Every operation that starts clears Errors(); one that fails fills it and throws RunTimeError.
/// Not thread-safe, except that one recordset may be read in another thread while no other
/// operation runs on its connection.
class Connection {
 public:
  explicit Connection(Provider& provider);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Logs on. Throws RunTimeError, kObjectOpen among its numbers.
  void Open(ConnectionSettings settings);
  /// Logs on as Open did, after everything was closed. Throws RunTimeError, and is closed then.
  void Reopen();
  /// Another connection, logged on as this one. Throws RunTimeError.
  std::unique_ptr<Connection> OpenAnother() const;
  /// True when the server answers on every session. Not while rows are streaming.
  bool IsAlive();
  /// From now on nothing is sent that changes anything: such a statement goes to `statements` and
  /// is taken for done, rows of a table are taken and forgotten. Questions are asked as ever.
  void Rehearse(StatementSink statements) { rehearsal_ = std::move(statements); }
  bool IsRehearsing() const { return rehearsal_ != nullptr; }
  /// Closes the recordsets that are open and logs off; closing twice is harmless.
  void Close();
  ObjectState State() const;
  const ado::Errors& Errors() const { return errors_; }
  /// True while it is open to a server on another machine without encryption.
  bool IsExposed() const { return !sessions_.empty() && sessions_.front()->IsExposed(); }

  /// Runs a statement and returns its first result, without fields when it has none. With
  /// CommandType::Table the text is a quoted table reference, else it is sent as it stands.
  Recordset Execute(std::string_view sql, CommandType type = CommandType::Unknown);
  /// Runs a statement that returns no rows; see Session.
  void ExecuteWith(std::string_view sql, std::span<const Value> parameters);
  /// An updatable recordset on a table: AddNew, Update, CancelUpdate, InsertRows. `table` is a
  /// quoted reference, `columns` the names that its rows give values for.
  Recordset OpenTable(std::string_view table, const std::vector<std::string>& columns);

  /// The transaction covers OpenTable's recordsets, and Execute as long as no rows are left unread
  /// on the session that holds it.
  void BeginTrans();
  void CommitTrans();
  void RollbackTrans();

  /// The catalog of the selected database, see Session and Catalog.
  std::vector<TableInfo> Tables();
  std::vector<Column> Columns(const TableName& table);
  std::vector<Index> Indexes(const TableName& table);
  std::vector<Key> Keys(const TableName& table);
  std::map<TableName, TableDetails> AllTables();

 private:
  friend class Recordset;

  /// A recordset as its connection sees it.
  class Dependent {
   public:
    virtual ~Dependent() = default;
    /// Lets go of everything that belongs to the connection's sessions.
    virtual void Detach() = 0;
  };

  /// Runs one operation of this connection with the error list that belongs to it.
  template <typename Operation>
  auto Guarded(Operation operation);
  /// Guarded, on an open connection only.
  template <typename Operation>
  auto WhileOpen(Operation operation);
  Session& IdleSession();
  Session& WritingSession();
  void EndTransaction(void (Session::*how)());

  Provider& provider_;
  ConnectionSettings settings_;
  std::vector<std::unique_ptr<Session>> sessions_;
  // Rows are inserted and transactions run on one and the same session.
  Session* writing_session_ = nullptr;
  bool in_transaction_ = false;
  std::vector<Dependent*> dependents_;
  StatementSink rehearsal_;  // none: this is no rehearsal
  ado::Errors errors_;
};

template <typename Operation>
auto Connection::Guarded(Operation operation) {
  errors_.clear();
  try {
    return operation();
  } catch (const ProviderError& failure) {
    errors_ = failure.Entries();
    throw;
  }
}

}  // namespace dorvane::ado
