#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "endpoint/failure.h"
#include "endpoint/row_copier.h"
#include "endpoint/table_definition.h"
#include "mysql/to_mssql/literal_shape.h"
#include "mysql/to_mssql/literals.h"
#include "mysql/to_mssql/waiting_rows.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

/// A SQL Server table that rows of a MySQL table are copied into.
class RowsToMsSql : public IRowDestination {
 public:
  struct Target {
    std::string table;  // without brackets, as the columns are
    std::vector<std::string> columns;
    bool has_identity_column = false;        // its values come with the rows
    bool is_new = false;                     // just created: no rows, no triggers, no foreign keys
    WaitingRows* waiting = nullptr;          // for rows of a table that is not new; outlives this
    std::vector<std::size_t> identity = {};  // see IdentifyingFields
  };

  /// `fields` and `facts` describe the source's columns in the order of the target's and, like the
  /// connection, must outlive this.
  RowsToMsSql(ado::Connection& destination, Target target,
              const std::vector<ado::FieldInfo>& fields, const std::vector<ColumnFacts>& facts);

  bool TakesBlocks() override;
  ado::Value ConvertValue(const ado::Value& value, std::size_t column,
                          ado::Arena& storage) override;
  BlockResult StoreBlock(const ado::RowBlock& converted, std::size_t first,
                         std::size_t count) override;
  RowOutcome StoreRow(const ado::RowBlock& converted, std::size_t row) override;
  std::vector<ValueChanges> Changes() const override;

 private:
  using ChangeCounts = std::array<std::int64_t, kTimeChanges>;  // by the bits of TimeChange

  void AppendRow(std::span<const ado::Value> literals);
  bool JoinsLastInsert();
  void SendBatch();
  RowOutcome ExecuteRow(const std::string& statement);
  /// For a duplicate: true when the row itself was there before.
  bool IsThere(std::span<const ado::Value> literals);
  RowOutcome RefusalOf(const ado::Error& error, const std::string& statement);
  void LearnTypes();
  bool HasTriggers();
  bool RefersToItself();
  static void CountChanges(std::span<const ado::Value> literals, ChangeCounts& counts);

  ado::Connection& destination_;
  const Target target_;
  const std::vector<ado::FieldInfo>& fields_;
  const std::vector<ColumnFacts>& facts_;
  std::vector<ado::DataType> types_;  // of the destination's columns; Empty: not known
  std::string head_;                  // "INSERT INTO ... (...) "
  std::string identity_on_;           // empty without an identity column
  std::string identity_off_;

  std::string literal_;                      // the value in hand, in the reading thread
  std::vector<LiteralShape> row_shapes_;     // of the row in hand
  std::vector<LiteralShape> insert_shapes_;  // those of the INSERT that is being built
  std::size_t insert_rows_ = 0;              // rows in that INSERT; 0: there is none
  std::string batch_;
  ChangeCounts changes_{};    // of the rows stored
  std::int64_t handled_ = 0;  // rows
};

}  // namespace dorvane::to_mssql
