#include <algorithm>

#include "sandbox/engine/constraints.h"
#include "sandbox/engine/definitions.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/engine/stored_columns.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

// A unique index takes one NULL only; SQLite would take any number. No value looks like this one.
constexpr const char* kNullKey = "x'4e554c4c204e554c4c204e554c4c204e554c4c204e554c4c'";

std::string IndexTerm(const TableDef& table, const IndexDef& index, const IndexColumn& key) {
  const ColumnDef& column = table.Column(key.column_id);
  std::string term = TableDef::StoredColumn(column.id);
  if (index.unique && column.nullable) term = fmt::format("ifnull({}, {})", term, kNullKey);
  return Binder::Collated(term, column.type) + (key.descending ? " DESC" : "");
}

// The key that several rows have.
std::string DuplicateText(DatabaseLink& link, const TableDef& table, const IndexDef& index,
                          const std::string& where) {
  std::string columns;
  for (const IndexColumn& key : index.columns) {
    columns += (columns.empty() ? "" : ",") + TableDef::StoredColumn(key.column_id);
  }
  SqliteStatement statement = link.Connection().Prepare(
      fmt::format("SELECT {0} FROM {1}{2} GROUP BY {0} HAVING count(*) > 1 LIMIT 1", columns,
                  table.StoredName(), where));
  std::vector<Value> keys(index.columns.size());
  if (link.Step(statement)) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
      ReadColumn(statement.get(), static_cast<int>(i),
                 table.Column(index.columns[i].column_id).type, keys[i]);
    }
  }
  return KeyText(table, index, keys);
}

void AddIndexColumns(const TableDef& table, const CreateIndexStatement& create, IndexDef& index) {
  std::vector<int> listed;
  const auto column_named = [&](const std::string& name) -> const ColumnDef& {
    const ColumnDef* column = table.FindColumn(name);
    if (!column) Raise(1911, name);
    if (std::ranges::count(listed, column->id)) Raise(1909, "index", column->name);
    listed.push_back(column->id);
    return *column;
  };
  for (std::size_t i = 0; i < create.columns.names.size(); ++i) {
    const ColumnDef& column = column_named(create.columns.names[i]);
    if (!IsKeyable(column.type)) Raise(1919, column.name, table.FullName());
    index.columns.push_back({column.id, create.columns.descending[i]});
  }
  if (!create.included.empty() && create.clustered) Raise(10601);
  for (const std::string& name : create.included) index.included.push_back(column_named(name).id);
}

}  // namespace

void MakeStoredIndex(Session& session, DatabaseLink& link, const TableDef& table,
                     const IndexDef& index) {
  if (index.disabled) return;
  std::string terms;
  for (const IndexColumn& key : index.columns) {
    terms += (terms.empty() ? "" : ", ") + IndexTerm(table, index, key);
  }
  const std::string where =
      index.filter.empty() ? "" : " WHERE " + StoredCondition(session, table, index.filter);
  const std::string sql =
      fmt::format("CREATE {}INDEX {} ON {}({}){}", index.unique ? "UNIQUE " : "",
                  table.StoredIndexName(index), table.StoredName(), terms, where);
  SqliteStatement statement;
  try {
    statement = link.Connection().Prepare(sql);
  } catch (const SqliteError&) {
    if (where.empty()) throw;
    Raise(10735, index.name, table.FullName());
  }
  try {
    link.Run(statement);
  } catch (const SqliteError&) {
    const SqlError error =
        Error(1505, table.FullName(), index.name, DuplicateText(link, table, index, where));
    throw index.IsConstraint() ? Followed(error, 1750) : error;
  }
}

void DefinitionRunner::Run(const CreateIndexStatement& create) {
  DatabaseLink& link = session_.LinkTo(create.table.database);
  link.BeginWrite();
  TableDef table = TargetTable(link, create.table, 1088);
  StatementScope scope(link);
  IndexDef index;
  index.name = create.name;
  index.unique = create.unique;
  index.clustered = create.clustered;
  for (const IndexDef& other : table.indexes) {
    if (SameName(other.name, create.name)) Raise(1913, create.name, table.FullName());
    if (other.clustered && create.clustered) Raise(1902, "table", table.name, other.name);
    index.id = std::max(index.id, other.id);
  }
  ++index.id;
  AddIndexColumns(table, create, index);
  CheckKeyLength(session_, table, index);
  if (create.filter) index.filter = ConditionText(*create.filter);
  table.indexes.push_back(index);
  link.Store(table);
  MakeStoredIndex(session_, link, table, index);
  VerifyKeyLengths(link, table, INT64_MIN, INT64_MAX);
  scope.Keep();
  Done();
}

void DefinitionRunner::Run(const AlterIndexStatement& alter) {
  DatabaseLink& link = session_.LinkTo(alter.table.database);
  link.BeginWrite();
  TableDef table = TargetTable(link, alter.table, 1088);
  if (!alter.name.empty() && !table.FindIndex(alter.name)) Raise(2727, alter.name);
  StatementScope scope(link);
  for (IndexDef& index : table.indexes) {
    if (!alter.name.empty() && !SameName(index.name, alter.name)) continue;
    link.Connection().Execute("DROP INDEX IF EXISTS " + table.StoredIndexName(index));
    index.disabled = alter.disables;
    MakeStoredIndex(session_, link, table, index);
  }
  link.Store(table);
  scope.Keep();
  Done();
}

}  // namespace sandbox
