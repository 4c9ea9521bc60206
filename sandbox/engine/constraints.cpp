#include "sandbox/engine/constraints.h"

#include <algorithm>

#include "sandbox/catalog/database_link.h"
#include "sandbox/catalog/session.h"
#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

// ", column 'a'" when the constraint is about one column.
std::string ColumnPart(const TableDef& table, const std::vector<int>& columns) {
  if (columns.size() != 1) return "";
  return ", column '" + table.Column(columns.front()).name + "'";
}

bool FindsRow(DatabaseLink& link, const std::string& sql, std::int64_t first, std::int64_t last) {
  SqliteStatement& statement = link.Cached(sql);
  ResetGuard guard(statement);
  statement.Bind(1, first).Bind(2, last);
  return link.Step(statement);
}

// The index that SQLite's message of a broken uniqueness means; null when none.
const IndexDef* BrokenIndex(const TableDef& table, std::string_view message) {
  for (const IndexDef& index : table.indexes) {
    if (!index.unique) continue;
    std::string columns;
    for (const IndexColumn& column : index.columns) {
      columns += (columns.empty() ? "" : ", ") + table.StoredName() + "." +
                 TableDef::StoredColumn(column.column_id);
    }
    if (message.ends_with(": " + columns) ||
        message.find("'" + table.StoredIndexName(index) + "'") != std::string_view::npos) {
      return &index;
    }
  }
  return nullptr;
}

// Null when the row breaks none, filtered ones aside.
const IndexDef* FirstBrokenIndex(DatabaseLink& link, const TableDef& table,
                                 const std::function<Value(int column_id)>& value,
                                 std::int64_t own_row) {
  std::vector<const IndexDef*> unique;
  for (const IndexDef& index : table.indexes) {
    if (index.unique && !index.disabled && index.filter.empty()) unique.push_back(&index);
  }
  std::stable_sort(unique.begin(), unique.end(), [](const IndexDef* a, const IndexDef* b) {
    return a->primary != b->primary ? a->primary : a->id < b->id;
  });
  for (const IndexDef* index : unique) {
    std::string match = "rowid <> ?1";
    for (std::size_t i = 0; i < index->columns.size(); ++i) {
      match +=
          fmt::format(" AND {} IS ?{}", TableDef::StoredColumn(index->columns[i].column_id), i + 2);
    }
    SqliteStatement& statement =
        link.Cached(fmt::format("SELECT 1 FROM {} WHERE {}", table.StoredName(), match));
    ResetGuard guard(statement);
    statement.Bind(1, own_row);
    for (std::size_t i = 0; i < index->columns.size(); ++i) {
      const int column = index->columns[i].column_id;
      BindValue(statement.get(), static_cast<int>(i) + 2, value(column), table.Column(column).type);
    }
    if (link.Step(statement)) return index;
  }
  return nullptr;
}

}  // namespace

Value StoreValue(DatabaseLink& link, const TableDef& table, const ColumnDef& column,
                 const Value& value, const TypeInfo& from) {
  CheckConvertible(from, column.type, false);
  try {
    return ConvertToStore(value, from, column.type);
  } catch (const Truncation& truncation) {
    Raise(2628, fmt::format("{}.{}", link.Name(), table.FullName()), column.name, truncation.kept);
  }
}

std::string KeyText(const TableDef& table, const IndexDef& index, const std::vector<Value>& keys) {
  std::string text;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const TypeInfo& type = table.Column(index.columns[i].column_id).type;
    text += (i ? ", " : "") + (IsNull(keys[i]) ? std::string("<NULL>") : ValueText(keys[i], type));
  }
  return text;
}

void RaiseDuplicate(DatabaseLink& link, const TableDef& table, const SqliteError& error,
                    const std::function<Value(int column_id)>& value, std::int64_t own_row) {
  const IndexDef* reported = BrokenIndex(table, error.what());
  if (!reported) throw error;
  const IndexDef* first = FirstBrokenIndex(link, table, value, own_row);
  const IndexDef& index = first ? *first : *reported;
  std::vector<Value> keys;
  for (const IndexColumn& column : index.columns) keys.push_back(value(column.column_id));
  const std::string text = KeyText(table, index, keys);
  if (!index.IsConstraint()) Raise(2601, table.FullName(), index.name, text);
  Raise(2627, index.primary ? "PRIMARY KEY" : "UNIQUE KEY", index.name, table.FullName(), text);
}

void VerifyForeignKey(DatabaseLink& link, const TableDef& table, const ForeignKeyDef& key,
                      std::int64_t first, std::int64_t last, std::string_view statement) {
  const TableDef& parent = link.Definitions().tables.at(key.parent_table);
  std::string present, match;
  for (std::size_t i = 0; i < key.columns.size(); ++i) {
    const std::string column = "c." + TableDef::StoredColumn(key.columns[i]);
    present += " AND " + column + " IS NOT NULL";
    match +=
        (i ? " AND p." : "p.") + TableDef::StoredColumn(key.parent_columns[i]) + " = " + column;
  }
  const std::string sql = fmt::format(
      "SELECT 1 FROM {} AS c WHERE c.rowid BETWEEN ?1 AND ?2{} AND NOT EXISTS(SELECT 1 FROM {} AS "
      "p "
      "WHERE {}) LIMIT 1",
      table.StoredName(), present, parent.StoredName(), match);
  if (!FindsRow(link, sql, first, last)) return;
  Raise(547, statement, table.id == parent.id ? "FOREIGN KEY SAME TABLE" : "FOREIGN KEY", key.name,
        link.Name(), parent.FullName(), ColumnPart(parent, key.parent_columns));
}

void VerifyCheck(Session& session, DatabaseLink& link, const TableDef& table, const CheckDef& check,
                 std::int64_t first, std::int64_t last, std::string_view statement) {
  Parser parser(check.text);
  const ExprPtr condition = parser.ParseExpressionText();
  Binder binder(session);
  Scope scope;
  Relation relation;
  relation.table = &table;
  relation.stored = "main." + table.StoredName();
  const std::string from = binder.AddTable(relation, table.name, scope);
  const std::string alias = scope.sources.front().stored;
  const std::string sql =
      fmt::format("SELECT 1 FROM {} WHERE {}.rowid BETWEEN ?1 AND ?2 AND NOT ({}) LIMIT 1", from,
                  alias, binder.BindCondition(*condition, scope));
  if (!FindsRow(link, sql, first, last)) return;
  const std::string column =
      check.column_id ? ", column '" + table.Column(check.column_id).name + "'" : "";
  Raise(547, statement, "CHECK", check.name, link.Name(), table.FullName(), column);
}

void VerifyRows(Session& session, DatabaseLink& link, const TableDef& table, std::int64_t first,
                std::int64_t last, std::string_view statement) {
  for (const CheckDef& check : table.checks) {
    if (!check.disabled) VerifyCheck(session, link, table, check, first, last, statement);
  }
  for (const ForeignKeyDef& key : table.foreign_keys) {
    if (!key.disabled) VerifyForeignKey(link, table, key, first, last, statement);
  }
}

SqlError StillReferenced(DatabaseLink& link, const TableDef& parent, const TableDef& child,
                         const ForeignKeyDef& key, std::string_view statement) {
  return Error(547, statement, parent.id == child.id ? "SAME TABLE REFERENCE" : "REFERENCE",
               key.name, link.Name(), child.FullName(), ColumnPart(child, key.columns));
}

}  // namespace sandbox
