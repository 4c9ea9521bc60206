#include "sandbox/sql/errors.h"
#include "sandbox/sql/parser.h"
#include "sandbox/sql/type_rules.h"

namespace sandbox {

TypeInfo Parser::ParseType(int position, std::string_view column, int default_length,
                           ObjectName* alias) {
  if (!token_.IsName()) Fail();
  const ObjectName full_name = TakeObjectName();  // "sys.int"
  std::string name = full_name.name;
  if (name == "double" && Accept("precision")) name = "float";
  if (token_.Is("varying")) {
    Take();
    name = "var" + name;
  }
  std::vector<int> args;
  if (AcceptSymbol("(")) {
    do {
      if (Accept("max")) {
        args.push_back(-1);
      } else if (token_.IsName()) {
        TakeName();  // "xml(collection)"
      } else {
        args.push_back(static_cast<int>(std::min<std::int64_t>(TakeInteger(), INT32_MAX)));
      }
    } while (AcceptSymbol(","));
    ExpectSymbol(")");
  }
  auto type = DeclaredType(name, args, position, column);
  if (!type && alias && args.empty()) {
    *alias = full_name;
    return {};
  }
  if (!type) Raise(2715, position, name);
  const bool sized = IsText(type->type) || IsBinary(type->type);
  if (args.empty() && sized && type->length == 1) type->length = default_length;
  return *type;
}

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
  if (AtPrincipal()) return ParsePrincipal(PrincipalStatement::Action::Create);
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
    if (token_.IsSymbol(")") && !create.columns.empty())
      break;  // the server takes a comma behind the last column
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

void Parser::ParseTableElement(std::vector<ColumnSyntax>& columns,
                               std::vector<ConstraintSyntax>& constraints) {
  if (AtConstraint()) {
    constraints.push_back(ParseConstraint(""));
  } else if (token_.Is("period") && PeekSecond().Is("for")) {  // its columns say it themselves
    for (const char* word : {"period", "for", "system_time"}) Expect(word);
    TakeNameList();
  } else {
    ParseColumn(columns, constraints);
  }
}

void Parser::ParseColumn(std::vector<ColumnSyntax>& columns,
                         std::vector<ConstraintSyntax>& constraints) {
  ColumnSyntax column;
  column.line = token_.line;
  if (token_.Is("timestamp") && (PeekSecond().IsSymbol(",") || PeekSecond().IsSymbol(")"))) {
    Take();
    column.column.name = "timestamp";
    column.column.type = {SqlType::Timestamp, 8, 0, 0};
  } else {
    column.column.name = TakeName();
    if (token_.Is("as")) {
      ParseComputed(column);
    } else {
      column.column.type = ParseType(static_cast<int>(columns.size()) + 1, column.column.name, 1,
                                     &column.alias_type);
    }
  }
  ParseColumnOptions(column, constraints);
  columns.push_back(std::move(column));
}

void Parser::ParseComputed(ColumnSyntax& column) {
  Expect("as");
  column.computed = ParseExpr();
  column.column.persisted = Accept("persisted");
}

// What else a column may be told to be. False with nothing taken when there is none of it.
bool Parser::ParseColumnTrait(ColumnDef& column) {
  if (Accept("rowguidcol")) return column.row_guid = true;
  if (Accept("sparse")) return column.sparse = true;
  if (Accept("collate")) {
    column.collation = TakeName();
    return true;
  }
  if (Accept("masked")) {
    Expect("with");
    ExpectSymbol("(");
    Expect("function");
    ExpectSymbol("=");
    TakeAlias();
    ExpectSymbol(")");
    return column.masked = true;
  }
  if (!Accept("generated")) return false;
  for (const char* word : {"always", "as", "row"}) Expect(word);
  column.generated = token_.Is("end") ? Generated::RowEnd : Generated::RowStart;
  if (!Accept("end")) Expect("start");
  column.hidden = Accept("hidden");
  return true;
}

void Parser::ParseIdentity(ColumnDef& column) {
  column.identity = true;
  if (AcceptSymbol("(")) {
    column.seed = TakeInteger();
    ExpectSymbol(",");
    column.increment = TakeInteger();
    ExpectSymbol(")");
  }
}

void Parser::ParseColumnOptions(ColumnSyntax& column, std::vector<ConstraintSyntax>& constraints) {
  while (true) {
    if (Accept("null")) {
      column.nullable = true;
    } else if (token_.Is("not") && PeekSecond().Is("for")) {
      Take();
      Take();
      Expect("replication");
    } else if (Accept("not")) {
      Expect("null");
      column.nullable = false;
    } else if (Accept("identity")) {
      ParseIdentity(column.column);
    } else if (ParseColumnTrait(column.column)) {
      continue;
    } else if (AtConstraint() || token_.Is("default") || token_.Is("references")) {
      constraints.push_back(ParseConstraint(column.column.name));
    } else {
      return;
    }
  }
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
    if (Accept("not")) {
      Expect("for");
      Expect("replication");
    }
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
    if (Accept("not")) {
      Expect("for");
      Expect("replication");
      continue;
    }
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
  if (Accept("with")) {  // schemabinding and its kin
    do {
      TakeName();
    } while (AcceptSymbol(","));
  }
  Expect("as");
  view.query = ParseQuery();
  if (Accept("with")) {
    for (const char* word : {"check", "option"}) Expect(word);
  }
  view.text = std::string(text_.substr(start, token_.offset - start));
  return {1, std::move(view)};
}

Statement Parser::ParseDrop() {
  Expect("drop");
  const auto if_exists = [&] {
    if (!Accept("if")) return false;
    Expect("exists");
    return true;
  };
  if (Accept("database")) {
    DropDatabaseStatement drop;
    drop.if_exists = if_exists();
    do {
      drop.names.push_back(TakeName());
    } while (AcceptSymbol(","));
    return {1, std::move(drop)};
  }
  if (AtPrincipal()) return ParsePrincipal(PrincipalStatement::Action::Drop);
  if (Accept("index")) {
    DropIndexStatement drop;
    drop.if_exists = if_exists();
    const ObjectName name = TakeObjectName();
    drop.name = name.name;
    if (Accept("on")) {
      drop.table = TakeObjectName();
    } else {  // "drop index t.i"
      drop.table.name = name.schema;
      drop.table.schema = name.database;
      if (name.schema.empty()) Fail();
    }
    return {1, std::move(drop)};
  }
  if (Accept("type")) {
    DropTypeStatement drop;
    drop.if_exists = if_exists();
    drop.name = TakeObjectName();
    return {1, std::move(drop)};
  }
  if (AtModule()) {
    Take();
    if_exists();
    do {
      TakeObjectName();
    } while (AcceptSymbol(","));
    return {1, NothingStatement()};
  }
  DropTableStatement drop;
  drop.view = token_.Is("view");
  if (!drop.view && !token_.Is("table")) Fail();
  Take();
  drop.if_exists = if_exists();
  do {
    drop.tables.push_back(TakeObjectName());
  } while (AcceptSymbol(","));
  return {1, std::move(drop)};
}

Statement Parser::ParseAlter() {
  Expect("alter");
  if (Accept("database")) {  // options of files and recovery change nothing here
    while (token_.kind != TokenKind::End && !token_.IsSymbol(";")) Take();
    return {1, NothingStatement()};
  }
  if (AtPrincipal()) return ParsePrincipal(PrincipalStatement::Action::Alter);
  if (token_.Is("index")) return ParseAlterIndex();
  if (AtModule()) return SkipBatch();
  Expect("table");
  AlterTableStatement alter;
  alter.table = TakeObjectName();
  if (Accept("with")) {
    alter.checks_rows = !token_.Is("nocheck");
    if (!Accept("nocheck")) Expect("check");
  }
  if (Accept("add")) {
    ParseAlterAdd(alter);
  } else if (Accept("drop")) {
    ParseAlterDrop(alter);
  } else if (Accept("alter")) {
    Expect("column");
    alter.action = AlterTableStatement::Action::AlterColumn;
    ColumnSyntax column;
    column.column.name = TakeName();
    column.column.type = ParseType(1, column.column.name, 1, &column.alias_type);
    ParseColumnOptions(column, alter.constraints);
    alter.columns.push_back(std::move(column));
  } else if (token_.Is("check") || token_.Is("nocheck")) {
    alter.action = token_.Is("check") ? AlterTableStatement::Action::Check
                                      : AlterTableStatement::Action::NoCheck;
    Take();
    alter.names = ParseConstraintNames();
  } else if (Accept("enable") || Accept("disable")) {  // there are no triggers
    Expect("trigger");
    TakeName();
    alter.action = AlterTableStatement::Action::Nothing;
  } else {
    Fail();
  }
  return {1, std::move(alter)};
}

// "constraint all", "constraint a, b"
std::vector<std::string> Parser::ParseConstraintNames() {
  Expect("constraint");
  if (Accept("all")) return {};
  std::vector<std::string> names;
  do {
    names.push_back(TakeName());
  } while (AcceptSymbol(","));
  return names;
}

void Parser::ParseAlterAdd(AlterTableStatement& alter) {
  do {
    if (token_.Is("default")) {
      alter.constraints.push_back(ParseConstraint(""));
    } else {
      ParseTableElement(alter.columns, alter.constraints);
    }
  } while (AcceptSymbol(","));
}

void Parser::ParseAlterDrop(AlterTableStatement& alter) {
  alter.action = AlterTableStatement::Action::DropConstraint;
  if (Accept("column")) {
    alter.action = AlterTableStatement::Action::DropColumn;
  } else {
    Accept("constraint");
  }
  if (Accept("if")) {
    Expect("exists");
    alter.if_exists = true;
  }
  do {
    alter.names.push_back(TakeName());
  } while (AcceptSymbol(","));
}

}  // namespace sandbox
