#include "sandbox/engine/constraints.h"
#include "sandbox/engine/definitions.h"
#include "sandbox/engine/row_changes.h"
#include "sandbox/engine/sql_session.h"
#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

// The table that UPDATE or DELETE names, which may be an alias of its FROM clause.
const FromItem* FindTarget(const std::vector<FromItem>& from, const ObjectName& name) {
  const FromItem* by_table = nullptr;
  for (const FromItem& item : from) {
    if (!item.alias.empty() && name.schema.empty() && SameName(item.alias, name.name)) return &item;
    const bool schemas_agree =
        name.schema.empty() || item.name.schema.empty() || SameName(name.schema, item.name.schema);
    if (!item.query && item.group.empty() && schemas_agree && SameName(item.name.name, name.name))
      by_table = &item;
  }
  return by_table;
}

// The rows that a statement is about, with the target's row number as the first column.
struct Target {
  DatabaseLink* link = nullptr;
  const TableDef* table = nullptr;
  Scope scope;
  std::string from;
  std::string row;  // "s1.rowid"
};

Target BindTarget(Session& session, Binder& binder, const ObjectName& name,
                  const std::vector<FromItem>& from) {
  Target target;
  const FromItem* item = FindTarget(from, name);
  const ObjectName& table_name = item ? item->name : name;
  target.link = &session.LinkTo(table_name.database);
  target.link->BeginWrite();
  target.table = &TargetTable(*target.link, table_name, 208);
  std::string alias = table_name.name;
  if (item) {
    target.from = binder.BindFrom(from, target.scope);
    if (!item->alias.empty()) alias = item->alias;
  } else {
    target.from = binder.AddTable(session.FindRelation(table_name), alias, target.scope);
    if (!from.empty()) target.from += " CROSS JOIN " + binder.BindFrom(from, target.scope);
  }
  for (const ScopeSource& source : target.scope.sources) {
    const bool same_table = source.table && source.table->id == target.table->id;
    if (same_table && SameName(source.alias, alias)) target.row = source.stored + ".rowid";
  }
  return target;
}

std::string Tail(Session& session, Binder& binder, const Target& target, const ExprPtr& where,
                 const ExprPtr& top) {
  std::string text = " FROM " + target.from;
  if (where) text += " WHERE " + binder.BindCondition(*where, target.scope);
  text += " GROUP BY " + target.row;  // a row that joins many is changed once
  if (top) {
    const TypeInfo type = BigIntType();
    const Value count = session.Evaluate(*top, &type);
    text += " LIMIT " + SqliteLiteral(count, type);
  }
  return text;
}

}  // namespace

Flow SqlSession::Run(const UpdateStatement& update) {
  Binder binder(*this);
  Target target = BindTarget(*this, binder, update.table, update.from);
  const TableDef table = *target.table;
  struct Assigned {
    const ColumnDef* column;
    TypeInfo type;
    std::string variable;
  };
  std::vector<Assigned> assigned;
  std::string items = target.row;
  for (const Assignment& assignment : update.assignments) {
    const ColumnDef* column = nullptr;
    if (!assignment.column.empty()) {
      column = table.FindColumn(assignment.column);
      if (!column) Raise(207, assignment.column);
      if (column->identity) Raise(8102, column->name);
      if (column->type.type == SqlType::Timestamp) Raise(272);
      if (column->IsComputed()) Raise(271, column->name);
      if (column->generated != Generated::No) Raise(13537, table.FullName());
      for (const Assigned& other : assigned) {
        if (other.column == column) Raise(264, column->name);
      }
    }
    Bound bound;
    if (assignment.value) {
      bound = binder.BindValue(*assignment.value, target.scope);
    } else {
      Value value;
      if (!column->default_text.empty()) {
        Parser parser(column->default_text);
        value = Evaluate(*parser.ParseExpressionText(), &column->type);
      }
      bound = Binder::Constant(std::move(value), column->type);
    }
    if (column && !bound.is_null) CheckConvertible(bound.type, column->type, false);
    items += ", " + bound.sql;
    assigned.push_back({column, bound.is_null && column ? column->type : bound.type,
                        LowerText(assignment.variable)});
  }
  const std::string sql = "SELECT " + items + Tail(*this, binder, target, update.where, update.top);
  StatementScope scope(*target.link);
  SqliteStatement& statement = link_->Cached(sql);
  std::vector<RowChange> changes;
  {
    ResetGuard guard(statement);
    int index = 0;
    for (const auto& [value, type] : binder.Parameters())
      BindValue(statement.get(), ++index, value, type);
    while (link_->Step(statement)) {
      RowChange& change = changes.emplace_back();
      change.row = statement.Integer(0);
      for (std::size_t i = 0; i < assigned.size(); ++i) {
        Value value;
        ReadColumn(statement.get(), static_cast<int>(i) + 1, assigned[i].type, value);
        if (!assigned[i].variable.empty()) Assign(assigned[i].variable, value, assigned[i].type);
        if (!assigned[i].column) continue;
        change.values[assigned[i].column->id] =
            value.index() == 0
                ? Value()
                : StoreValue(*target.link, table, *assigned[i].column, value, assigned[i].type);
      }
    }
  }
  if (!changes.empty() && !changes.front().values.empty()) {
    RowChanger(*this, *target.link, "UPDATE").Update(table, changes);
  }
  scope.Keep();
  Done(static_cast<std::int64_t>(changes.size()));
  return Flow::Next;
}

Flow SqlSession::Run(const DeleteStatement& remove) {
  Binder binder(*this);
  Target target = BindTarget(*this, binder, remove.table, remove.from);
  const TableDef table = *target.table;
  const std::string sql =
      "SELECT " + target.row + Tail(*this, binder, target, remove.where, remove.top);
  StatementScope scope(*target.link);
  SqliteStatement& statement = link_->Cached(sql);
  std::vector<std::int64_t> rows;
  {
    ResetGuard guard(statement);
    int index = 0;
    for (const auto& [value, type] : binder.Parameters())
      BindValue(statement.get(), ++index, value, type);
    while (link_->Step(statement)) rows.push_back(statement.Integer(0));
  }
  RowChanger(*this, *target.link, "DELETE").Delete(table, rows);
  scope.Keep();
  Done(static_cast<std::int64_t>(rows.size()));
  return Flow::Next;
}

Flow SqlSession::Run(const TruncateStatement& truncate) {
  DatabaseLink& link = LinkTo(truncate.table.database);
  link.BeginWrite();
  const TableDef& table = TargetTable(link, truncate.table, 4701);
  for (const auto& [id, other] : link.Definitions().tables) {
    for (const ForeignKeyDef& key : other.foreign_keys) {
      if (key.parent_table == table.id && id != table.id) Raise(4712, table.name);
    }
  }
  link.Run(link.Cached("DELETE FROM " + table.StoredName()));
  link.ResetIdentity(table);
  Done(std::nullopt);
  return Flow::Next;
}

Flow SqlSession::Run(const ReseedStatement& reseed) {
  DatabaseLink& link = LinkTo(reseed.table.database);
  link.BeginWrite();
  const TableDef& table = TargetTable(link, reseed.table, 2501);
  if (!table.IdentityColumn()) Raise(7997, table.name);
  link.SetIdentity(table, reseed.last);
  Done(std::nullopt);
  return Flow::Next;
}

}  // namespace sandbox
