#include "sandbox/engine/stored_columns.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "sandbox/catalog/session.h"
#include "sandbox/functions/functions.h"
#include "sandbox/parser/parser.h"

namespace sandbox {

namespace {

constexpr std::array<std::string_view, 6> kClocks{"getdate", "getutcdate", "sysdatetime",
                                                  "sysutcdatetime", "sysdatetimeoffset"};
constexpr std::array<std::string_view, 3> kRandom{"newid", "newsequentialid", "rand"};

template <typename Range>
bool Contains(const Range& range, std::string_view name) {
  return std::find(range.begin(), range.end(), name) != range.end();
}

// Whether a function may stand in a definition, which asks for equal results each time.
bool MayBeFixed(std::string_view function, bool with_clocks) {
  return !Contains(kRandom, function) && (with_clocks || !Contains(kClocks, function));
}

// The text with its functions fixed where they may be: "tsql_call(7, " becomes "fixed_call('upper',
// ". What is in quotes stays as it is.
std::string Fixed(const std::string& sql, bool with_clocks) {
  constexpr std::string_view kPrefix = "tsql_", kCall = "tsql_call(";
  std::string fixed;
  bool quoted = false;
  for (std::size_t i = 0; i < sql.size();) {
    const std::string_view rest = std::string_view(sql).substr(i);
    quoted ^= rest.front() == '\'';
    if (quoted || !rest.starts_with(kPrefix) || rest.starts_with("tsql_session")) {
      fixed += sql[i++];
    } else if (!rest.starts_with(kCall)) {
      fixed += "fixed_";
      i += kPrefix.size();
    } else {
      std::size_t position = 0;
      const char* digits = rest.data() + kCall.size();
      const char* end = std::from_chars(digits, rest.data() + rest.size(), position).ptr;
      const char* name = Function(position).name;
      fixed +=
          MayBeFixed(name, with_clocks) ? fmt::format("fixed_call('{}'", name) : std::string(kCall);
      i += MayBeFixed(name, with_clocks) ? static_cast<std::size_t>(end - rest.data())
                                         : kCall.size();
    }
  }
  return fixed;
}

}  // namespace

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
  return Fixed(binder.BindCondition(*condition, StoredScope(table)), false);
}

std::string StoredColumnText(Session& session, const TableDef& table, const ColumnDef& column) {
  std::string text = Binder::Collated(TableDef::StoredColumn(column.id), column.type);
  if (!column.IsComputed()) return text;
  Parser parser(column.computed_text);
  const ExprPtr value = parser.ParseExpressionText();
  Binder binder(session);
  const std::string sql =
      Fixed(binder.BindValue(*value, StoredScope(table)).sql, !column.persisted);
  if (sql.find("tsql_") != std::string::npos) Raise(4936, column.name, table.name);
  return fmt::format("{} GENERATED ALWAYS AS ({}) VIRTUAL", text, sql);
}

}  // namespace sandbox
