#include <algorithm>
#include <array>
#include <span>

#include "sandbox/parser/parser.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/errors.h"

namespace sandbox {

namespace {

constexpr int kMaxChain = 900;   // operators in a row, which make a tree as deep
constexpr int kCastLength = 30;  // of a text or binary type without a length in a cast
constexpr std::array<std::string_view, 9> kComparisons{
    "=", "<>", "!=", "<", "<=", ">", ">=", "!<", "!>"};
// Functions whose names are reserved words.
constexpr std::array<std::string_view, 5> kReservedFunctions{"left", "right", "coalesce", "nullif",
                                                             "identity"};

bool OneOf(const Token& token, std::span<const std::string_view> words) {
  return std::any_of(words.begin(), words.end(), [&](auto word) { return token.Is(word); });
}

}  // namespace

ExprPtr Parser::NewExpr(ExprKind kind) const {
  auto expr = std::make_unique<Expr>();
  expr->kind = kind;
  expr->line = token_.line;
  return expr;
}

std::vector<ExprPtr> Parser::ParseList() {
  std::vector<ExprPtr> list;
  do {
    list.push_back(ParseExpr());
  } while (AcceptSymbol(","));
  return list;
}

ExprPtr Parser::ParseOr() {
  DepthGuard guard(*this);
  ExprPtr left = ParseAnd();
  for (int chain = 0; token_.Is("or"); ++chain) {
    if (chain == kMaxChain) Raise(191);
    ExprPtr expr = NewExpr(ExprKind::Binary);
    Take();
    expr->text = "or";
    expr->args.push_back(std::move(left));
    expr->args.push_back(ParseAnd());
    left = std::move(expr);
  }
  return left;
}

ExprPtr Parser::ParseAnd() {
  ExprPtr left = ParseNot();
  for (int chain = 0; token_.Is("and"); ++chain) {
    if (chain == kMaxChain) Raise(191);
    ExprPtr expr = NewExpr(ExprKind::Binary);
    Take();
    expr->text = "and";
    expr->args.push_back(std::move(left));
    expr->args.push_back(ParseNot());
    left = std::move(expr);
  }
  return left;
}

ExprPtr Parser::ParseNot() {
  if (!token_.Is("not")) return ParsePredicate();
  DepthGuard guard(*this);
  ExprPtr expr = NewExpr(ExprKind::Unary);
  Take();
  expr->text = "not";
  expr->args.push_back(ParseNot());
  return expr;
}

ExprPtr Parser::ParsePredicate() {
  if (token_.Is("exists")) {
    ExprPtr expr = NewExpr(ExprKind::Exists);
    Take();
    ExpectSymbol("(");
    expr->query = ParseQuery();
    ExpectSymbol(")");
    return expr;
  }
  ExprPtr left = ParseSum();
  for (int chain = 0;; ++chain) {
    if (chain == kMaxChain) Raise(191);
    const Expr* before = left.get();
    if (token_.kind == TokenKind::Symbol) {
      left = ParseComparison(std::move(left));
    } else if (token_.Is("not")) {
      Take();
      left = ParseAfterOperand(std::move(left), true);
    } else {
      left = ParseAfterOperand(std::move(left), false);
    }
    if (left.get() == before) return left;
  }
}

ExprPtr Parser::ParseComparison(ExprPtr left) {
  const auto symbol = std::find(kComparisons.begin(), kComparisons.end(), token_.text);
  if (symbol == kComparisons.end()) return left;
  ExprPtr expr = NewExpr(ExprKind::Binary);
  Take();
  expr->text = *symbol == "!=" ? "<>" : *symbol == "!<" ? ">=" : *symbol == "!>" ? "<=" : *symbol;
  expr->args.push_back(std::move(left));
  expr->args.push_back(ParseSum());
  return expr;
}

// IS NULL, IN, BETWEEN and LIKE behind their left operand; the operand itself when none follows.
ExprPtr Parser::ParseAfterOperand(ExprPtr left, bool negated) {
  const auto start = [&](ExprKind kind) {
    ExprPtr expr = NewExpr(kind);
    Take();
    expr->negated = negated;
    expr->args.push_back(std::move(left));
    return expr;
  };
  if (token_.Is("is") && !negated) {
    ExprPtr expr = start(ExprKind::IsNull);
    expr->negated = Accept("not");
    Expect("null");
    return expr;
  }
  if (token_.Is("in")) {
    ExprPtr expr = start(ExprKind::In);
    ExpectSymbol("(");
    if (token_.Is("select")) {
      expr->query = ParseQuery();
    } else {
      for (ExprPtr& item : ParseList()) expr->args.push_back(std::move(item));
    }
    ExpectSymbol(")");
    return expr;
  }
  if (token_.Is("between")) {
    ExprPtr expr = start(ExprKind::Between);
    expr->args.push_back(ParseSum());
    Expect("and");
    expr->args.push_back(ParseSum());
    return expr;
  }
  if (token_.Is("like")) {
    ExprPtr expr = start(ExprKind::Like);
    expr->args.push_back(ParseSum());
    if (Accept("escape")) expr->args.push_back(ParseSum());
    return expr;
  }
  if (negated) Fail();
  return left;
}

ExprPtr Parser::ParseSum() {
  ExprPtr left = ParseProduct();
  const auto at_operator = [&] {
    return token_.kind == TokenKind::Symbol && token_.text.size() == 1 &&
           std::string_view("+-&").find(token_.text) != std::string_view::npos;
  };
  for (int chain = 0; at_operator(); ++chain) {
    if (chain == kMaxChain) Raise(191);
    ExprPtr expr = NewExpr(ExprKind::Binary);
    expr->text = std::string(Take().text);
    expr->args.push_back(std::move(left));
    expr->args.push_back(ParseProduct());
    left = std::move(expr);
  }
  return left;
}

ExprPtr Parser::ParseProduct() {
  ExprPtr left = ParseUnary();
  const auto at_operator = [&] {
    return token_.IsSymbol("*") || token_.IsSymbol("/") || token_.IsSymbol("%");
  };
  for (int chain = 0; at_operator(); ++chain) {
    if (chain == kMaxChain) Raise(191);
    ExprPtr expr = NewExpr(ExprKind::Binary);
    expr->text = std::string(Take().text);
    expr->args.push_back(std::move(left));
    expr->args.push_back(ParseUnary());
    left = std::move(expr);
  }
  return left;
}

ExprPtr Parser::ParseUnary() {
  const bool sign = token_.IsSymbol("-") || token_.IsSymbol("+");
  if (!sign) return ParseCollated();
  DepthGuard guard(*this);
  ExprPtr expr = NewExpr(ExprKind::Unary);
  expr->text = std::string(Take().text);
  if (expr->text == "-" && IsNumberToken(token_)) {
    expr->kind = ExprKind::Literal;
    expr->text = "-" + std::string(token_.text);
    expr->literal = ParseLiteral(Take(), true);
    return expr;
  }
  expr->args.push_back(ParseUnary());
  return expr;
}

ExprPtr Parser::ParseCollated() {
  ExprPtr value = ParsePrimary();
  while (token_.Is("collate")) {
    ExprPtr expr = NewExpr(ExprKind::Collate);
    Take();
    expr->text = TakeName();
    expr->args.push_back(std::move(value));
    value = std::move(expr);
  }
  return value;
}

ExprPtr Parser::ParsePrimary() {
  if (IsLiteralToken(token_)) {
    ExprPtr expr = NewExpr(ExprKind::Literal);
    const bool text = token_.kind == TokenKind::String || token_.kind == TokenKind::NString;
    expr->text = text ? "" : std::string(token_.text);
    expr->literal = ParseLiteral(Take());
    return expr;
  }
  if (token_.kind == TokenKind::Variable) {
    ExprPtr expr = NewExpr(ExprKind::Variable);
    expr->text = LowerText(Take().text);
    return expr;
  }
  if (token_.IsSymbol("(")) return ParseParenthesised();
  if (token_.IsSymbol("*")) {
    ExprPtr expr = NewExpr(ExprKind::Star);
    Take();
    return expr;
  }
  if (token_.IsName()) return ParseWord();
  Fail();
}

ExprPtr Parser::ParseParenthesised() {
  DepthGuard guard(*this);
  const int line = token_.line;
  Take();
  ExprPtr expr;
  if (token_.Is("select")) {
    expr = NewExpr(ExprKind::Subquery);
    expr->query = ParseQuery();
  } else {
    expr = ParseExpr();
  }
  expr->line = line;
  ExpectSymbol(")");
  return expr;
}

ExprPtr Parser::ParseWord() {
  if (token_.Is("case")) return ParseCase();
  const int line = token_.line;
  const bool call = PeekSecond().IsSymbol("(");
  if (call && token_.kind == TokenKind::Word) {
    const std::string name = LowerText(token_.text);
    if (name == "cast") return ParseCast();
    if (name == "convert") return ParseConvert();
    if (IsReserved(token_) && !OneOf(token_, kReservedFunctions)) Fail();
    Take();
    return ParseFunction(name, line);
  }
  ExprPtr expr = NewExpr(ExprKind::Column);
  expr->parts.push_back(TakeName());
  while (AcceptSymbol(".")) {
    if (token_.IsSymbol("*")) {
      Take();
      expr->kind = ExprKind::Star;
      return expr;
    }
    expr->parts.push_back(token_.IsSymbol(".") ? "" : TakeName());
  }
  if (token_.IsSymbol("(")) return ParseFunction(LowerText(expr->parts.back()), line);
  return expr;
}

ExprPtr Parser::ParseFunction(std::string name, int line) {
  ExprPtr expr = NewExpr(ExprKind::Function);
  expr->text = std::move(name);
  expr->line = line;
  ExpectSymbol("(");
  expr->distinct = Accept("distinct");
  if (!expr->distinct) Accept("all");
  if (!token_.IsSymbol(")")) {
    // The unit of dateadd and its kin is a word, not a column; it becomes a column expression.
    expr->args = ParseList();
  }
  ExpectSymbol(")");
  return expr;
}

ExprPtr Parser::ParseCase() {
  DepthGuard guard(*this);
  ExprPtr expr = NewExpr(ExprKind::Case);
  Take();
  if (!token_.Is("when")) {
    expr->has_operand = true;
    expr->args.push_back(ParseExpr());
  }
  if (!token_.Is("when")) Fail();
  while (Accept("when")) {
    expr->args.push_back(ParseExpr());
    Expect("then");
    expr->args.push_back(ParseExpr());
  }
  if (Accept("else")) {
    expr->has_else = true;
    expr->args.push_back(ParseExpr());
  }
  Expect("end");
  return expr;
}

ExprPtr Parser::ParseCast() {
  ExprPtr expr = NewExpr(ExprKind::Cast);
  expr->text = "cast";
  Take();
  ExpectSymbol("(");
  expr->args.push_back(ParseExpr());
  Expect("as");
  expr->type = ParseType(1, "cast", kCastLength);
  ExpectSymbol(")");
  return expr;
}

ExprPtr Parser::ParseConvert() {
  ExprPtr expr = NewExpr(ExprKind::Cast);
  expr->text = "convert";
  Take();
  ExpectSymbol("(");
  expr->type = ParseType(1, "convert", kCastLength);
  ExpectSymbol(",");
  expr->args = ParseList();
  if (expr->args.size() > 2) Fail();
  ExpectSymbol(")");
  return expr;
}

}  // namespace sandbox
