#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <string>

#include "endpoint/failure.h"
#include "endpoint/row_copier.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

/// Rows that a foreign key refused while the rows that they refer to may still come: children that
/// are listed before their parents, rows in circles.
class WaitingRows {
 public:
  struct Row {
    std::string table;      // unquoted
    std::int64_t position;  // among the rows of its table, from 1
    std::string statement;
    std::string after;    // to be executed after the statement; may be empty
    ErrorSummary reason;  // why it was refused: the server's own number and words
  };

  /// One of `count` collections that share what memory may hold.
  explicit WaitingRows(int count = 1) : most_bytes_(kMostBytes / static_cast<std::size_t>(count)) {}
  /// False, and no change, when too many wait already.
  bool Add(Row row);
  /// Takes over the rows of another.
  void Join(WaitingRows& other);
  /// Sends all of them over and over, as long as one more is taken; adds those that never were to
  /// the accounts of their tables. Forgets them.
  void Store(ado::Connection& destination, std::map<std::string, RowAccount>& accounts);

 private:
  // Of statements: memory must not grow with the tables.
  static constexpr std::size_t kMostBytes = 64 << 20;

  std::size_t most_bytes_;
  std::list<Row> rows_;
  std::size_t bytes_ = 0;
};

}  // namespace dorvane::to_mssql
