#include <algorithm>

#include "sandbox/binder/binder.h"
#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

constexpr int kMaxQueryDepth = 32;
constexpr const char* kSetWords[] = {"UNION", "UNION ALL"};

std::string ResultColumn(std::size_t i) {
  return fmt::format("c{}", i + 1);
}

template <typename Terms>
std::string OrderText(const Terms& terms) {
  std::string text;
  for (const auto& term : terms) {
    text += (text.empty() ? " ORDER BY " : ", ") + Binder::Collated(term.sql, term.type) +
            (term.descending ? " DESC" : "");
  }
  return text;
}

}  // namespace

std::string Binder::NewAlias() {
  return fmt::format("s{}", ++last_alias_);
}

BoundQuery Binder::BindQuery(const Query& query, const Scope* outer) {
  if (++depth_ > kMaxQueryDepth) Raise(191);
  // What an inner query groups by is its own affair.
  auto bare = std::move(bare_columns_);
  const bool saw = saw_aggregate_;
  const int aggregate_depth = std::exchange(aggregate_depth_, 0);
  bare_columns_.clear();
  BoundQuery bound = query.selects.size() == 1 ? BindSelect(query.selects.front(), &query, outer)
                                               : BindCompound(query, outer);
  bare_columns_ = std::move(bare);
  saw_aggregate_ = saw;
  aggregate_depth_ = aggregate_depth;
  --depth_;
  return bound;
}

BoundQuery Binder::BindCompound(const Query& query, const Scope* outer) {
  std::vector<BoundQuery> parts;
  for (const Select& select : query.selects) parts.push_back(BindSelect(select, nullptr, outer));
  std::vector<TypeInfo> types;
  for (const ColumnInfo& column : parts.front().columns) types.push_back(column.type);
  for (const BoundQuery& part : parts) {
    if (part.columns.size() != types.size()) Raise(205);
    for (std::size_t i = 0; i < types.size(); ++i) {
      types[i] = CommonType(types[i], part.columns[i].type);
    }
  }
  BoundQuery whole;
  whole.columns = parts.front().columns;
  for (std::size_t p = 0; p < parts.size(); ++p) {
    for (std::size_t i = 0; i < types.size(); ++i) {
      whole.columns[i].nullable |= parts[p].columns[i].nullable;
      whole.columns[i].type = types[i];
      whole.columns[i].identity = false;
    }
    if (p > 0)
      whole.sql += fmt::format(" {} ", kSetWords[static_cast<int>(query.operators[p - 1])]);
    whole.sql += "SELECT * FROM (" + CoerceQuery(std::move(parts[p]), types).sql + ")";
  }
  Scope none;
  none.outer = outer;
  const std::string order = OrderText(BindOrder(query, whole, none));
  if (!order.empty()) whole.sql = "SELECT * FROM (" + whole.sql + ")" + order;
  return whole;
}

// The same rows with columns of the given types, collated for comparison.
BoundQuery Binder::CoerceQuery(BoundQuery query, const std::vector<TypeInfo>& types) const {
  std::string items;
  for (std::size_t i = 0; i < types.size(); ++i) {
    Bound column;
    column.sql = ResultColumn(i);
    column.type = query.columns[i].type;
    column.nullable = query.columns[i].nullable;
    const Bound coerced = Coerce(std::move(column), types[i]);
    items += (i ? ", " : "") + Collated(coerced.sql, types[i]) + " AS " + ResultColumn(i);
    query.columns[i].type = types[i];
  }
  query.sql = "SELECT " + items + " FROM (" + query.sql + ")";
  return query;
}

