#include <algorithm>

#include "sandbox/binder/binder.h"
#include "sandbox/storage/collations.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/storage/sqlite.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

Bound Predicate(std::string sql) {
  Bound bound;
  bound.sql = std::move(sql);
  bound.predicate = true;
  return bound;
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ".") + part;
  return text;
}

}  // namespace

Bound Binder::Constant(Value value, const TypeInfo& type) {
  Bound bound;
  bound.sql = SqliteLiteral(value, type);
  bound.type = type;
  bound.nullable = bound.is_null = IsNull(value);
  bound.constant = std::move(value);
  return bound;
}

std::string Binder::Collated(const std::string& sql, const TypeInfo& type) {
  return IsText(type.type) ? sql + " COLLATE " + StoredCollation(type.order) : sql;
}

Bound Binder::Coerce(Bound bound, const TypeInfo& to, bool is_explicit, int style) {
  if (bound.is_null) {
    bound.type = to;
    return bound;
  }
  CheckConvertible(bound.type, to, is_explicit);
  if (bound.constant) {
    Bound converted = Constant(Convert(*bound.constant, bound.type, to, style), to);
    converted.name = bound.name;
    return converted;
  }
  const bool same_measures = bound.type.type == to.type && bound.type.length == to.length &&
                             bound.type.precision == to.precision && bound.type.scale == to.scale;
  const bool wider_text =
      !is_explicit && IsText(to.type) && IsText(bound.type.type) &&
      IsUnicode(to.type) >= IsUnicode(bound.type.type) && to.type != SqlType::Char &&
      to.type != SqlType::NChar &&
      (to.length < 0 || (bound.type.length >= 0 && to.length >= bound.type.length));
  if (!same_measures && !wider_text) {
    bound.sql = fmt::format("tsql_convert({}, {}, {}, {})", PackType(bound.type), PackType(to),
                            style, bound.sql);
  }
  bound.type = to;
  bound.constant.reset();
  return bound;
}

Bound Binder::BindValue(const Expr& expr, const Scope& scope) {
  Bound bound = BindAny(expr, scope);
  if (bound.predicate) Raise(102, expr.text.empty() ? "condition" : expr.text);
  return bound;
}

std::string Binder::BindCondition(const Expr& expr, const Scope& scope) {
  Bound bound = BindAny(expr, scope);
  if (!bound.predicate) Raise(4145, expr.text.empty() ? "condition" : expr.text);
  return bound.sql;
}

Bound Binder::BindAny(const Expr& expr, const Scope& scope) {
  switch (expr.kind) {
    case ExprKind::Literal:
      return Constant(expr.literal.value, expr.literal.type);
    case ExprKind::Column:
      return BindColumn(expr, scope);
    case ExprKind::Star:
      Raise(102, "*");
    case ExprKind::Variable:
      return BindVariable(expr);
    case ExprKind::Unary:
      return BindUnary(expr, scope);
    case ExprKind::Binary:
      return BindBinary(expr, scope);
    case ExprKind::IsNull:
      return Predicate(fmt::format("({} IS {}NULL)", BindValue(*expr.args[0], scope).sql,
                                   expr.negated ? "NOT " : ""));
    case ExprKind::In:
      return BindIn(expr, scope);
    case ExprKind::Between:
      return BindBetween(expr, scope);
    case ExprKind::Like:
      return BindLike(expr, scope);
    case ExprKind::Exists:
      return Predicate("EXISTS(" + BindQuery(*expr.query, &scope).sql + ")");
    case ExprKind::Subquery:
      return BindSubquery(expr, scope);
    case ExprKind::Case:
      return BindCase(expr, scope);
    case ExprKind::Function:
      return BindFunction(expr, scope);
    case ExprKind::Cast:
      return BindCast(expr, scope);
    case ExprKind::Collate:
      return BindCollate(expr, scope);
  }
  Raise(102, expr.text);
}

