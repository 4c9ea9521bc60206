#include "sandbox/engine/definitions.h"
#include "sandbox/engine/insert_plan.h"
#include "sandbox/engine/statement_runners.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

Flow QueryRunner::Run(const SelectStatement& statement) {
  const Query& query = *statement.query;
  const Select& first = query.selects.front();
  if (!first.into.name.empty()) {
    SelectInto(first, query);
    return Flow::Next;
  }
  Link().Definitions();
  Binder binder(session_);
  const BoundQuery bound = binder.BindQuery(query);
  if (!bound.variables.empty()) {
    AssignVariables(bound, binder);
  } else {
    StreamQuery(bound, binder);
  }
  return Flow::Next;
}

void QueryRunner::StreamQuery(const BoundQuery& query, const Binder& binder) {
  session_.CommitImplicit();  // a slow reader must not hold up the writers
  SqliteStatement& statement = Link().Cached(query.sql);
  ResetGuard guard(statement);
  binder.SetParameters(statement);
  state_.batch.sink->Columns(query.columns);
  std::int64_t rows = 0;
  if (!state_.options.format_only) {
    std::vector<Value> values(query.columns.size());
    while (Link().Step(statement)) {
      session_.ThrowIfCancelled();
      for (std::size_t i = 0; i < values.size(); ++i) {
        ReadColumn(statement.get(), static_cast<int>(i), query.columns[i].type, values[i]);
      }
      state_.batch.sink->Row(values);
      if (++rows == state_.options.row_limit) break;
    }
  }
  Done(rows);
}

void QueryRunner::AssignVariables(const BoundQuery& query, const Binder& binder) {
  if (query.variables.size() != query.columns.size()) {
    Raise(15034,
          "A SELECT statement that assigns a value to a variable must not be combined with "
          "data-retrieval operations.");
  }
  SqliteStatement& statement = Link().Cached(query.sql);
  ResetGuard guard(statement);
  binder.SetParameters(statement);
  std::int64_t rows = 0;
  Value value;
  for (; Link().Step(statement); ++rows) {
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
      ReadColumn(statement.get(), static_cast<int>(i), query.columns[i].type, value);
      session_.Assign(query.variables[i], value, query.columns[i].type);
    }
  }
  state_.row_count = rows;
}

void QueryRunner::SelectInto(const Select& select, const Query& query) {
  DatabaseLink& link = session_.LinkTo(select.into.database);
  link.BeginWrite();
  TableDef table;
  table.schema = SchemaOfNew(link, select.into);
  Binder binder(session_);
  const BoundQuery bound = binder.BindQuery(query);
  StatementScope scope(link);
  table.name = select.into.name;
  for (const ColumnInfo& column : bound.columns) {
    if (column.name.empty()) Raise(1038);
    if (table.FindColumn(column.name)) Raise(2705, column.name, table.name);
    ColumnDef& added = table.columns.emplace_back();
    added.id = table.next_column_id++;
    added.name = column.name;
    added.type = column.type;
    if (column.type.type == SqlType::Timestamp) added.type = {SqlType::Binary, 8, 0, 0};
    if (column.type.order == TextOrder::CaseSensitive)
      added.collation = "SQL_Latin1_General_CP1_CS_AS";
    if (column.type.order == TextOrder::Binary) added.collation = "Latin1_General_BIN2";
    added.nullable = column.nullable;
    added.identity = column.identity;
  }
  AddTable(session_, link, table);
  const TableDef& stored = *link.Definitions().FindTable(table.schema, table.name);
  RowWriter writer(session_, link, stored, {}, RowWriter::Identity::Explicit);
  const std::int64_t rows = writer.WriteQuery(bound, binder);
  writer.Finish();
  scope.Keep();
  Done(rows);
}

}  // namespace sandbox
