#include "sandbox/parser/parser.h"

namespace sandbox {

Statement Parser::ParseCreate() {
  const std::size_t start = token_.offset;
  Expect("create");
  if (Accept("or")) Expect("alter");
  if (token_.Is("database")) {
    Take();
    const std::string name = TakeName();
    while (token_.kind != TokenKind::End && !token_.IsSymbol(";")) Take();  // files, collation
    return {1, CreateDatabaseStatement{name}};
  }
  if (AtPrincipal()) return ParsePrincipal();
  if (token_.Is("table")) return ParseCreateTable();
  if (token_.Is("view")) return ParseCreateView(start);
  if (token_.Is("type")) return ParseCreateType();
  if (AtModule()) return SkipBatch();
  return ParseCreateIndex();
}

Statement Parser::ParseCreateTable() {
  Expect("table");
  CreateTableStatement create;
  create.table = TakeObjectName();
  ExpectSymbol("(");
  do {
    ParseTableElement(create.columns, create.constraints);
  } while (AcceptSymbol(","));
  if (create.columns.empty()) Fail();
  ExpectSymbol(")");
  SkipIndexOptions();
  return {1, std::move(create)};
}

bool Parser::AtConstraint() const {
  return token_.Is("constraint") || token_.Is("primary") || token_.Is("unique") ||
         token_.Is("foreign") || token_.Is("check");
}

ConstraintSyntax Parser::ParseConstraint(std::string_view column) {
  ConstraintSyntax constraint;
  constraint.column = column;
  if (Accept("constraint")) constraint.name = TakeName();
  if (Accept("primary")) {
    Expect("key");
    constraint.what = ParseKey(true, column);
  } else if (Accept("unique")) {
    constraint.what = ParseKey(false, column);
  } else if (token_.Is("foreign") || token_.Is("references")) {
    constraint.what = ParseReferences(column);
  } else if (Accept("check")) {
    ExpectSymbol("(");
    constraint.what = CheckSyntax{ParseExpr()};
    ExpectSymbol(")");
  } else if (Accept("default")) {
    DefaultSyntax value;
    value.value = ParseSum();
    value.column = column;
    if (column.empty() && Accept("for")) value.column = TakeName();
    if (Accept("with")) Expect("values");
    constraint.column = value.column;
    constraint.what = std::move(value);
  } else {
    Fail();
  }
  return constraint;
}

KeySyntax Parser::ParseKey(bool primary, std::string_view column) {
  KeySyntax key;
  key.primary = primary;
  if (Accept("clustered")) {
    key.clustered = true;
  } else if (Accept("nonclustered")) {
    key.clustered = false;
  }
  if (token_.IsSymbol("(")) {
    key.columns = TakeColumnList();
  } else if (column.empty()) {
    Fail();
  } else {
    key.columns = {{std::string(column)}, {false}};
  }
  SkipIndexOptions();
  return key;
}

ForeignKeySyntax Parser::ParseReferences(std::string_view column) {
  ForeignKeySyntax key;
  if (Accept("foreign")) {
    Expect("key");
    if (token_.IsSymbol("(")) key.columns = TakeColumnList();
  }
  if (key.columns.names.empty()) {
    if (column.empty()) Fail();
    key.columns = {{std::string(column)}, {false}};
  }
  Expect("references");
  key.parent = TakeObjectName();
  if (token_.IsSymbol("(")) key.parent_columns = TakeColumnList();
  while (true) {
    if (!Accept("on")) return key;
    const bool on_delete = token_.Is("delete");
    if (!on_delete && !token_.Is("update")) Fail();
    Take();
    ForeignKeyRule rule = ForeignKeyRule::NoAction;
    if (Accept("cascade")) {
      rule = ForeignKeyRule::Cascade;
    } else if (Accept("set")) {
      rule = token_.Is("default") ? ForeignKeyRule::SetDefault : ForeignKeyRule::SetNull;
      if (!Accept("default")) Expect("null");
    } else {
      Expect("no");
      Expect("action");
    }
    (on_delete ? key.on_delete : key.on_update) = rule;
  }
}

// "with (fillfactor = 90) on [primary] textimage_on [primary]": where and how pages lie.
void Parser::SkipIndexOptions() {
  while (true) {
    if (token_.Is("with") && (PeekSecond().IsSymbol("(") || PeekSecond().Is("fillfactor"))) {
      Take();
      if (Accept("fillfactor")) {
        ExpectSymbol("=");
        TakeInteger();
        continue;
      }
      while (!token_.IsSymbol(")")) {
        if (token_.kind == TokenKind::End) Fail();
        Take();
      }
      Take();
    } else if ((token_.Is("on") && !PeekSecond().Is("delete") && !PeekSecond().Is("update")) ||
               token_.Is("textimage_on")) {
      Take();
      Take();
    } else {
      return;
    }
  }
}

Statement Parser::ParseCreateIndex() {
  CreateIndexStatement index;
  index.unique = Accept("unique");
  index.clustered = Accept("clustered");
  if (!index.clustered) Accept("nonclustered");
  Expect("index");
  index.name = TakeName();
  Expect("on");
  index.table = TakeObjectName();
  index.columns = TakeColumnList();
  if (Accept("include")) index.included = TakeNameList();
  if (Accept("where")) index.filter = ParseExpr();
  SkipIndexOptions();
  return {1, std::move(index)};
}

Statement Parser::ParseCreateView(std::size_t start) {
  Expect("view");
  CreateViewStatement view;
  view.name = TakeObjectName();
  if (token_.IsSymbol("(")) view.columns = TakeNameList();
  Expect("as");
  view.query = ParseQuery();
  view.text = std::string(text_.substr(start, token_.offset - start));
  return {1, std::move(view)};
}

}  // namespace sandbox
