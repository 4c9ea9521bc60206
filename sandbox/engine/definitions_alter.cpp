#include <algorithm>

#include "sandbox/catalog/session.h"
#include "sandbox/engine/constraints.h"
#include "sandbox/engine/definitions.h"
#include "sandbox/engine/stored_columns.h"
#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

bool Uses(const std::vector<int>& columns, int id) {
  return std::find(columns.begin(), columns.end(), id) != columns.end();
}

// The name and kind of what stands on the column, for messages 5074 and 4922.
void RefuseIfUsed(DatabaseLink& link, const TableDef& table, const ColumnDef& column,
                  const char* action) {
  const auto refuse = [&](const char* kind, const std::string& name) {
    SqlError error = Error(5074, kind, name, column.name);
    error.messages.push_back(Error(4922, action, column.name).messages.front());
    throw error;
  };
  for (const IndexDef& index : table.indexes) {
    for (const IndexColumn& key : index.columns) {
      if (key.column_id == column.id) refuse(index.IsConstraint() ? "object" : "index", index.name);
    }
    const bool filters = index.filter.find("[" + column.name + "]") != std::string::npos;
    if (filters || Uses(index.included, column.id)) refuse("index", index.name);
  }
  for (const ForeignKeyDef& key : table.foreign_keys) {
    if (Uses(key.columns, column.id)) refuse("object", key.name);
  }
  for (const auto& [id, other] : link.Definitions().tables) {
    for (const ForeignKeyDef& key : other.foreign_keys) {
      if (key.parent_table == table.id && Uses(key.parent_columns, column.id))
        refuse("object", key.name);
    }
  }
  const std::string name = "[" + column.name + "]";
  for (const CheckDef& check : table.checks) {
    if (check.text.find(name) != std::string::npos) refuse("object", check.name);
  }
  for (const ColumnDef& other : table.columns) {
    if (other.computed_text.find(name) != std::string::npos) refuse("column", other.name);
  }
}

}  // namespace

void AddColumns(Session& session, DatabaseLink& link, const TableDef& table,
                const std::vector<int>& column_ids, bool has_rows) {
  for (const int id : column_ids) {
    const ColumnDef& column = table.Column(id);
    link.Connection().Execute("ALTER TABLE " + table.StoredName() + " ADD COLUMN " +
                              StoredColumnText(session, table, column));
    if (column.IsComputed()) continue;
    const bool fills = !column.nullable && !column.default_text.empty();
    const bool generated = column.identity || column.type.type == SqlType::Timestamp;
    if (!has_rows) continue;
    if (!column.nullable && !fills && !generated) Raise(4901, column.name, table.name);
    if (!fills && !generated) continue;
    SqliteStatement rows =
        link.Connection().Prepare("SELECT rowid FROM " + table.StoredName() + " ORDER BY rowid");
    SqliteStatement update = link.Connection().Prepare(fmt::format(
        "UPDATE {} SET {}=?1 WHERE rowid=?2", table.StoredName(), TableDef::StoredColumn(id)));
    std::vector<std::int64_t> numbers;
    while (link.Step(rows)) numbers.push_back(rows.Integer(0));
    ExprPtr expr;
    if (fills) {
      Parser parser(column.default_text);
      expr = parser.ParseExpressionText();
    }
    for (const std::int64_t number : numbers) {
      Value value;
      if (column.identity) {
        value = Convert(link.NextIdentity(table, column), BigIntType(), column.type);
      } else if (fills) {
        value = session.Evaluate(*expr, &column.type);
      } else {
        value = Convert(link.NextRowVersion(), BigIntType(), column.type);
      }
      BindValue(update.get(), 1, value, column.type);
      update.Bind(2, number);
      link.Run(update);
    }
  }
}

void DropConstraint(DatabaseLink& link, TableDef& table, const std::string& name, bool if_exists) {
  for (ColumnDef& column : table.columns) {
    if (column.default_id == 0 || !SameName(column.default_name, name)) continue;
    column.default_id = 0;
    column.default_name.clear();
    column.default_text.clear();
    return;
  }
  if (std::erase_if(table.foreign_keys, [&](const auto& key) { return SameName(key.name, name); }))
    return;
  if (std::erase_if(table.checks, [&](const auto& check) { return SameName(check.name, name); }))
    return;
  const IndexDef* index = table.FindIndex(name);
  if (!index || !index->IsConstraint()) {
    if (if_exists) return;
    SqlError error = Error(3728, name);
    error.messages.push_back(Error(3727).messages.front());
    throw error;
  }
  std::vector<int> columns;
  for (const IndexColumn& key : index->columns) columns.push_back(key.column_id);
  std::sort(columns.begin(), columns.end());
  for (const auto& [id, other] : link.Definitions().tables) {
    for (const ForeignKeyDef& key : other.foreign_keys) {
      std::vector<int> referenced = key.parent_columns;
      std::sort(referenced.begin(), referenced.end());
      if (key.parent_table != table.id || referenced != columns) continue;
      SqlError error = Error(3725, name, other.name, key.name);
      error.messages.push_back(Error(3727).messages.front());
      throw error;
    }
  }
  link.Connection().Execute("DROP INDEX IF EXISTS " + table.StoredIndexName(*index));
  const int id = index->id;
  std::erase_if(table.indexes, [&](const IndexDef& other) { return other.id == id; });
}

