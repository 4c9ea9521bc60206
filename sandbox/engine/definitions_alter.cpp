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

void DropConstraint(DatabaseLink& link, TableDef& table, const std::string& name) {
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
  if (!index || !index->IsConstraint()) throw Followed(Error(3728, name), 3727);
  std::vector<int> columns;
  for (const IndexColumn& key : index->columns) columns.push_back(key.column_id);
  std::sort(columns.begin(), columns.end());
  for (const auto& [id, other] : link.Definitions().tables) {
    for (const ForeignKeyDef& key : other.foreign_keys) {
      std::vector<int> referenced = key.parent_columns;
      std::sort(referenced.begin(), referenced.end());
      if (key.parent_table != table.id || referenced != columns) continue;
      throw Followed(Error(3725, name, other.name, key.name), 3727);
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
  if (!missing.empty()) throw Followed(Error(4917, missing.front()), 4916);
  link.Store(table);
}

}  // namespace sandbox
