#include <algorithm>
#include <array>

#include "sandbox/binder/binder.h"
#include "sandbox/functions/functions.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

constexpr std::array<std::string_view, 6> kAggregates{"count", "count_big", "sum",
                                                      "avg",   "min",       "max"};
// Functions whose first argument is the name of a part of a date.
constexpr std::array<std::string_view, 2> kDateFunctions{"dateadd", "datepart"};

template <typename Range>
bool Contains(const Range& range, std::string_view name) {
  return std::find(range.begin(), range.end(), name) != range.end();
}

}  // namespace

bool IsAggregate(std::string_view name) {
  return Contains(kAggregates, name);
}

Bound Binder::BindFunction(const Expr& expr, const Scope& scope) {
  if (IsAggregate(expr.text)) return BindAggregate(expr, scope);
  if (expr.text == "isnull" || expr.text == "coalesce") return BindFirstValue(expr, scope);
  if (const auto position = FindFunction(expr.text)) return BindScalar(*position, expr, scope);
  return BindSessionFunction(expr, scope);
}

// Arguments that are known here make the value known; those of a row make it wait for the row.
Bound Binder::BindSessionFunction(const Expr& expr, const Scope& scope) {
  std::vector<Value> args;
  std::string row_args;
  bool known = true;
  for (const ExprPtr& arg : expr.args) {
    if (arg->kind == ExprKind::Star) Raise(102, "*");
    const Bound bound = BindValue(*arg, scope);
    const Variable* variable =
        arg->kind == ExprKind::Variable ? context_.FindVariable(arg->text) : nullptr;
    known &= bound.constant || bound.is_null || variable;
    args.push_back(bound.constant ? *bound.constant : variable ? variable->value : Value());
    row_args += fmt::format(", {}, {}", PackType(bound.type), bound.sql);
  }
  const auto value = context_.SessionValue(expr.text, args);
  if (!value) Raise(195, expr.text);
  if (known) return Constant(value->first, value->second);
  Bound bound;
  bound.type = value->second;
  bound.sql = fmt::format("tsql_session('{}', {}{})", expr.text, PackType(bound.type), row_args);
  return bound;
}

Bound Binder::BindScalar(std::size_t position, const Expr& expr, const Scope& scope) {
  const ScalarFunction& function = Function(position);
  const auto count = static_cast<int>(expr.args.size());
  if (count < function.min_args || count > function.max_args) {
    Raise(174, function.name, function.min_args);
  }
  std::vector<TypeInfo> types;
  std::string args;
  bool nullable = false;
  for (std::size_t i = 0; i < expr.args.size(); ++i) {
    const Expr& arg = *expr.args[i];
    Bound bound;
    if (i == 0 && Contains(kDateFunctions, expr.text)) {
      const bool word = arg.kind == ExprKind::Column && arg.parts.size() == 1;
      const auto unit = word ? DateUnit(arg.parts.front()) : std::nullopt;
      if (!unit) Raise(102, word ? arg.parts.front() : arg.text);
      bound = Constant(std::string(*unit), VarChar(20));
    } else {
      bound = BindValue(arg, scope);
    }
    nullable |= bound.nullable;
    types.push_back(bound.type);
    args += fmt::format(", {}, {}", PackType(bound.type), bound.sql);
  }
  // The words of a date's text are times of the type datetime.
  if (expr.text == "dateadd" && types.size() == 3 && IsText(types[2].type))
    types[2] = DateTimeType();
  Bound bound;
  bound.type = function.result(types);
  bound.nullable = nullable || !types.empty();
  bound.sql = fmt::format("tsql_call({}, {}{})", position, PackType(bound.type), args);
  return bound;
}

Bound Binder::BindFirstValue(const Expr& expr, const Scope& scope) {
  const bool takes_more = expr.text == "coalesce";
  if (expr.args.size() < 2 || (expr.args.size() > 2 && !takes_more)) Raise(174, expr.text, 2);
  Bound bound;
  std::vector<Bound> values;
  std::optional<TypeInfo> type;
  bound.nullable = true;
  for (const ExprPtr& arg : expr.args) {
    values.push_back(BindValue(*arg, scope));
    bound.nullable &= values.back().nullable;
    const bool decided = type && !takes_more;
    if (values.back().is_null || decided) continue;
    type = type ? CommonType(*type, values.back().type) : values.back().type;
  }
  bound.type = type.value_or(IntType());
  bound.sql = "coalesce(";
  for (std::size_t i = 0; i < values.size(); ++i) {
    bound.sql += (i ? ", " : "") + Coerce(std::move(values[i]), bound.type).sql;
  }
  bound.sql += ")";
  return bound;
}

Bound Binder::BindAggregate(const Expr& expr, const Scope& scope) {
  if (expr.args.size() != 1) Raise(174, expr.text, 1);
  saw_aggregate_ = true;
  const bool counting = expr.text == "count" || expr.text == "count_big";
  Bound bound;
  if (counting) {
    bound.type = expr.text == "count" ? IntType() : BigIntType();
    bound.nullable = false;
  }
  if (expr.args[0]->kind == ExprKind::Star) {
    if (!counting) Raise(102, "*");
    bound.sql = "count(*)";
    return bound;
  }
  ++aggregate_depth_;
  const Bound value = BindValue(*expr.args[0], scope);
  --aggregate_depth_;
  const std::string argument = (expr.distinct ? "DISTINCT " : "") + Collated(value.sql, value.type);
  if (counting) {
    bound.sql = "count(" + argument + ")";
    return bound;
  }
  if (expr.text == "min" || expr.text == "max") {
    bound.type = value.type;
    bound.sql = expr.text + "(" + argument + ")";
    return bound;
  }
  if (!IsNumber(value.type.type) || value.type.type == SqlType::Bit) {
    Raise(8117, TypeName(value.type), expr.text);
  }
  bound.type = expr.text == "avg" ? AverageType(value.type) : SumType(value.type);
  if (expr.distinct) {
    // SQLite allows DISTINCT only with one argument: a function that takes the type along.
    Raise(195, expr.text + " distinct");
  }
  bound.sql = fmt::format("tsql_{}({}, {})", expr.text, PackType(value.type), value.sql);
  return bound;
}

}  // namespace sandbox
