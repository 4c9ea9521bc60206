#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "endpoint/failure.h"
#include "endpoint/row_copier.h"
#include "endpoint/table_definition.h"
#include "mysql/to_mssql/code_page.h"
#include "mysql/to_mssql/insert_batch.h"
#include "mysql/to_mssql/literals.h"
#include "mysql/to_mssql/waiting_rows.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

/// A SQL Server table that rows of a MySQL table are copied into.
class RowsToMsSql : public IRowDestination {
 public:
  struct Target {
    ado::TableName table;  // without brackets, as the columns are
    std::vector<std::string> columns;
    bool has_identity_column = false;        // its values come with the rows
    bool is_new = false;                     // just created: no rows, no triggers, no foreign keys
    bool is_loaded = true;                   // by the server's bulk protocol where that is possible
    bool sends_pieces = true;                // of long values, instead of their literals
    WaitingRows* waiting = nullptr;          // for rows of a table that is not new; outlives this
    std::vector<std::size_t> identity = {};  // see IdentifyingFields
    CodePages pages = {};                    // of a new table's columns
  };

  /// `fields` and `facts` describe the source's columns in the order of the target's; `fields` and
  /// the connection must outlive this.
  RowsToMsSql(ado::Connection& destination, Target target,
              const std::vector<ado::FieldInfo>& fields, std::vector<ColumnFacts> facts);

  bool TakesBlocks() override;
  ado::Value ConvertValue(const ado::Value& value, std::size_t column,
                          ado::Arena& storage) override;
  BlockResult StoreBlock(const ado::RowBlock& converted, std::size_t first,
                         std::size_t count) override;
  RowOutcome StoreRow(const ado::RowBlock& converted, std::size_t row) override;
  void RowStored(std::span<const ado::Value> source_row) override;
  std::vector<ValueChanges> Changes() const override;

 private:
  BlockResult InsertBlock(const ado::RowBlock& converted, std::size_t first, std::size_t count);
  bool OpenLoad();
  BlockResult LoadBlock(const ado::RowBlock& converted, std::size_t first, std::size_t count);
  void LoadRows(const ado::RowBlock& converted, std::size_t first, std::size_t count);
  RowOutcome ExecuteRow(std::span<const ado::Value> row);
  /// For a duplicate: true when the row itself was there before.
  bool IsThere(std::span<const ado::Value> row);
  RowOutcome RefusalOf(const ado::Error& error, std::span<const ado::Value> row);
  void LearnTypes();
  /// Of a table that was there.
  void LearnColumns(std::vector<ado::DataType>& types);
  bool HasTriggers();
  bool RefersToItself();

  ado::Connection& destination_;
  Target target_;
  const std::vector<ado::FieldInfo>& fields_;
  std::vector<ColumnFacts> facts_;
  InsertBatch inserts_;
  CodePages pages_;                      // of what the columns hold of texts
  std::optional<ado::Recordset> load_;   // opened for the first block worth it
  ado::RowBlock loaded_;                 // a block's rows without those that are not loaded
  std::vector<std::size_t> not_loaded_;  // the positions of those

  // In rows stored, by the bits of TimeChange.
  std::array<ValueChanges, kTimeChanges> changes_{
      ValueChanges{.what = "dates that do not exist became 1753-01-01"},
      ValueChanges{.what = "dates before 1753-01-01 were raised to it"},
      ValueChanges{.what = "times were put on 1899-12-30"},
      ValueChanges{.what = "times below zero or beyond a day were added to 1899-12-30"},
      ValueChanges{.what = "fractions of a second were cut"}};
  ValueChanges dates_left_out_{.what = "dates that do not exist became NULL"};
  ValueChanges replaced_texts_{
      .what = "hold characters that the destination cannot store; they were replaced by '?'",
      .is_loss = true};
  ValueChanges first_days_{.what = "dates that do not exist became 0001-01-01"};
  std::int64_t handled_ = 0;  // rows
};

}  // namespace dorvane::to_mssql