Bound Binder::BindCast(const Expr& expr, const Scope& scope) {
  int style = 0;
  if (expr.args.size() > 1) {
    const Bound number = Coerce(BindValue(*expr.args[1], scope), IntType());
    const auto* held = number.constant ? std::get_if<std::int64_t>(&*number.constant) : nullptr;
    if (held) style = static_cast<int>(*held);
  }
  Bound value = BindValue(*expr.args[0], scope);
  TypeInfo type = expr.type;
  if (IsText(type.type) && IsText(value.type.type)) type.order = value.type.order;
  Bound bound = Coerce(std::move(value), type, true, style);
  bound.name.clear();
  bound.identity = false;
  return bound;
}

Bound Binder::BindCollate(const Expr& expr, const Scope& scope) {
  Bound bound = BindValue(*expr.args[0], scope);
  const auto order = OrderOfCollation(expr.text);
  if (!order) Raise(448, expr.text);
  bound.type.order = *order;
  return bound;
}

Bound Binder::BindColumn(const Expr& expr, const Scope& scope) {
  const std::string& name = expr.parts.back();
  for (const Scope* level = &scope; level; level = level->outer) {
    const ScopeColumn* found = nullptr;
    const ScopeSource* owner = nullptr;
    for (const ScopeSource& source : level->sources) {
      if (!Exposes(source, expr.parts)) continue;
      for (const ScopeColumn& column : source.columns) {
        if (!SameName(column.name, name)) continue;
        if (found) Raise(209, name);
        found = &column;
        owner = &source;
      }
    }
    if (!found) continue;
    if (aggregate_depth_ == 0 && level == &scope) {
      bare_columns_.emplace_back(found->sql, owner->alias + "." + found->name);
    }
    Bound bound;
    bound.sql = found->sql;
    bound.type = found->type;
    bound.nullable = found->nullable;
    bound.identity = found->identity;
    bound.name = found->name;
    return bound;
  }
  if (expr.parts.size() > 1) Raise(4104, Joined(expr.parts));
  Raise(207, name);
}

void Binder::SetParameters(SqliteStatement& statement) const {
  int index = 0;
  for (const auto& [value, type] : parameters_) {
    sandbox::BindValue(statement.get(), ++index, value, type);
  }
}

std::string Binder::AddParameter(const std::string& name, Value value, const TypeInfo& type) {
  auto [entry, added] = parameter_numbers_.try_emplace(name, 0);
  if (added) {
    parameters_.emplace_back(std::move(value), type);
    entry->second = static_cast<int>(parameters_.size());
  }
  return fmt::format("?{}", entry->second);
}

Bound Binder::BindVariable(const Expr& expr) {
  if (expr.text.substr(0, 2) == "@@") {
    const auto value = context_.SessionValue(expr.text, {});
    if (!value) Raise(137, expr.text);
    return Constant(value->first, value->second);
  }
  const Variable* variable = context_.FindVariable(expr.text);
  if (!variable) Raise(137, expr.text);
  Bound bound;
  bound.sql = AddParameter(expr.text, variable->value, variable->type);
  bound.type = variable->type;
  return bound;
}

Bound Binder::BindUnary(const Expr& expr, const Scope& scope) {
  if (expr.text == "not") return Predicate("(NOT " + BindCondition(*expr.args[0], scope) + ")");
  Bound value = BindValue(*expr.args[0], scope);
  value.name.clear();
  value.identity = false;
  if (expr.text == "+") return value;
  Bound zero = Constant(std::int64_t{0}, IntType());
  if (!IsNumber(value.type.type)) Raise(8117, TypeName(value.type), "minus");
  const TypeInfo type = value.type;
  Bound negated = BindArithmetic(
      '-', Coerce(std::move(zero), type.type == SqlType::Bit ? IntType() : type), std::move(value));
  return IsExact(type.type) ? Coerce(std::move(negated), type) : negated;
}

Bound Binder::BindBinary(const Expr& expr, const Scope& scope) {
  if (expr.text == "and" || expr.text == "or") {
    const std::string left = BindCondition(*expr.args[0], scope);
    const std::string right = BindCondition(*expr.args[1], scope);
    return Predicate(fmt::format("({} {} {})", left, expr.text, right));
  }
  Bound left = BindValue(*expr.args[0], scope);
  Bound right = BindValue(*expr.args[1], scope);
  static constexpr std::string_view kArithmetic = "+-*/%&";
  if (expr.text.size() == 1 && kArithmetic.find(expr.text[0]) != std::string_view::npos) {
    return BindArithmetic(expr.text[0], std::move(left), std::move(right));
  }
  return Compare(expr.text, std::move(left), std::move(right));
}

