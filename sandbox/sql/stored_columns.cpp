#include "sandbox/sql/stored_columns.h"

#include "sandbox/sql/parser.h"
#include "sandbox/sql/session.h"

namespace sandbox {

Scope StoredScope(const TableDef& table) {
  ScopeSource source;
  source.alias = table.name;
  source.schema = table.schema;
  for (const ColumnDef& column : table.columns) {
    source.columns.push_back({column.name, column.type, column.nullable, column.identity,
                              TableDef::StoredColumn(column.id)});
  }
  Scope scope;
  scope.sources.push_back(std::move(source));
  return scope;
}

std::string ConditionText(const Expr& condition) {
  const std::string text = NormalisedText(condition);
  const bool in_parentheses =
      condition.kind == ExprKind::Binary && (condition.text == "and" || condition.text == "or");
  return in_parentheses ? text : "(" + text + ")";
}

std::string StoredCondition(Session& session, const TableDef& table, const std::string& text) {
  Parser parser(text);
  const ExprPtr condition = parser.ParseExpressionText();
  Binder binder(session);
  return binder.BindCondition(*condition, StoredScope(table));
}

std::string StoredColumnText(const ColumnDef& column) {
  return Binder::Collated(TableDef::StoredColumn(column.id), column.type);
}

}  // namespace sandbox
