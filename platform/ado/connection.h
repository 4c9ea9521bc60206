#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/errors.h"
#include "platform/ado/provider.h"
#include "platform/ado/recordset.h"

namespace dorvane::ado {

enum class ObjectState { Closed = 0, Open = 1 };
enum class CursorLocation { Server = 2, Client = 3 };
enum class CommandType { Text = 1, Table = 2, StoredProc = 4, Unknown = 8 };

/// A connection to one server. A statement that is issued while an earlier one is still streaming
/// its rows runs on a further session that the connection opens by itself and keeps.
///
/// Every operation that starts clears Errors(); one that fails fills it and throws RunTimeError.
/// Not thread-safe, except that one recordset may be read in another thread while no other
/// operation runs on its connection.
class Connection {
 public:
  explicit Connection(ProviderLookup providers = InstalledProvider);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Kept to the letter; Open parses it for what SetSettings did not give.
  void SetConnectionString(std::string text) { connection_string_ = std::move(text); }
  const std::string& ConnectionString() const { return connection_string_; }
  /// The values of the connection string, unquoted and unambiguous. They win over the string.
  void SetSettings(ConnectionSettings settings);
  void SetCursorLocation(CursorLocation location) { cursor_location_ = location; }
  CursorLocation GetCursorLocation() const { return cursor_location_; }

  void Open();
  /// Ends open recordsets' sessions and logs off; closing twice is harmless.
  void Close();
  ObjectState State() const;
  const ado::Errors& Errors() const { return errors_; }

  /// Runs a statement and returns its first result (closed fields when it has none).
  Recordset Execute(std::string_view sql, CommandType type = CommandType::Unknown);
  /// An updatable recordset on a table: AddNew, Update, CancelUpdate, InsertRows. `table` is a
  /// quoted reference, `columns` the names that its rows give values for.
  Recordset OpenTable(std::string_view table, const std::vector<std::string>& columns);

  void BeginTrans();
  void CommitTrans();
  void RollbackTrans();

  std::vector<TableInfo> Tables();
  std::vector<Column> Columns(const std::string& table);
  std::vector<Index> Indexes(const std::string& table);
  std::vector<Key> Keys(const std::string& table);

 private:
  friend class Recordset;

  template <typename Operation>
  auto Guarded(Operation operation);
  Session& IdleSession();

  ProviderLookup providers_;
  std::string connection_string_;
  ConnectionSettings settings_;
  bool has_settings_ = false;
  CursorLocation cursor_location_ = CursorLocation::Server;
  std::vector<std::unique_ptr<Session>> sessions_;
  ado::Errors errors_;
};

/// Settings read from a connection string ("key=value" parts between ";"), for strings that come
/// without them.
ConnectionSettings ParseConnectionString(std::string_view text);

}  // namespace dorvane::ado
