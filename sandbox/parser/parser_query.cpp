#include "sandbox/parser/parser.h"
#include "sandbox/values/errors.h"

namespace sandbox {

QueryPtr Parser::ParseQuery() {
  const DepthGuard guard(*this);
  auto query = std::make_unique<Query>();
  query->line = token_.line;
  query->selects.push_back(ParseSelect());
  while (Accept("union")) {
    query->operators.push_back(Accept("all") ? SetOperator::UnionAll : SetOperator::Union);
    query->selects.push_back(ParseSelect());
  }
  if (token_.Is("order")) query->order = ParseOrderList();
  return query;
}

Select Parser::ParseSelect() {
  Select select;
  Expect("select");
  select.distinct = Accept("distinct");
  if (!select.distinct) Accept("all");
  if (Accept("top")) {
    if (AcceptSymbol("(")) {
      select.top = ParseExpr();
      ExpectSymbol(")");
    } else {
      if (!IsNumberToken(token_) && token_.kind != TokenKind::Variable) Fail();
      select.top = ParsePrimary();
    }
  }
  do {
    select.items.push_back(ParseSelectItem());
  } while (AcceptSymbol(","));
  if (Accept("from")) select.from = ParseFrom();
  if (Accept("where")) select.where = ParseExpr();
  if (Accept("group")) {
    Expect("by");
    select.group_by = ParseList();
  }
  if (Accept("having")) select.having = ParseExpr();
  return select;
}

SelectItem Parser::ParseSelectItem() {
  SelectItem item;
  if (token_.kind == TokenKind::Variable && PeekSecond().IsSymbol("=")) {
    item.variable = std::string(Take().text);
    Take();
    item.expr = ParseExpr();
    return item;
  }
  item.expr = ParseExpr();
  if (Accept("as")) {
    item.alias = TakeAlias();
  } else if (AtAlias()) {
    item.alias = TakeAlias();
  }
  return item;
}

std::vector<FromItem> Parser::ParseFrom() {
  std::vector<FromItem> items;
  do {
    FromItem item = ParseFromPrimary();
    item.join = JoinKind::Cross;
    items.push_back(std::move(item));
    ParseJoins(items);
  } while (AcceptSymbol(","));
  return items;
}

void Parser::ParseJoins(std::vector<FromItem>& items) {
  const DepthGuard guard(*this);
  while (true) {
    JoinKind kind = JoinKind::Inner;
    if (Accept("cross")) {
      kind = JoinKind::Cross;
      Expect("join");
    } else if (token_.Is("left") || token_.Is("right")) {
      kind = token_.Is("left") ? JoinKind::Left : JoinKind::Right;
      Take();
      Accept("outer");
      Expect("join");
    } else if (Accept("inner")) {
      Expect("join");
    } else if (!Accept("join")) {
      return;
    }
    FromItem item = ParseFromPrimary();
    item.join = kind;
    if (kind != JoinKind::Cross) {
      Expect("on");
      item.on = ParseExpr();
    }
    items.push_back(std::move(item));
  }
}

FromItem Parser::ParseFromPrimary() {
  const DepthGuard guard(*this);
  FromItem item;
  item.line = token_.line;
  if (AcceptSymbol("(")) {
    if (token_.Is("select")) {
      item.query = ParseQuery();
      ExpectSymbol(")");
    } else {
      item.group = ParseFrom();
      ExpectSymbol(")");
      return item;
    }
  } else {
    item.name = TakeObjectName();
  }
  if (Accept("as") || AtAlias()) item.alias = TakeAlias();
  if (item.query && item.alias.empty()) Fail();
  if (token_.IsSymbol("(") && item.query) item.column_aliases = TakeNameList();
  return item;
}

std::vector<OrderItem> Parser::ParseOrderList() {
  Expect("order");
  Expect("by");
  std::vector<OrderItem> items;
  do {
    OrderItem item;
    item.expr = ParseExpr();
    item.descending = Accept("desc");
    if (!item.descending) Accept("asc");
    items.push_back(std::move(item));
  } while (AcceptSymbol(","));
  return items;
}

}  // namespace sandbox
