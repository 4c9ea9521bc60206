#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/mysql/client.h"
#include "platform/ado/mysql/row_loader.h"
#include "platform/ado/provider.h"

namespace dorvane::ado::mysql {

class ClientSession;

/// Inserts rows by prepared statements: by one for many rows at a time (the bulk protocol) or by
/// some that take 1, 2, 4... rows each. Many rows of a transaction are loaded where the server
/// takes that; those that it would not load as they are go by statements, so the outcome is the
/// same. A request never exceeds what the server takes; a single row that does is refused with
/// error 1153 without being sent. Long values go ahead of their row, in pieces, so that no request
/// holds them once more.
class RowWriter final : public TableWriter {
 public:
  /// Throws ProviderError for a table or column that is not there.
  RowWriter(ClientSession& session, std::string_view table,
            const std::vector<std::string>& columns);

  void Insert(const RowBlock& rows, std::size_t first, std::size_t count) override;

 private:
  MYSQL_STMT* Prepared(Statement& statement, std::size_t rows);
  /// Throws the statement's error unless the call succeeded.
  void Check(MYSQL_STMT* statement, bool succeeded);
  void Bind(MYSQL_STMT* statement, std::vector<MYSQL_BIND>& binds);
  void Execute(MYSQL_STMT* statement, std::vector<MYSQL_BIND>& binds);
  /// Sends as many of the rows as go at a time; returns their number.
  std::size_t Send(const RowBlock& rows, std::size_t first, std::size_t count);
  void InsertInPieces(std::span<const Value> row);
  std::size_t InsertMultiRow(const RowBlock& rows, std::size_t first, std::size_t count);
  std::size_t InsertBulk(const RowBlock& rows, std::size_t first, std::size_t count);

  ClientSession& session_;
  RowLoader loader_;
  bool takes_statements_ = false;  // known when rows were inserted
  std::string insert_clause_;      // the statement up to its values
  std::size_t columns_;
  std::map<std::size_t, Statement> multi_row_;  // by the number of rows each takes
  Statement bulk_;                              // for one row, sent with as many as there are
};

}  // namespace dorvane::ado::mysql
