#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "sandbox/binder/binder.h"
#include "sandbox/parser/ast.h"
#include "sandbox/storage/catalog.h"
#include "sandbox/storage/sqlite.h"

namespace sandbox {

class DatabaseLink;
class Session;

/// What a column of a row's period gets when the row is written: the time now (UTC), or the last.
Value PeriodValue(const ColumnDef& column);
/// A row version as its column holds it.
Value RowVersionValue(std::int64_t version);

/// How a row of an INSERT becomes a row of the table; worked out once for a list of columns.
struct InsertPlan {
  enum class Source { Cell, Default, Identity, RowVersion, Period, Null };
  struct Slot {
    ColumnDef column;
    Source source = Source::Null;
    std::size_t cell = 0;
    ExprPtr default_value;  // null when there is none
  };
  std::vector<Slot> slots;  // in the order of the table's columns
  std::size_t cells = 0;    // the values a row brings
  SqliteStatement insert;
  SqliteStatement insert_block;  // RowWriter::kBlockRows at once; prepared when first needed
  bool takes_blocks = false;     // its values can be worked out again when a block fails
  const ColumnDef* identity = nullptr;
  bool verifies = false;  // foreign keys, checks or lengths look at the row afterwards
  bool has_explicit_identity = false;
};

/// Rows for a RowWriter: the values of the selected one, cell by cell.
class RowCells {
 public:
  struct Cell {
    const Value* value = nullptr;  // null: DEFAULT
    TypeInfo type;
  };
  virtual ~RowCells() = default;
  virtual void Select(std::size_t) {}
  /// The cell's value, which stays until it is asked for in another row.
  virtual Cell Get(std::size_t cell) = 0;
};

/// Writes rows into one table: conversion, defaults, identity, NOT NULL and keys row by row;
/// foreign keys and checks in Finish. Within a write transaction; the caller undoes what failed.
class RowWriter {
 public:
  enum class Identity { Generated, Explicit };
  /// SQLite starts and ends each statement at a cost of about two rows, so WriteRows gives it so
  /// many at once.
  static constexpr std::size_t kBlockRows = 16;

  /// `columns` empty: all that take values. Raises 207, 264, 273, 544, 545, 8101.
  RowWriter(Session& session, DatabaseLink& link, const TableDef& table,
            const std::vector<std::string>& columns, Identity identity);

  std::size_t Width() const { return plan_->cells; }
  const InsertPlan& Plan() const { return *plan_; }
  void WriteRows(RowCells& rows, std::size_t count);
  /// One row; a null pointer in `values` is DEFAULT.
  void Write(std::span<const Value* const> values, std::span<const TypeInfo> types);
  void WriteDefaults();
  std::int64_t WriteQuery(const BoundQuery& query, const Binder& binder);
  /// Checks what looks at other rows, and notes the identity for scope_identity().
  void Finish(bool checks_constraints = true);

 private:
  std::shared_ptr<InsertPlan> MakePlan(const std::vector<std::string>& columns, Identity identity);
  /// Where a value goes.
  struct Place {
    SqliteStatement& statement;
    int index;
  };

  void WriteRow(RowCells& row);
  bool WriteBlock(RowCells& rows, std::size_t first);
  void BindRow(SqliteStatement& statement, int first_index, RowCells& row);
  void BindSlot(const InsertPlan::Slot& slot, const Place& place, RowCells& row);
  void BindCell(const InsertPlan::Slot& slot, const Place& place, const RowCells::Cell& cell);
  void Store(const Place& place, const ColumnDef& column, const Value& value, const TypeInfo& from);
  Value DefaultOf(const InsertPlan::Slot& slot);

  Session& session_;
  DatabaseLink& link_;
  const TableDef& table_;
  std::shared_ptr<InsertPlan> plan_;
  std::vector<Value> stored_;  // values as they are stored, by the parameter that refers to them
  std::int64_t first_row_ = 0;
  std::int64_t last_row_ = -1;
};

}  // namespace sandbox