void SwitchConstraints(Session& session, DatabaseLink& link, TableDef& table,
                       const AlterTableStatement& alter) {
  const bool enables = alter.action == AlterTableStatement::Action::Check;
  const bool verifies = enables && alter.checks_rows.value_or(false);
  std::vector<std::string> missing = alter.names;
  const auto switch_one = [&](auto& constraint) {
    const auto named = [&](const std::string& name) { return SameName(name, constraint.name); };
    if (!alter.names.empty() && std::erase_if(missing, named) == 0) return false;
    constraint.disabled = !enables;
    constraint.not_trusted = !verifies;
    return verifies;
  };
  for (ForeignKeyDef& key : table.foreign_keys) {
    if (switch_one(key)) VerifyForeignKey(link, table, key, INT64_MIN, INT64_MAX, "ALTER TABLE");
  }
  for (CheckDef& check : table.checks) {
    if (switch_one(check))
      VerifyCheck(session, link, table, check, INT64_MIN, INT64_MAX, "ALTER TABLE");
  }
  if (!missing.empty()) {
    SqlError error = Error(4917, missing.front());
    error.messages.push_back(Error(4916).messages.front());
    throw error;
  }
  link.Store(table);
}

void DropColumn(DatabaseLink& link, TableDef& table, const std::string& name) {
  const ColumnDef* column = table.FindColumn(name);
  if (!column) Raise(4924, "DROP COLUMN", name, table.name);
  RefuseIfUsed(link, table, *column, "DROP");
  if (column->default_id != 0) {
    SqlError error = Error(5074, "object", column->default_name, column->name);
    error.messages.push_back(Error(4922, "DROP", column->name).messages.front());
    throw error;
  }
  link.Connection().Execute("ALTER TABLE " + table.StoredName() + " DROP COLUMN " +
                            TableDef::StoredColumn(column->id));
  const int id = column->id;
  std::erase_if(table.columns, [&](const ColumnDef& other) { return other.id == id; });
}

void AlterColumn(Session& session, DatabaseLink& link, TableDef& table,
                 const ColumnSyntax& syntax) {
  ColumnDef* column = nullptr;
  for (ColumnDef& candidate : table.columns) {
    if (SameName(candidate.name, syntax.column.name)) column = &candidate;
  }
  if (!column) Raise(4924, "ALTER COLUMN", syntax.column.name, table.name);
  RefuseIfUsed(link, table, *column, "ALTER");
  if (column->IsComputed()) Raise(4928, column->name);
  const TypeInfo before = column->type;
  std::optional<bool> nullable = syntax.nullable;
  ColumnDef changed = syntax.column;
  ResolveType(link, 1, syntax.alias_type, changed, nullable);
  const TypeInfo after = changed.type;
  const std::string stored = TableDef::StoredColumn(column->id);
  SqliteStatement rows = link.Connection().Prepare(
      fmt::format("SELECT rowid, {} FROM {}", stored, table.StoredName()));
  std::vector<std::pair<std::int64_t, Value>> values;
  while (link.Step(rows)) {
    Value value;
    ReadColumn(rows.get(), 1, before, value);
    values.emplace_back(rows.Integer(0), std::move(value));
  }
  rows.Reset();
  const std::string full_name = fmt::format("{}.{}", link.Name(), table.FullName());
  column->type = after;
  column->user_type = changed.user_type;
  column->collation = changed.collation;
  column->nullable = nullable.value_or(true);
  // A column of its own with the new collation takes the old one's place.
  const int old_id = column->id;
  column->id = table.next_column_id++;
  link.Connection().Execute("ALTER TABLE " + table.StoredName() + " ADD COLUMN " +
                            StoredColumnText(session, table, *column));
  SqliteStatement update = link.Connection().Prepare(
      fmt::format("UPDATE {} SET {}=?1 WHERE rowid=?2", table.StoredName(),
                  TableDef::StoredColumn(column->id)));
  for (const auto& [row, value] : values) {
    if (value.index() == 0 && !column->nullable) Raise(515, column->name, full_name, "UPDATE");
    BindValue(update.get(), 1, StoreValue(link, table, *column, value, before), after);
    update.Bind(2, row);
    link.Run(update);
  }
  link.Connection().Execute("ALTER TABLE " + table.StoredName() + " DROP COLUMN " +
                            TableDef::StoredColumn(old_id));
}

}  // namespace sandbox
