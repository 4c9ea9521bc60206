#include "sandbox/engine/statement_runners.h"
#include "sandbox/storage/encoding.h"

namespace sandbox {

void QueryRunner::Run(const SelectStatement& statement) {
  Link().Definitions();
  Binder binder(session_);
  const BoundQuery bound = binder.BindQuery(*statement.query);
  if (!bound.variables.empty()) {
    AssignVariables(bound, binder);
  } else {
    StreamQuery(bound, binder);
  }
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
      ++rows;
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
  Value value;
  while (Link().Step(statement)) {
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
      ReadColumn(statement.get(), static_cast<int>(i), query.columns[i].type, value);
      session_.Assign(query.variables[i], value, query.columns[i].type);
    }
  }
}

}  // namespace sandbox
