#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "endpoint/failure.h"
#include "endpoint/row_copier.h"
#include "endpoint/table_definition.h"
#include "platform/ado/connection.h"

namespace dorvane {

/// A MySQL table that rows of a SQL Server table are copied into.
class RowsToMySql : public IRowDestination {
 public:
  struct Target {
    std::string table;                 // unquoted
    std::vector<std::string> columns;  // unquoted, in the order of the fields
    bool leaves_duplicates_out = false;
  };

  /// Opens the table. `fields` and `facts` describe the source's columns in their order and, like
  /// the connection, must outlive this. Throws DestinationFailure.
  RowsToMySql(ado::Connection& destination, Target target,
              const std::vector<ado::FieldInfo>& fields, const std::vector<ColumnFacts>& facts);

  bool TakesBlocks() override;
  ado::Value ConvertValue(const ado::Value& value, std::size_t column,
                          ado::Arena& storage) override;
  BlockResult StoreBlock(const ado::RowBlock& converted, std::size_t first,
                         std::size_t count) override;
  RowOutcome StoreRow(const ado::RowBlock& converted, std::size_t row) override;
  std::vector<ValueChanges> Changes() const override { return {}; }

 private:
  /// The text assigned last to a field of the row in hand.
  struct LastText {
    std::size_t field = 0;
    std::string text;
  };

  void Assign(std::span<const ado::Value> row);
  void AppendChunks(ado::Field& field, std::string_view bytes);
  void Update();
  void RebuildLastText();
  RowOutcome Resolve(const DestinationFailure& failure, bool is_rebuilt);

  ado::Connection& destination_;
  const Target target_;
  const std::vector<ado::FieldInfo>& fields_;
  const std::vector<ColumnFacts>& facts_;
  ado::Recordset table_;
  bool has_chunks_ = false;  // the row in hand holds a chunk-copied field
  std::optional<LastText> last_text_;
};

}  // namespace dorvane