BoundQuery Binder::BindSelect(const Select& select, const Query* ordered, const Scope* outer) {
  Scope scope;
  scope.outer = outer;
  BoundQuery query;
  const std::string from = select.from.empty() ? "" : " FROM " + BindFrom(select.from, scope);
  const std::string where =
      select.where ? " WHERE " + BindCondition(*select.where, scope) : std::string();
  bare_columns_.clear();
  std::vector<std::string> groups;
  for (const ExprPtr& expr : select.group_by) {
    const Bound group = BindValue(*expr, scope);
    groups.push_back(Collated(group.sql, group.type));
  }
  const auto grouped = [&](const std::string& sql) {
    return std::any_of(groups.begin(), groups.end(), [&](const std::string& group) {
      return group == sql || group.starts_with(sql + " COLLATE ");
    });
  };
  bare_columns_.clear();
  saw_aggregate_ = false;
  const std::string items = BindItems(select, scope, query);
  const std::string having =
      select.having ? " HAVING " + BindCondition(*select.having, scope) : std::string();
  if (saw_aggregate_ || !groups.empty() || select.having) {
    for (const auto& [sql, shown] : bare_columns_) {
      if (!grouped(sql)) Raise(8120, shown);
    }
  }
  std::string group_by;
  for (const std::string& group : groups)
    group_by += (group_by.empty() ? " GROUP BY " : ", ") + group;
  // An aggregate's condition without groups: SQLite wants to see a group.
  if (groups.empty() && select.having) group_by = " GROUP BY NULL";
  const std::vector<OrderTerm> order =
      ordered ? BindOrder(*ordered, query, scope) : std::vector<OrderTerm>();
  query.sql = fmt::format("SELECT {}{}{}{}{}{}{}", select.distinct ? "DISTINCT " : "", items, from,
                          where, group_by, having, OrderText(order));
  if (select.top) query.sql += " LIMIT " + TopCount(*select.top, scope);
  return query;
}

std::string Binder::BindItems(const Select& select, Scope& scope, BoundQuery& query) {
  std::vector<Bound> items;
  for (const SelectItem& item : select.items) {
    if (item.expr->kind == ExprKind::Star) {
      AddStar(*item.expr, scope, items);
      continue;
    }
    Bound bound = BindValue(*item.expr, scope);
    if (!item.alias.empty()) bound.name = item.alias;
    if (!item.variable.empty()) query.variables.push_back(LowerText(item.variable));
    items.push_back(std::move(bound));
  }
  std::string text;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const Bound& item = items[i];
    const bool plain = !select.distinct;
    text += (i ? ", " : "") + (plain ? item.sql : Collated(item.sql, item.type)) + " AS " +
            ResultColumn(i);
    query.columns.push_back({item.name, item.type, item.nullable, item.identity});
  }
  return text;
}

void Binder::AddStar(const Expr& star, const Scope& scope, std::vector<Bound>& items) const {
  if (scope.sources.empty()) Raise(102, "*");
  bool found = false;
  std::vector<std::string> columns = star.parts;
  columns.push_back("*");
  for (const ScopeSource& source : scope.sources) {
    if (!star.parts.empty() && !Exposes(source, columns)) continue;
    found = true;
    for (const ScopeColumn& column : source.columns) {
      if (column.hidden) continue;
      Bound bound;
      bound.sql = column.sql;
      bound.type = column.type;
      bound.nullable = column.nullable;
      bound.identity = column.identity;
      bound.name = column.name;
      items.push_back(std::move(bound));
    }
  }
  if (!found) Raise(107, star.parts.back());
}

std::vector<Binder::OrderTerm> Binder::BindOrder(const Query& query, const BoundQuery& bound,
                                                 Scope& scope) {
  std::vector<OrderTerm> terms;
  for (const OrderItem& item : query.order) {
    OrderTerm& term = terms.emplace_back();
    term.descending = item.descending;
    const Expr& expr = *item.expr;
    if (expr.kind == ExprKind::Literal) {
      const auto* number = std::get_if<std::int64_t>(&expr.literal.value);
      const bool valid =
          number && *number >= 1 && *number <= static_cast<std::int64_t>(bound.columns.size());
      if (!valid) Raise(108, expr.text);
      term.column = static_cast<std::size_t>(*number - 1);
    } else if (expr.kind == ExprKind::Column && expr.parts.size() == 1) {
      for (std::size_t i = 0; i < bound.columns.size() && !term.column; ++i) {
        if (SameName(bound.columns[i].name, expr.parts.front())) term.column = i;
      }
    }
    if (term.column) {
      term.type = bound.columns[*term.column].type;
      term.sql = fmt::format("{}", *term.column + 1);
      continue;
    }
    if (query.selects.size() > 1) Raise(104);
    const Bound value = BindValue(expr, scope);
    term.type = value.type;
    term.sql = value.sql;
  }
  return terms;
}

// The number of rows that TOP lets through.
std::string Binder::TopCount(const Expr& top, const Scope& scope) {
  Scope none;
  none.outer = scope.outer;
  const Bound count = Coerce(BindValue(top, none), BigIntType());
  const auto* number = count.constant ? std::get_if<std::int64_t>(&*count.constant) : nullptr;
  if (number && *number < 0) Raise(127);
  return count.sql;
}

