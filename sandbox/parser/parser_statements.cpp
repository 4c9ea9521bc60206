#include <array>

#include "sandbox/parser/parser.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/errors.h"

namespace sandbox {
StatementPtr Parser::ParseStatement() {
  const DepthGuard guard(*this);
  const int line = token_.line;
  auto statement = std::make_unique<Statement>(ParseKeyword());
  statement->line = line;
  while (AcceptSymbol(";")) {
  }
  return statement;
}

Statement Parser::ParseKeyword() {
  using Handler = Statement (*)(Parser&);
  struct Entry {
    std::string_view word;
    Handler parse;
  };
  using Transaction = TransactionStatement::Kind;
  static constexpr std::array kEntries{
      Entry{"select",
            [](Parser& p) {
              return Statement{1, SelectStatement{p.ParseQuery()}};
            }},
      Entry{"insert", [](Parser& p) { return p.ParseInsert(); }},
      Entry{"update", [](Parser& p) { return p.ParseUpdate(); }},
      Entry{"delete", [](Parser& p) { return p.ParseDelete(); }},
      Entry{"create", [](Parser& p) { return p.ParseCreate(); }},
      Entry{"drop", [](Parser& p) { return p.ParseDrop(); }},
      Entry{"alter", [](Parser& p) { return p.ParseAlter(); }},
      Entry{"begin", [](Parser& p) { return p.ParseBegin(); }},
      Entry{"declare", [](Parser& p) { return p.ParseDeclare(); }},
      Entry{"set", [](Parser& p) { return p.ParseSet(); }},
      Entry{"if", [](Parser& p) { return p.ParseIf(); }},
      Entry{"exec", [](Parser& p) { return p.ParseExecute(false); }},
      Entry{"execute", [](Parser& p) { return p.ParseExecute(false); }},
      Entry{"commit", [](Parser& p) { return p.ParseTransaction(Transaction::Commit); }},
      Entry{"rollback", [](Parser& p) { return p.ParseTransaction(Transaction::Rollback); }},
      Entry{"raiserror", [](Parser& p) { return p.ParseRaise(); }},
      Entry{"waitfor", [](Parser& p) { return p.ParseWait(); }},
      Entry{"use", [](Parser& p) { return p.ParseUse(); }},
      Entry{"truncate",
            [](Parser& p) {
              p.Take();
              p.Expect("table");
              return Statement{1, TruncateStatement{p.TakeObjectName()}};
            }},
  };
  for (const Entry& entry : kEntries) {
    if (token_.Is(entry.word)) return entry.parse(*this);
  }
  return ParseIdle();
}

// Rights, which every login has, and upkeep of files, which nobody has to do here.
Statement Parser::ParseIdle() {
  if (Accept("checkpoint")) return {1, NothingStatement()};
  if (token_.Is("dbcc") && PeekSecond().Is("checkident")) return ParseReseed();
  for (const char* word : {"grant", "revoke", "deny", "dbcc", "backup", "dump"}) {
    if (!token_.Is(word)) continue;
    while (token_.kind != TokenKind::End && !token_.IsSymbol(";")) Take();
    return {1, NothingStatement()};
  }
  Fail();
}

// "checkident ('t', reseed, 5)"; without a number there is nothing to do.
Statement Parser::ParseReseed() {
  Take();
  Take();
  ExpectSymbol("(");
  const bool is_text = token_.kind == TokenKind::String || token_.kind == TokenKind::NString;
  const std::string text = is_text ? Unquote(Take().text, '\'') : std::string();
  ReseedStatement reseed{is_text ? Parser(text).ParseNameText() : TakeObjectName()};
  const bool has_number =
      AcceptSymbol(",") && (Accept("reseed") || Accept("noreseed")) && AcceptSymbol(",");
  if (has_number) {
    const bool is_negative = AcceptSymbol("-");
    reseed.last = TakeInteger() * (is_negative ? -1 : 1);
  }
  ExpectSymbol(")");
  if (!has_number) return {1, NothingStatement()};
  return {1, std::move(reseed)};
}

// Statements up to "end".
Block Parser::ParseUntilEnd() {
  Block block;
  while (AcceptSymbol(";")) {
  }
  while (!token_.Is("end")) {
    if (token_.kind == TokenKind::End) Fail();
    block.push_back(ParseStatement());
  }
  Take();
  return block;
}

Statement Parser::ParseBegin() {
  if (PeekSecond().Is("tran") || PeekSecond().Is("transaction")) {
    return ParseTransaction(TransactionStatement::Kind::Begin);
  }
  Expect("begin");
  return {1, BlockStatement{ParseUntilEnd()}};
}

Statement Parser::ParseTransaction(TransactionStatement::Kind kind) {
  Take();
  const bool word = Accept("tran") || Accept("transaction");
  if (!word) Accept("work");
  const bool named =
      word && ((token_.IsName() && !IsReserved(token_)) || token_.kind == TokenKind::Variable);
  if (named) Take();  // there are no transactions within others that it could mean
  return {1, TransactionStatement{kind}};
}

Statement Parser::ParseDeclare() {
  Expect("declare");
  DeclareStatement declare;
  do {
    if (token_.kind != TokenKind::Variable) Fail();
    DeclareItem item;
    item.name = LowerText(Take().text);
    Accept("as");
    item.type = ParseType(static_cast<int>(declare.items.size()) + 1, item.name);
    if (AcceptSymbol("=")) item.value = ParseExpr();
    declare.items.push_back(std::move(item));
  } while (AcceptSymbol(","));
  return {1, std::move(declare)};
}

Statement Parser::ParseSet() {
  Expect("set");
  if (token_.kind == TokenKind::Variable) {
    SetVariableStatement set;
    set.name = LowerText(Take().text);
    ExpectSymbol("=");
    set.value = ParseExpr();
    return {1, std::move(set)};
  }
  SetOptionStatement option;
  if (Accept("identity_insert")) {
    option.words.push_back("identity_insert");
    option.table = TakeObjectName();
    option.words.push_back(LowerText(token_.text));
    if (!token_.Is("on") && !token_.Is("off")) Fail();
    Take();
    return {1, std::move(option)};
  }
  if (!token_.IsName()) Fail();
  do {
    if (!option.words.empty() && token_.Is("on")) break;
    option.words.push_back(LowerText(Take().text));
  } while (AcceptSymbol(","));
  if (option.words.front() == "transaction") {  // isolation level ...
    Expect("isolation");
    Expect("level");
    for (int i = 0; i < 2 && token_.IsName() && !IsReserved(token_); ++i) Take();
    return {1, std::move(option)};
  }
  while (token_.IsName() && !token_.Is("on") && !token_.Is("off") && !IsReserved(token_) &&
         (token_.Is("io") || token_.Is("time") || token_.Is("xml") || token_.Is("profile"))) {
    option.words.push_back(LowerText(Take().text));
  }
  if (token_.Is("on") || token_.Is("off") || (token_.IsName() && !IsReserved(token_))) {
    option.words.push_back(LowerText(Take().text));
  } else {
    option.value = ParseUnary();
  }
  return {1, std::move(option)};
}

Statement Parser::ParseIf() {
  Expect("if");
  IfStatement branch;
  branch.condition = ParseExpr();
  branch.then = ParseStatement();
  if (Accept("else")) branch.otherwise = ParseStatement();
  return {1, std::move(branch)};
}

Statement Parser::ParseExecute(bool without_keyword) {
  if (!without_keyword) Take();
  ExecuteStatement execute;
  execute.procedure = TakeObjectName();
  const auto at_argument = [&] {
    return token_.kind == TokenKind::Variable || IsLiteralToken(token_) || token_.IsSymbol("-") ||
           token_.kind == TokenKind::Quoted || token_.Is("default") ||
           (token_.kind == TokenKind::Word && !IsReserved(token_));
  };
  if (!at_argument()) return {1, std::move(execute)};
  do {
    ExecuteArgument argument;
    if (token_.kind == TokenKind::Variable && PeekSecond().IsSymbol("=")) {
      argument.name = std::string(Take().text);
      Take();
    }
    if (token_.IsName() && !IsLiteralToken(token_)) {  // a bare word is its text
      argument.value = NewExpr(ExprKind::Literal);
      if (token_.Is("default")) {
        argument.value = nullptr;
        Take();
      } else {
        const Token word = Take();
        argument.value->literal = {std::string(word.text), {SqlType::NVarChar, 4000, 0, 0}, false};
      }
    } else {
      argument.value = ParseUnary();
    }
    execute.arguments.push_back(std::move(argument));
  } while (AcceptSymbol(","));
  return {1, std::move(execute)};
}

Statement Parser::ParseRaise() {
  Take();
  RaiseStatement raise;
  ExpectSymbol("(");
  raise.args = ParseList();
  ExpectSymbol(")");
  if (Accept("with")) {
    do {
      TakeName();
    } while (AcceptSymbol(","));
  }
  return {1, std::move(raise)};
}

Statement Parser::ParseWait() {
  Take();
  Expect("delay");
  return {1, WaitStatement{ParsePrimary()}};
}

Statement Parser::ParseUse() {
  Take();
  return {1, UseStatement{TakeName()}};
}

}  // namespace sandbox