Bound Binder::BindArithmetic(char op, Bound left, Bound right) {
  if (left.is_null) left.type = right.type;
  if (right.is_null) right.type = left.type;
  // A whole number that is written out counts with the digits it has, not with an int's.
  const auto narrow = [](Bound& bound, const TypeInfo& other) {
    const auto* number = bound.constant ? std::get_if<std::int64_t>(&*bound.constant) : nullptr;
    const bool decimal = other.type == SqlType::Decimal || other.type == SqlType::Numeric;
    if (!number || !decimal) return;
    const int digits = static_cast<int>(fmt::format("{}", *number).size()) - (*number < 0 ? 1 : 0);
    bound = Coerce(std::move(bound), DecimalType(digits, 0));
  };
  narrow(left, right.type);
  narrow(right, left.type);
  const TypeInfo result = ArithmeticType(op, left.type, right.type);
  const bool nullable = left.nullable || right.nullable;
  // Operands take the result's kind; decimals keep their own scales.
  const auto operand = [&](Bound& bound) {
    if (result.type != SqlType::Decimal && result.type != SqlType::Numeric) {
      TypeInfo type = result;
      if (IsText(type.type) || IsBinary(type.type)) {
        type.length = bound.type.length;
        if (IsText(bound.type.type) && !IsUnicode(result.type)) return;
        if (IsBinary(bound.type.type)) return;
      }
      bound = Coerce(std::move(bound), type);
      return;
    }
    if (bound.type.type == SqlType::Decimal || bound.type.type == SqlType::Numeric) return;
    const TypeInfo type = IsNumber(bound.type.type) ? AsDecimal(bound.type) : result;
    bound = Coerce(std::move(bound), type);
  };
  operand(left);
  operand(right);
  Bound bound;
  bound.type = result;
  bound.nullable = nullable;
  bound.sql = fmt::format("tsql_math('{}', {}, {}, {}, {}, {})", op, PackType(left.type),
                          PackType(right.type), PackType(result), left.sql, right.sql);
  return bound;
}

Bound Binder::Compare(const std::string& op, Bound left, Bound right) const {
  if (left.is_null) left.type = right.type;
  if (right.is_null) right.type = left.type;
  const TypeInfo common = CommonType(left.type, right.type);
  const auto long_type = [](const TypeInfo& type) {
    return type.type == SqlType::Text || type.type == SqlType::NText ||
           type.type == SqlType::Image || type.type == SqlType::Xml;
  };
  if ((long_type(left.type) || long_type(right.type)) && !left.is_null && !right.is_null) {
    static constexpr std::pair<const char*, const char*> kWords[] = {
        {"=", "equal to"},     {"<>", "not equal to"},          {"<", "less than"},
        {">", "greater than"}, {"<=", "less than or equal to"}, {">=", "greater than or equal to"}};
    for (const auto& [symbol, word] : kWords) {
      if (op == symbol) Raise(402, TypeName(left.type), TypeName(right.type), word);
    }
  }
  const auto meet = [&](Bound bound) {
    if (SameForm(bound.type, common)) return bound;
    TypeInfo type = common;
    if (IsText(type.type) && type.length >= 0) type.length = IsUnicode(type.type) ? 4000 : 8000;
    if (type.type == SqlType::Char) type.type = SqlType::VarChar;
    if (type.type == SqlType::NChar) type.type = SqlType::NVarChar;
    return Coerce(std::move(bound), type);
  };
  left = meet(std::move(left));
  right = meet(std::move(right));
  return Predicate(fmt::format("({} {} {})", Collated(left.sql, common), op, right.sql));
}

