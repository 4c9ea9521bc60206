#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/catalog_types.h"
#include "platform/ado/connection_settings.h"
#include "platform/ado/errors.h"
#include "platform/ado/row_block.h"
#include "platform/ado/types.h"

namespace dorvane::ado {

/// The results of one statement, read forwards in blocks straight from the server. Owned by its
/// reader; leaving it early cancels the statement without reading the rest of the result.
class ResultReader {
 public:
  virtual ~ResultReader() = default;
  /// Fields of the current result; empty for a statement without one.
  virtual const std::vector<FieldInfo>& Fields() const = 0;
  /// Replaces the block's rows by the next ones, at least one and at most its limits. False, and an
  /// empty block, at the end of the current result. Throws ProviderError.
  virtual bool Read(RowBlock& block) = 0;
  /// Steps to the next result that has fields. False when there is none. Throws ProviderError.
  virtual bool NextResult() = 0;
};

/// Rows on their way into one table.
class TableWriter {
 public:
  virtual ~TableWriter() = default;
  /// Whether Insert takes a row just as it is. Any other one needs a statement.
  virtual bool Takes(std::span<const Value> /*row*/) const { return true; }
  /// Inserts `count` rows of the block from row `first` on, in as few round trips as the server
  /// takes. Values are in the order of the columns that the writer was opened with: NULL, text and
  /// bytes for MySQL, for SQL Server values of the column's own kind. Throws ProviderError on the
  /// first refusal; rows before it may have been stored, so a caller that sends more than one row
  /// does so inside a transaction.
  virtual void Insert(const RowBlock& rows, std::size_t first, std::size_t count) = 0;
};

/// One logged-on connection of a client library. Its readers and writers go before it does; calls
/// must not overlap. Every operation throws ProviderError.
class Session {
 public:
  virtual ~Session() = default;
  /// Runs a statement or batch. A batch that returns no rows has been carried out whole when this
  /// returns; the first failure in it is thrown.
  virtual std::unique_ptr<ResultReader> Execute(std::string_view sql) = 0;
  /// Runs a statement that returns no rows, with one text or bytes for each "?" of it: those go out
  /// in pieces, so that a long value is not in memory once more as a literal. For a server whose
  /// TableWriter takes no long values.
  virtual void ExecuteWith(std::string_view sql, std::span<const Value> /*parameters*/) {
    Execute(sql);  // and the server says what it misses
  }
  /// True while a reader of this session has rows left on the wire.
  virtual bool IsStreaming() const = 0;
  /// False when the connection is lost. Asks the server only where the socket leaves a doubt. Not
  /// while rows are left on the wire. Does not throw.
  virtual bool IsAlive() = 0;
  /// True when what is sent travels to another machine without encryption.
  virtual bool IsExposed() const = 0;

  /// `table` is a quoted reference as it stands in a statement; columns are unquoted names.
  virtual std::unique_ptr<TableWriter> OpenWriter(std::string_view table,
                                                  const std::vector<std::string>& columns) = 0;
  virtual void BeginTransaction() = 0;
  virtual void Commit() = 0;
  /// Harmless on a connection that was lost: the server has rolled back by itself.
  virtual void Rollback() = 0;

  /// Catalog of the selected database; an unknown table has no columns.
  virtual std::vector<TableInfo> Tables() = 0;
  virtual std::vector<Column> Columns(const TableName& table) = 0;
  virtual std::vector<Index> Indexes(const TableName& table) = 0;
  virtual std::vector<Key> Keys(const TableName& table) = 0;
  /// The same of every table, in as few questions for a thousand as for one. Nothing from a server
  /// that has to be asked table by table.
  virtual std::map<TableName, TableDetails> AllTables() { return {}; }
};

/// A client library. Stateless; lives as long as the program.
class Provider {
 public:
  virtual ~Provider() = default;
  /// Logs on. Throws ProviderError.
  virtual std::unique_ptr<Session> Connect(const ConnectionSettings& settings) = 0;
};

/// Gives the provider for a kind of server.
using ProviderLookup = std::function<Provider&(ServerKind kind)>;

/// SQL Server over ODBC, MySQL over its native client library; each in its own folder.
Provider& OdbcProvider();
Provider& MySqlProvider();
inline Provider& InstalledProvider(ServerKind kind) {
  return kind == ServerKind::MsSql ? OdbcProvider() : MySqlProvider();
}

}  // namespace dorvane::ado
