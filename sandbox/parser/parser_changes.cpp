#include "sandbox/parser/parser.h"

namespace sandbox {

Statement Parser::ParseDrop() {
  Expect("drop");
  if (Accept("database")) return {1, DropDatabaseStatement{TakeName()}};
  if (AtModule()) {
    Take();
    do {
      TakeObjectName();
    } while (AcceptSymbol(","));
    return {1, NothingStatement()};
  }
  DropTableStatement drop;
  drop.view = token_.Is("view");
  if (!drop.view && !token_.Is("table")) Fail();
  Take();
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
  } else if (token_.Is("check") || token_.Is("nocheck")) {
    alter.action = token_.Is("check") ? AlterTableStatement::Action::Check
                                      : AlterTableStatement::Action::NoCheck;
    Take();
    alter.names = ParseConstraintNames();
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
    ParseTableElement(alter.columns, alter.constraints);
  } while (AcceptSymbol(","));
}

void Parser::ParseAlterDrop(AlterTableStatement& alter) {
  alter.action = AlterTableStatement::Action::DropConstraint;
  Accept("constraint");
  do {
    alter.names.push_back(TakeName());
  } while (AcceptSymbol(","));
}

}  // namespace sandbox