Bound Binder::BindIn(const Expr& expr, const Scope& scope) {
  const Bound left = BindValue(*expr.args[0], scope);
  const char* word = expr.negated ? "NOT IN" : "IN";
  if (expr.query) {
    BoundQuery query = BindQuery(*expr.query, &scope);
    if (query.columns.size() != 1) Raise(116);
    const TypeInfo common = CommonType(left.type, query.columns[0].type);
    if (!SameForm(query.columns[0].type, common)) query = CoerceQuery(std::move(query), {common});
    Bound value = SameForm(left.type, common) ? left : Coerce(left, common);
    return Predicate(fmt::format("({} {} ({}))", Collated(value.sql, common), word, query.sql));
  }
  std::vector<Bound> items;
  TypeInfo common = left.type;
  for (std::size_t i = 1; i < expr.args.size(); ++i) {
    items.push_back(BindValue(*expr.args[i], scope));
    if (!items.back().is_null) common = CommonType(common, items.back().type);
  }
  std::string list;
  for (Bound& item : items) {
    const bool same = SameForm(item.type, common) || item.is_null;
    list += (list.empty() ? "" : ", ") + (same ? item.sql : Coerce(std::move(item), common).sql);
  }
  const Bound value = SameForm(left.type, common) ? left : Coerce(left, common);
  return Predicate(fmt::format("({} {} ({}))", Collated(value.sql, common), word, list));
}

Bound Binder::BindBetween(const Expr& expr, const Scope& scope) {
  const Bound low = Compare(">=", BindValue(*expr.args[0], scope), BindValue(*expr.args[1], scope));
  const Bound high =
      Compare("<=", BindValue(*expr.args[0], scope), BindValue(*expr.args[2], scope));
  return Predicate(fmt::format("({}({} AND {}))", expr.negated ? "NOT " : "", low.sql, high.sql));
}

Bound Binder::BindLike(const Expr& expr, const Scope& scope) {
  std::string args;
  TextOrder order = TextOrder::Default;
  for (const ExprPtr& arg : expr.args) {
    Bound text = BindValue(*arg, scope);
    order = std::max(order, text.type.order);
    if (!IsText(text.type.type)) text = Coerce(std::move(text), {SqlType::NVarChar, -1, 0, 0});
    args += (args.empty() ? "" : ", ") + text.sql;
  }
  return Predicate(fmt::format("({}{}({}))", expr.negated ? "NOT " : "",
                               order == TextOrder::Default ? "tsql_like" : "tsql_like_case", args));
}

Bound Binder::BindSubquery(const Expr& expr, const Scope& scope) {
  const BoundQuery query = BindQuery(*expr.query, &scope);
  if (query.columns.size() != 1) Raise(116);
  Bound bound;
  bound.type = query.columns[0].type;
  bound.sql = "(SELECT tsql_one(c1) FROM (" + query.sql + "))";
  return bound;
}

Bound Binder::BindCase(const Expr& expr, const Scope& scope) {
  const std::size_t first = expr.has_operand ? 1 : 0;
  const std::size_t pairs = (expr.args.size() - first - (expr.has_else ? 1 : 0)) / 2;
  std::vector<std::string> conditions;
  std::vector<Bound> results;
  for (std::size_t i = 0; i < pairs; ++i) {
    const Expr& when = *expr.args[first + 2 * i];
    conditions.push_back(
        expr.has_operand ? Compare("=", BindValue(*expr.args[0], scope), BindValue(when, scope)).sql
                         : BindCondition(when, scope));
    results.push_back(BindValue(*expr.args[first + 2 * i + 1], scope));
  }
  if (expr.has_else) results.push_back(BindValue(*expr.args.back(), scope));
  std::optional<TypeInfo> type;
  bool nullable = !expr.has_else;
  for (const Bound& result : results) {
    nullable |= result.nullable;
    if (result.is_null) continue;
    type = type ? CommonType(*type, result.type) : result.type;
  }
  Bound bound;
  bound.type = type.value_or(IntType());
  bound.nullable = nullable;
  bound.sql = "(CASE";
  for (std::size_t i = 0; i < pairs; ++i) {
    bound.sql +=
        " WHEN " + conditions[i] + " THEN " + Coerce(std::move(results[i]), bound.type).sql;
  }
  if (expr.has_else) bound.sql += " ELSE " + Coerce(std::move(results.back()), bound.type).sql;
  bound.sql += " END)";
  return bound;
}

}  // namespace sandbox
