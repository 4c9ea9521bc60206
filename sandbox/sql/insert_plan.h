#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "sandbox/sql/ast.h"
#include "sandbox/sql/binder.h"
#include "sandbox/storage/catalog.h"
#include "sandbox/storage/sqlite.h"

namespace sandbox {

class DatabaseLink;
class Session;

/// How a row of an INSERT becomes a row of the table; worked out once for a list of columns.
struct InsertPlan {
  enum class Source { Cell, Default, Identity, RowVersion, Null };
  struct Slot {
    ColumnDef column;
    Source source = Source::Null;
    std::size_t cell = 0;
    ExprPtr default_value;  // null when there is none
  };
  std::vector<Slot> slots;  // in the order of the table's columns
  std::size_t cells = 0;    // the values a row brings
  SqliteStatement insert;
  const ColumnDef* identity = nullptr;
  bool verifies = false;  // foreign keys or checks look at the row afterwards
  bool has_explicit_identity = false;
};

/// Writes rows into one table: conversion, defaults, identity, NOT NULL and keys row by row;
/// foreign keys and checks in Finish. Within a write transaction; the caller undoes what failed.
class RowWriter {
 public:
  enum class Identity { Generated, Explicit };

  /// `columns` empty: all that take values. Raises 207, 264, 273, 544, 545, 8101.
  RowWriter(Session& session, DatabaseLink& link, const TableDef& table,
            const std::vector<std::string>& columns, Identity identity);

  std::size_t Width() const { return plan_->cells; }
  const InsertPlan& Plan() const { return *plan_; }
  /// One row; a null pointer in `values` is DEFAULT.
  void Write(std::span<const Value* const> values, std::span<const TypeInfo> types);
  void WriteDefaults();
  std::int64_t WriteQuery(const BoundQuery& query, const Binder& binder);
  /// Checks what looks at other rows, and notes the identity for scope_identity().
  void Finish();

 private:
  std::shared_ptr<InsertPlan> MakePlan(const std::vector<std::string>& columns, Identity identity);
  void BindSlot(const InsertPlan::Slot& slot, int index, const Value* value, const TypeInfo* type);
  void Store(int index, const ColumnDef& column, const Value& value, const TypeInfo& from);
  Value DefaultOf(const InsertPlan::Slot& slot);
  [[noreturn]] void RaiseDuplicate(const SqliteError& error);

  Session& session_;
  DatabaseLink& link_;
  const TableDef& table_;
  std::shared_ptr<InsertPlan> plan_;
  std::vector<Value> stored_;  // the row as it is stored, for messages
  std::int64_t first_row_ = 0;
  std::int64_t last_row_ = -1;
  std::optional<std::int64_t> last_identity_;
};

}  // namespace sandbox
