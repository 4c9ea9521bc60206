#include <algorithm>

#include "sandbox/engine/constraints.h"
#include "sandbox/engine/definitions.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/engine/stored_columns.h"
#include "sandbox/text/text_order.h"

namespace sandbox {

namespace {

bool HasRows(DatabaseLink& link, const TableDef& table) {
  SqliteStatement& statement = link.Cached("SELECT 1 FROM " + table.StoredName() + " LIMIT 1");
  ResetGuard guard(statement);
  return link.Step(statement);
}

// ALTER TABLE ADD: columns with their defaults first, which the rows get, then what looks at rows.
void AddToTable(Session& session, DatabaseLink& link, TableDef& table,
                const AlterTableStatement& alter) {
  const bool rows = HasRows(link, table);
  std::vector<int> added;
  for (const ColumnSyntax& column : alter.columns) {
    AppendColumn(link, table, column);
    added.push_back(table.columns.back().id);
  }
  for (const ColumnSyntax& column : alter.columns) TypeComputedColumn(session, table, column);
  CheckTableLimits(table);
  ConstraintAdder adder(session, link, table, true);
  for (const ConstraintSyntax& constraint : alter.constraints) {
    if (std::holds_alternative<DefaultSyntax>(constraint.what)) adder.Add(constraint);
  }
  AddColumns(session, link, table, added, rows);
  for (const ConstraintSyntax& constraint : alter.constraints) {
    if (!std::holds_alternative<DefaultSyntax>(constraint.what))
      adder.Add(constraint, alter.checks_rows.value_or(true));
  }
  link.Store(table);
  adder.Finish();
}

}  // namespace

std::string SchemaOfNew(DatabaseLink& link, const ObjectName& name) {
  std::string schema = link.SchemaForNew(name);
  if (link.Definitions().HasObject(schema, name.name)) Raise(2714, name.name);
  return schema;
}

const TableDef& TargetTable(DatabaseLink& link, const ObjectName& name, ErrorNumber<1> missing) {
  const TableDef* table = link.FindTable(name);
  if (!table) Raise(missing, name.Text());
  return *table;
}

void AddTable(Session& session, DatabaseLink& link, TableDef table) {
  if (table.id == 0) table.id = link.NewObjectId();
  std::string columns;
  for (const ColumnDef& column : table.columns) {
    columns += (columns.empty() ? "" : ", ") + StoredColumnText(session, table, column);
  }
  link.Connection().Execute("CREATE TABLE " + table.StoredName() + "(" + columns + ")");
  link.Store(std::move(table));
}

void DefinitionRunner::Run(const CreateTableStatement& create) {
  DatabaseLink& link = session_.LinkTo(create.table.database);
  link.BeginWrite();
  StatementScope scope(link);
  TableDef table;
  table.schema = SchemaOfNew(link, create.table);
  table.name = create.table.name;
  table.id = link.NewObjectId();
  for (const ColumnSyntax& column : create.columns) AppendColumn(link, table, column);
  for (const ColumnSyntax& column : create.columns) TypeComputedColumn(session_, table, column);
  CheckTableLimits(table);
  // A primary key makes its columns NOT NULL unless they were said to take NULL.
  for (const ConstraintSyntax& constraint : create.constraints) {
    const auto* key = std::get_if<KeySyntax>(&constraint.what);
    if (!key || !key->primary) continue;
    for (const std::string& name : key->columns.names) {
      for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (!SameName(table.columns[i].name, name)) continue;
        if (create.columns[i].nullable.value_or(false)) RaiseForConstraint(8111, table.name);
        table.columns[i].nullable = false;
      }
    }
  }
  ConstraintAdder adder(session_, link, table, false);
  // Keys first: a foreign key may refer to its own table.
  for (const ConstraintSyntax& constraint : create.constraints) {
    if (std::holds_alternative<KeySyntax>(constraint.what)) adder.Add(constraint);
  }
  for (const ConstraintSyntax& constraint : create.constraints) {
    if (!std::holds_alternative<KeySyntax>(constraint.what)) adder.Add(constraint);
  }
  AddTable(session_, link, table);
  adder.Finish();
  scope.Keep();
  Done();
}

void DefinitionRunner::Run(const AlterTableStatement& alter) {
  using Action = AlterTableStatement::Action;
  DatabaseLink& link = session_.LinkTo(alter.table.database);
  link.BeginWrite();
  TableDef table = TargetTable(link, alter.table, 4902);
  StatementScope scope(link);
  switch (alter.action) {
    case Action::Add:
      AddToTable(session_, link, table, alter);
      break;
    case Action::DropConstraint:
      for (const std::string& name : alter.names) DropConstraint(link, table, name);
      link.Store(table);
      break;
    case Action::Check:
    case Action::NoCheck:
      SwitchConstraints(session_, link, table, alter);
      break;
  }
  scope.Keep();
  Done();
}

void DefinitionRunner::Run(const DropTableStatement& drop) {
  for (const ObjectName& name : drop.tables) {
    DatabaseLink& link = session_.LinkTo(name.database);
    link.BeginWrite();
    const Catalog& catalog = link.Definitions();
    if (drop.view) {
      const ViewDef* view = link.FindView(name);
      if (!view) Raise(3701, "drop", "view", name.Text());
      link.Forget(view->id);
      continue;
    }
    const TableDef* table = link.FindTable(name);
    if (!table) Raise(3701, "drop", "table", name.Text());
    for (const auto& [id, other] : catalog.tables) {
      for (const ForeignKeyDef& key : other.foreign_keys) {
        if (key.parent_table == table->id && id != table->id) Raise(3726, name.Text());
      }
    }
    StatementScope scope(link);
    const std::string sql = "DROP TABLE " + table->StoredName();
    const int id = table->id;
    link.State().SetLastIdentity(id, std::nullopt);
    link.Forget(id);
    link.Connection().Execute(sql);
    scope.Keep();
    if (state_.identity_insert && *state_.identity_insert == std::pair(&link.State(), id))
      state_.identity_insert.reset();
  }
  Done();
}

void DefinitionRunner::Run(const CreateViewStatement& create) {
  DatabaseLink& link = session_.LinkTo(create.name.database);
  link.BeginWrite();
  const std::string schema = SchemaOfNew(link, create.name);
  Binder binder(session_);
  const BoundQuery query = binder.BindQuery(*create.query);
  for (std::size_t i = 0; i < query.columns.size(); ++i) {
    if (i >= create.columns.size() && query.columns[i].name.empty())
      Raise(8155, i + 1, create.name.name);
  }
  link.Store(ViewDef{link.NewObjectId(), schema, create.name.name, create.text});
  Done();
}

void DefinitionRunner::Run(const CreateDatabaseStatement& create) {
  if (session_.InTransaction())
    Raise(15034, "CREATE DATABASE statement not allowed within multi-statement transaction.");
  session_.CommitImplicit();
  if (!session_.Folder().Create(create.name)) Raise(1801, create.name);
  Done();
}

void DefinitionRunner::Run(const DropDatabaseStatement& drop) {
  session_.CommitImplicit();
  const auto state = session_.Folder().Find(drop.name);
  if (!state) Raise(3701, "drop", "database", drop.name);
  if (state->id <= 4) Raise(3708, drop.name);
  if (state->users > 0) Raise(3702, drop.name);
  state_.links.erase(state->id);
  if (state_.identity_insert && state_.identity_insert->first == state.get())
    state_.identity_insert.reset();
  session_.Folder().Drop(*state);
  Done();
}

}  // namespace sandbox