// ---- FROM

std::string Binder::BindFrom(const std::vector<FromItem>& items, Scope& scope) {
  std::string text;
  for (std::size_t i = 0; i < items.size(); ++i) text += BindJoin(items[i], scope, i == 0);
  return text;
}

std::string Binder::BindJoin(const FromItem& item, Scope& scope, bool first) {
  static constexpr const char* kWords[] = {" JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " CROSS JOIN "};
  const std::size_t before = scope.sources.size();
  std::string text = first ? "" : kWords[static_cast<int>(item.join)];
  text += BindSource(item, scope);
  const auto optional = [&](std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i) {
      for (ScopeColumn& column : scope.sources[i].columns) column.nullable = true;
    }
  };
  if (item.join == JoinKind::Right) optional(0, before);
  if (item.join == JoinKind::Left) optional(before, scope.sources.size());
  if (item.on) text += " ON " + BindCondition(*item.on, scope);
  return text;
}

std::string Binder::BindSource(const FromItem& item, Scope& scope) {
  if (!item.group.empty()) return "(" + BindFrom(item.group, scope) + ")";
  if (item.query) {
    // A derived table sees the outer query, not its neighbours.
    return AddDerived(BindQuery(*item.query, scope.outer), item.alias, item.column_aliases, scope);
  }
  const std::string& alias = item.alias.empty() ? item.name.name : item.alias;
  const Relation relation = context_.FindRelation(item.name);
  if (!relation.view) {
    std::string text = AddTable(relation, alias, scope);
    if (!item.alias.empty()) scope.sources.back().schema.clear();
    return text;
  }
  Parser parser(relation.view->text);
  const Block block = parser.ParseBatch();
  const auto& view = std::get<CreateViewStatement>(block.front()->what);
  return AddDerived(BindQuery(*view.query, nullptr), alias, view.columns, scope);
}

bool Exposes(const ScopeSource& source, const std::vector<std::string>& parts) {
  const std::size_t count = parts.size();
  if (count > 1 && !SameName(source.alias, parts[count - 2])) return false;
  return count < 3 || source.schema.empty() || parts[count - 3].empty() ||
         SameName(source.schema, parts[count - 3]);
}

std::string Binder::AddTable(const Relation& relation, const std::string& alias, Scope& scope) {
  ScopeSource source;
  source.alias = alias;
  source.table = relation.table;
  if (relation.table) source.schema = relation.table->schema;
  for (const ScopeSource& other : scope.sources) {
    const bool apart =
        !other.schema.empty() && !source.schema.empty() && !SameName(other.schema, source.schema);
    if (SameName(other.alias, alias) && !apart) Raise(1013, other.alias, alias);
  }
  source.stored = NewAlias();
  if (relation.table) {
    for (const ColumnDef& column : relation.table->columns) {
      source.columns.push_back({column.name, column.type, column.nullable, column.identity,
                                source.stored + "." + TableDef::StoredColumn(column.id),
                                column.hidden});
    }
  } else {
    for (const ScopeColumn& column : relation.columns) {
      source.columns.push_back(column);
      source.columns.back().sql = source.stored + "." + column.sql;
    }
  }
  scope.sources.push_back(std::move(source));
  return relation.stored + " AS " + scope.sources.back().stored;
}

std::string Binder::AddDerived(BoundQuery query, const std::string& alias,
                               const std::vector<std::string>& names, Scope& scope) {
  ScopeSource source;
  source.alias = alias;
  source.stored = NewAlias();
  for (std::size_t i = 0; i < query.columns.size(); ++i) {
    const ColumnInfo& column = query.columns[i];
    const std::string& name = i < names.size() ? names[i] : column.name;
    if (name.empty()) Raise(8155, i + 1, alias);
    for (const ScopeColumn& other : source.columns) {
      if (SameName(other.name, name)) Raise(8156, name, alias);
    }
    source.columns.push_back({name, column.type, column.nullable, column.identity,
                              source.stored + "." + ResultColumn(i)});
  }
  scope.sources.push_back(std::move(source));
  return "(" + query.sql + ") AS " + scope.sources.back().stored;
}

}  // namespace sandbox
