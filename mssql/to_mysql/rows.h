#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "endpoint/failure.h"
#include "endpoint/row_copier.h"
#include "endpoint/table_definition.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mysql {

/// While it lives, rows of a MySQL session may refer to rows that are still to come.
class ForeignKeyChecksOff {
 public:
  /// Throws DestinationFailure.
  explicit ForeignKeyChecksOff(ado::Connection& destination);
  ForeignKeyChecksOff(const ForeignKeyChecksOff&) = delete;
  ForeignKeyChecksOff& operator=(const ForeignKeyChecksOff&) = delete;
  ~ForeignKeyChecksOff();

 private:
  ado::Connection& destination_;
};

/// A MySQL table that rows of a SQL Server table are copied into.
class RowsToMySql : public IRowDestination {
 public:
  struct Target {
    ado::TableName table;                    // unquoted
    std::vector<std::string> columns;        // unquoted, in the order of the fields
    bool is_new = false;                     // made by this run
    bool is_compared = false;                // takes no rows
    bool is_ahead_of_parents = false;        // its rows may refer to tables that are copied later
    std::vector<std::size_t> identity = {};  // see IdentifyingFields
    // What one new table says of blocks holds for all; outlives this.
    std::optional<bool>* new_takes_blocks = nullptr;
  };

  /// Opens the table. `fields` and `facts` describe the source's columns in their order; `fields`
  /// and the connection must outlive this. Throws DestinationFailure, for a table or column that is
  /// not there as well.
  RowsToMySql(ado::Connection& destination, Target target,
              const std::vector<ado::FieldInfo>& fields, std::vector<ColumnFacts> facts);

  bool TakesBlocks() override;
  ado::Value ConvertValue(const ado::Value& value, std::size_t column,
                          ado::Arena& storage) override;
  BlockResult StoreBlock(const ado::RowBlock& converted, std::size_t first,
                         std::size_t count) override;
  RowOutcome StoreRow(const ado::RowBlock& converted, std::size_t row) override;
  void RowStored(std::span<const ado::Value> source_row) override;
  std::vector<ValueChanges> Changes() const override { return {replaced_texts_, cut_fractions_}; }

 private:
  bool IsTransactionalWithoutTriggers();
  /// Takes the fractions that an existing table keeps for those that a new one would get.
  void LearnFractions();
  void Assign(std::span<const ado::Value> row);
  void AppendChunks(ado::Field& field, std::string_view bytes);
  void Update();
  /// For a duplicate: true when the row itself was there before.
  bool IsThere(std::span<const ado::Value> row);
  /// Puts "?" for what the columns of the pending row cannot store; how many texts it changed.
  std::int64_t ReplaceCharacters(std::span<const ado::Value> row);
  /// The character set of a column; empty for one without.
  const std::string& CharacterSetOf(const std::string& column);
  std::string AsStored(std::string_view text, const std::string& character_set);

  ado::Connection& destination_;
  const Target target_;
  const std::vector<ado::FieldInfo>& fields_;
  std::vector<ColumnFacts> facts_;
  std::vector<std::size_t> time_columns_;
  std::unique_ptr<ForeignKeyChecksOff> checks_off_;
  std::optional<ado::Recordset> table_;  // open for rows unless they are only compared
  std::map<std::string, std::string> character_sets_;  // by column; empty until they are needed
  ValueChanges replaced_texts_{
      .what = "hold characters that the destination cannot store; they were replaced by '?'",
      .is_loss = true};
  ValueChanges cut_fractions_{.what = "fractions of a second were cut"};
};

}  // namespace dorvane::to_mysql
