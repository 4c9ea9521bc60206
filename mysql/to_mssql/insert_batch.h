#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "endpoint/table_definition.h"
#include "mysql/to_mssql/literal_shape.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

/// Rows of one table on their way as INSERT statements, several rows to a statement and many
/// statements to a batch. What throws throws RunTimeError.
class InsertBatch {
 public:
  struct Manner {
    bool gives_identity = false;  // the rows have values for the identity column
    bool sends_pieces = true;     // of long values, instead of their literals
  };

  /// Names without brackets. `facts` are the columns' and, like the connection, must outlive this.
  InsertBatch(ado::Connection& destination, const ado::TableName& table,
              const std::vector<std::string>& columns, const std::vector<ColumnFacts>& facts,
              Manner manner);

  /// Of the destination's columns, Empty where it is not known: such numbers do not share a
  /// statement.
  void SetTypes(std::vector<ado::DataType> types) { types_ = std::move(types); }

  /// One row as a statement; After() belongs behind it, however it ends.
  std::string StatementOf(std::span<const ado::Value> row) const;
  /// Sends that statement, long values beside it in pieces.
  void ExecuteRow(std::span<const ado::Value> row);
  /// Empty without an identity column.
  const std::string& After() const { return identity_off_; }

  /// Begins with `first`, which ends with ";" unless it is empty.
  void Begin(std::string_view first);
  /// Sends what is there when the batch has become long.
  void Add(std::span<const ado::Value> row);
  /// Sends the rest.
  void Finish();

 private:
  bool GoesInPieces(std::span<const ado::Value> row) const;
  bool JoinsLastInsert();
  /// With "?" for long values, which are appended to `long_values`, unless that is null.
  std::string InsertOf(std::span<const ado::Value> row, std::vector<ado::Value>* long_values) const;
  void Send();

  ado::Connection& destination_;
  const std::vector<ColumnFacts>& facts_;
  const bool sends_pieces_;
  std::vector<ado::DataType> types_;
  std::string head_;  // "INSERT INTO ... (...) "
  std::string identity_on_;
  std::string identity_off_;

  std::string tuple_;                        // the row in hand
  std::vector<LiteralShape> row_shapes_;     // of its literals
  std::vector<LiteralShape> insert_shapes_;  // those of the INSERT that is being built
  std::size_t insert_rows_ = 0;              // rows in that INSERT; 0: there is none
  std::string text_;
};

}  // namespace dorvane::to_mssql
