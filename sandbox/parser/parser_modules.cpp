#include "sandbox/parser/parser.h"

namespace sandbox {

// Types and indexes, and what scripts define that this server only reads over.

Statement Parser::ParseCreateType() {
  Expect("type");
  CreateTypeStatement create;
  create.name = TakeObjectName();
  Expect("from");
  create.type = ParseType(1, create.name.name);
  if (Accept("not")) {
    create.nullable = false;
    Expect("null");
  } else {
    Accept("null");
  }
  return {1, std::move(create)};
}

Statement Parser::ParseAlterIndex() {
  Expect("index");
  AlterIndexStatement alter;
  if (!Accept("all")) alter.name = TakeName();
  Expect("on");
  alter.table = TakeObjectName();
  alter.disables = Accept("disable");
  if (!alter.disables) Expect("rebuild");
  SkipIndexOptions();
  return {1, std::move(alter)};
}

/// At what has a body of statements, or is bound to columns later on.
bool Parser::AtModule() const {
  for (const char* kind : {"procedure", "proc", "trigger", "function", "rule", "default"}) {
    if (token_.Is(kind)) return true;
  }
  return false;
}

// A module's body reaches to the end of its batch. It is not kept: nothing runs it here.
Statement Parser::SkipBatch() {
  while (token_.kind != TokenKind::End) Take();
  return {1, NothingStatement()};
}

Statement Parser::SkipStatistics() {
  for (const char* word : {"update", "statistics"}) Expect(word);
  TakeObjectName();
  return {1, NothingStatement()};
}

}  // namespace sandbox
