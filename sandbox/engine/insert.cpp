#include <algorithm>

#include "sandbox/engine/definitions.h"
#include "sandbox/engine/insert_plan.h"
#include "sandbox/engine/insert_values.h"
#include "sandbox/engine/statement_runners.h"

namespace sandbox {

namespace {

std::size_t TakenColumns(const TableDef& table) {
  return static_cast<std::size_t>(
      std::count_if(table.columns.begin(), table.columns.end(),
                    [](const ColumnDef& column) { return !column.IsComputed(); }));
}

void CheckWidth(const InsertStatement& insert, const RowWriter& writer) {
  if (insert.width == writer.Width()) return;
  if (insert.columns.empty()) Raise(213);
  Raise(insert.width < writer.Width() ? ErrorNumber<0>(109) : ErrorNumber<0>(110));
}

}  // namespace

void ChangeRunner::Run(const InsertStatement& insert) {
  DatabaseLink& link = session_.LinkTo(insert.table.database);
  link.BeginWrite();
  const TableDef& table = TargetTable(link, insert.table, 208);
  const bool explicit_identity = table.IdentityColumn() && state_.identity_insert &&
                                 *state_.identity_insert == std::pair(&link.State(), table.id);
  const auto identity =
      explicit_identity ? RowWriter::Identity::Explicit : RowWriter::Identity::Generated;
  if (explicit_identity && insert.columns.empty() && !insert.default_values)
    Raise(8101, table.name);
  if (!explicit_identity && insert.columns.empty() && insert.width == TakenColumns(table) &&
      table.IdentityColumn() && insert.rows > 0) {
    Raise(8101, table.name);
  }
  RowWriter writer(session_, link, table, insert.columns, identity);
  if (!insert.query && !insert.default_values) CheckWidth(insert, writer);
  // One row that nothing looks at afterwards fails whole by itself.
  const bool simple = insert.rows == 1 && !writer.Plan().verifies;
  std::optional<StatementScope> scope;
  if (!simple) scope.emplace(link);
  auto rows = static_cast<std::int64_t>(insert.rows);
  if (insert.default_values) {
    writer.WriteDefaults();
  } else if (insert.query) {
    Binder binder(session_);
    rows = writer.WriteQuery(binder.BindQuery(*insert.query), binder);
  } else {
    InsertValues values(session_, insert);
    writer.WriteRows(values, insert.rows);
  }
  writer.Finish();
  if (scope) scope->Keep();
  Done(rows);
}

}  // namespace sandbox
