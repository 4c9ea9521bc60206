#include "sandbox/engine/constraints.h"
#include "sandbox/engine/definitions.h"
#include "sandbox/engine/row_changes.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"

namespace sandbox {

namespace {

// The rows that a statement is about, with the target's row number as the first column.
struct Target {
  DatabaseLink* link = nullptr;
  const TableDef* table = nullptr;
  Scope scope;
  std::string from;
  std::string row;  // "s1.rowid"
};

Target BindTarget(Session& session, Binder& binder, const ObjectName& name) {
  Target target;
  target.link = &session.LinkTo(name.database);
  target.link->BeginWrite();
  target.table = &TargetTable(*target.link, name, 208);
  target.from = binder.AddTable(session.FindRelation(name), name.name, target.scope);
  target.row = target.scope.sources.front().stored + ".rowid";
  return target;
}

std::string Tail(Binder& binder, const Target& target, const ExprPtr& where) {
  const std::string text = " FROM " + target.from;
  return where ? text + " WHERE " + binder.BindCondition(*where, target.scope) : text;
}

// A column that a SET clause gives a new value.
struct Assigned {
  const ColumnDef* column;
  TypeInfo type;  // of the value
};

// The column, which may be changed.
const ColumnDef* AssignedColumn(const TableDef& table, const std::string& name,
                                const std::vector<Assigned>& others) {
  const ColumnDef* column = table.FindColumn(name);
  if (!column) Raise(207, name);
  if (column->identity) Raise(8102, column->name);
  if (column->type.type == SqlType::Timestamp) Raise(272);
  if (column->IsComputed()) Raise(271, column->name);
  if (column->generated != Generated::No) Raise(13537, table.FullName());
  for (const Assigned& other : others) {
    if (other.column == column) Raise(264, column->name);
  }
  return column;
}

// The row that the statement is at.
RowChange ReadChange(DatabaseLink& link, const TableDef& table,
                     const std::vector<Assigned>& assigned, const SqliteStatement& statement) {
  RowChange change;
  change.row = statement.Integer(0);
  for (std::size_t i = 0; i < assigned.size(); ++i) {
    const auto& [column, type] = assigned[i];
    Value value;
    ReadColumn(statement.get(), static_cast<int>(i) + 1, type, value);
    const bool is_null = IsNull(value);
    change.values[column->id] = is_null ? Value() : StoreValue(link, table, *column, value, type);
  }
  return change;
}

}  // namespace

void ChangeRunner::Run(const UpdateStatement& update) {
  Binder binder(session_);
  Target target = BindTarget(session_, binder, update.table);
  const TableDef table = *target.table;
  std::vector<Assigned> assigned;
  std::string items = target.row;
  for (const Assignment& assignment : update.assignments) {
    const ColumnDef* column = AssignedColumn(table, assignment.column, assigned);
    const Bound bound = binder.BindValue(*assignment.value, target.scope);
    if (!bound.is_null) CheckConvertible(bound.type, column->type, false);
    items += ", " + bound.sql;
    assigned.push_back({column, bound.is_null ? column->type : bound.type});
  }
  const std::string sql = "SELECT " + items + Tail(binder, target, update.where);
  StatementScope scope(*target.link);
  SqliteStatement& statement = Link().Cached(sql);
  std::vector<RowChange> changes;
  {
    ResetGuard guard(statement);
    binder.SetParameters(statement);
    while (Link().Step(statement)) {
      changes.push_back(ReadChange(*target.link, table, assigned, statement));
    }
  }
  if (!changes.empty()) RowChanger(session_, *target.link, "UPDATE").Update(table, changes);
  scope.Keep();
  Done(static_cast<std::int64_t>(changes.size()));
}

void ChangeRunner::Run(const DeleteStatement& remove) {
  Binder binder(session_);
  Target target = BindTarget(session_, binder, remove.table);
  const TableDef table = *target.table;
  const std::string sql = "SELECT " + target.row + Tail(binder, target, remove.where);
  StatementScope scope(*target.link);
  SqliteStatement& statement = Link().Cached(sql);
  std::vector<std::int64_t> rows;
  {
    ResetGuard guard(statement);
    binder.SetParameters(statement);
    while (Link().Step(statement)) rows.push_back(statement.Integer(0));
  }
  RowChanger(session_, *target.link, "DELETE").Delete(table, rows);
  scope.Keep();
  Done(static_cast<std::int64_t>(rows.size()));
}

void ChangeRunner::Run(const TruncateStatement& truncate) {
  DatabaseLink& link = session_.LinkTo(truncate.table.database);
  link.BeginWrite();
  const TableDef& table = TargetTable(link, truncate.table, 4701);
  for (const auto& [id, other] : link.Definitions().tables) {
    for (const ForeignKeyDef& key : other.foreign_keys) {
      if (key.parent_table == table.id && id != table.id) Raise(4712, table.name);
    }
  }
  link.Run(link.Cached("DELETE FROM " + table.StoredName()));
  link.ResetIdentity(table);
  Done();
}

void ChangeRunner::Run(const ReseedStatement& reseed) {
  DatabaseLink& link = session_.LinkTo(reseed.table.database);
  link.BeginWrite();
  const TableDef& table = TargetTable(link, reseed.table, 2501);
  if (!table.IdentityColumn()) Raise(7997, table.name);
  link.SetIdentity(table, reseed.last);
  Done();
}

}  // namespace sandbox
