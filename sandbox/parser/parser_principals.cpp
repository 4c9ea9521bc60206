#include "sandbox/parser/parser.h"

namespace sandbox {

bool Parser::AtPrincipal() const {
  return token_.Is("schema") || token_.Is("login") || token_.Is("user");
}

Statement Parser::ParsePrincipal() {
  using Kind = PrincipalStatement::Kind;
  PrincipalStatement statement;
  statement.kind = token_.Is("schema")  ? Kind::Schema
                   : token_.Is("login") ? Kind::Login
                                        : Kind::User;
  Advance();
  statement.name = TakeName();
  ParsePrincipalOptions(statement);
  return {1, std::move(statement)};
}

void Parser::ParsePrincipalOptions(PrincipalStatement& statement) {
  if (Accept("authorization")) {
    statement.owner = TakeName();
  } else if (Accept("for") || Accept("from")) {
    Expect("login");
    statement.login = TakeName();
  }
  if (!Accept("with")) return;
  do {
    const bool password = token_.Is("password"), schema = token_.Is("default_schema");
    TakeName();
    ExpectSymbol("=");
    if (password) {
      statement.password = TakeAlias();
    } else if (schema) {
      statement.default_schema = TakeName();
    } else {  // policies and languages
      Take();
    }
  } while (AcceptSymbol(","));
}

}  // namespace sandbox
