#include "sandbox/parser/parser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <unordered_set>

#include "sandbox/text/text_order.h"
#include "sandbox/values/errors.h"

namespace sandbox {

namespace {

constexpr std::size_t kMaxNameLength = 128;
constexpr int kMaxDepth = 200;

constexpr std::string_view kReservedWords =
    " "
    "add all alter and any as asc begin between break by cascade case check close clustered "
    "coalesce collate column commit constraint continue convert create cross current_timestamp "
    "database declare default delete desc distinct drop else end escape except exec execute "
    "exists fetch for foreign from full goto group having holdlock identity identity_insert if in "
    "index inner insert intersect into is join key left like nocheck nonclustered not null nullif "
    "of on option or order outer over percent primary print procedure raiserror references return "
    "right rollback save select set table then top truncate union unique update use values view "
    "waitfor when where while with ";

// The words between the blanks of a text.
std::unordered_set<std::string_view> Words(std::string_view text) {
  std::unordered_set<std::string_view> words;
  for (std::size_t end = 0; text.size() > 1; text.remove_prefix(end)) {
    end = text.find(' ', 1);
    words.insert(text.substr(1, end - 1));
  }
  return words;
}

constexpr std::size_t kLongestReserved = 20;

}  // namespace

std::string ObjectName::Text() const {
  std::string text = name;
  if (!schema.empty() || !database.empty()) text = schema + "." + text;
  return database.empty() ? text : database + "." + text;
}

bool IsReserved(const Token& token) {
  if (token.kind != TokenKind::Word || token.text.size() > kLongestReserved) return false;
  std::array<char, kLongestReserved> lower;
  std::transform(token.text.begin(), token.text.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  static const std::unordered_set<std::string_view> kReserved = Words(kReservedWords);
  return kReserved.contains({lower.data(), token.text.size()});
}

Parser::DepthGuard::DepthGuard(Parser& parser) : depth(parser.depth_) {
  if (depth >= kMaxDepth) Raise(191);
  ++depth;
}

Parser::Parser(std::string_view text) : text_(text), lexer_(text) {
  Advance();
}

const Token& Parser::PeekSecond() {
  if (!second_) {
    lexer_.Read(second_.emplace());
  }
  return *second_;
}

void Parser::Advance() {
  if (!second_) return lexer_.Read(token_);
  token_ = *second_;
  second_.reset();
}

Token Parser::Take() {
  const Token taken = token_;
  Advance();
  return taken;
}

bool Parser::Accept(std::string_view keyword) {
  if (!token_.Is(keyword)) return false;
  Advance();
  return true;
}

bool Parser::AcceptSymbol(std::string_view symbol) {
  if (!token_.IsSymbol(symbol)) return false;
  Advance();
  return true;
}

void Parser::Expect(std::string_view keyword) {
  if (!Accept(keyword)) Fail();
}

void Parser::ExpectSymbol(std::string_view symbol) {
  if (!AcceptSymbol(symbol)) Fail();
}

// The server names what it stumbled over; at the end of the text that is what it read last.
void Parser::Fail() const {
  Token near = token_;
  if (token_.kind == TokenKind::End) {
    Lexer again(text_);
    Token token;
    for (again.Read(token); token.kind != TokenKind::End; again.Read(token)) near = token;
  }
  SqlError error = IsReserved(token_) ? Error(156, near.text) : Error(102, near.text);
  error.messages.front().line = near.line;
  throw error;
}

std::string Parser::TakeName() {
  if (!token_.IsName() || IsReserved(token_)) Fail();
  const Token token = Take();
  std::string name = token.escaped ? Unquote(token.text, text_[token.offset - 1] == '[' ? ']' : '"')
                                   : std::string(token.text);
  if (token.kind == TokenKind::Quoted && name.empty()) Raise(1038);
  if (name.size() > kMaxNameLength && CompareText(name, "") != 0) {
    const auto characters =
        std::count_if(name.begin(), name.end(), [](char c) { return (c & 0xC0) != 0x80; });
    if (static_cast<std::size_t>(characters) > kMaxNameLength) Raise(103, name.substr(0, 128));
  }
  return name;
}

ObjectName Parser::TakeObjectName() {
  std::vector<std::string> parts{TakeName()};
  while (AcceptSymbol(".")) {
    parts.push_back(token_.IsSymbol(".") ? "" : TakeName());
  }
  if (parts.size() > 4) Fail();
  ObjectName name;
  name.name = parts.back();
  if (parts.size() > 1) name.schema = parts[parts.size() - 2];
  if (parts.size() > 2) name.database = parts[parts.size() - 3];
  if (name.IsTemporary()) name.schema = name.database = "";
  return name;
}

bool Parser::AtAlias() const {
  if (token_.kind == TokenKind::String || token_.kind == TokenKind::NString) return true;
  return token_.IsName() && !IsReserved(token_);
}

std::string Parser::TakeAlias() {
  if (token_.kind == TokenKind::String || token_.kind == TokenKind::NString) {
    return Unquote(Take().text, '\'');
  }
  return TakeName();
}

std::vector<std::string> Parser::TakeNameList() {
  ExpectSymbol("(");
  std::vector<std::string> names;
  do {
    names.push_back(TakeName());
  } while (AcceptSymbol(","));
  ExpectSymbol(")");
  return names;
}

ColumnList Parser::TakeColumnList() {
  ExpectSymbol("(");
  ColumnList list;
  do {
    list.names.push_back(TakeName());
    const bool descending = Accept("desc");
    if (!descending) Accept("asc");
    list.descending.push_back(descending);
  } while (AcceptSymbol(","));
  ExpectSymbol(")");
  return list;
}

std::int64_t Parser::TakeInteger() {
  const bool negative = AcceptSymbol("-");
  if (!negative) AcceptSymbol("+");
  if (token_.kind != TokenKind::Integer) Fail();
  const Token token = Take();
  std::int64_t number = 0;
  const auto [end, failure] =
      std::from_chars(token.text.data(), token.text.data() + token.text.size(), number);
  if (failure != std::errc()) Raise(1007, token.text);
  return negative ? -number : number;
}

Block Parser::ParseBatch() {
  Block block;
  while (token_.kind != TokenKind::End) {
    if (AcceptSymbol(";")) continue;
    // A batch may begin with a procedure's name alone.
    const bool call = block.empty() && token_.IsName() && !IsReserved(token_) &&
                      !token_.Is("merge") && !token_.Is("deny") && !token_.Is("grant") &&
                      !token_.Is("revoke") && !token_.Is("dbcc") && !token_.Is("backup") &&
                      !token_.Is("dump") && !token_.Is("checkpoint") && !token_.Is("tran") &&
                      !PeekSecond().IsSymbol(":");
    if (call) {
      auto statement = std::make_unique<Statement>();
      const int line = token_.line;
      *statement = ParseExecute(true);
      statement->line = line;
      block.push_back(std::move(statement));
      continue;
    }
    block.push_back(ParseStatement());
  }
  return block;
}

ExprPtr Parser::ParseExpressionText() {
  ExprPtr expr = ParseExpr();
  if (token_.kind != TokenKind::End) Fail();
  return expr;
}

ObjectName Parser::ParseNameText() {
  ObjectName name = TakeObjectName();
  if (token_.kind != TokenKind::End) Fail();
  return name;
}

InsertBulkStatement Parser::ParseInsertBulk() {
  InsertBulkStatement bulk;
  Expect("insert");
  Expect("bulk");
  bulk.table = TakeObjectName();
  ExpectSymbol("(");
  do {
    ColumnSyntax column;
    column.column.name = TakeName();
    column.column.type = ParseType(static_cast<int>(bulk.columns.size()) + 1, column.column.name);
    if (Accept("collate")) TakeName();
    if (Accept("not")) Expect("null");
    Accept("null");
    bulk.columns.push_back(std::move(column));
  } while (AcceptSymbol(","));
  ExpectSymbol(")");
  if (!Accept("with")) return bulk;
  ExpectSymbol("(");
  do {
    // The other hints are about speed, and about triggers, of which there are none.
    if (Accept("keep_nulls")) {
      bulk.keeps_nulls = true;
    } else if (Accept("check_constraints")) {
      bulk.checks_constraints = true;
    } else {
      TakeName();
      if (AcceptSymbol("=")) TakeInteger();
    }
  } while (AcceptSymbol(","));
  ExpectSymbol(")");
  return bulk;
}

}  // namespace sandbox
