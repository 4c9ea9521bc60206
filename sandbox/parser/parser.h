#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/parser/ast.h"
#include "sandbox/parser/lexer.h"

namespace sandbox {

/// Reads T-SQL text into statements. Raises the server's syntax errors (102, 105, 156, ...), with
/// the line in the message. The text must outlive the parser; nothing of what it returns
/// looks at it.
class Parser {
 public:
  explicit Parser(std::string_view text);

  /// The whole text as one batch.
  Block ParseBatch();
  /// The whole text as one condition or value, as a default or check is kept.
  ExprPtr ParseExpressionText();
  /// "INSERT BULK t (a int, ...) with (...)": the table and its columns.
  InsertBulkStatement ParseInsertBulk();
  /// A name by itself: "dbo.[my table]".
  ObjectName ParseNameText();

 private:
  // tokens (parser.cpp)
  const Token& Peek() const { return token_; }
  const Token& PeekSecond();
  Token Take();
  void Advance();
  bool Accept(std::string_view keyword);
  bool AcceptSymbol(std::string_view symbol);
  void Expect(std::string_view keyword);
  void ExpectSymbol(std::string_view symbol);
  [[noreturn]] void Fail() const;
  std::string TakeName();
  ObjectName TakeObjectName();
  std::string TakeAlias();
  bool AtAlias() const;
  ColumnList TakeColumnList();
  std::vector<std::string> TakeNameList();
  std::int64_t TakeInteger();

  // statements (parser_statements.cpp)
  StatementPtr ParseStatement();
  Block ParseUntilEnd();
  Statement ParseKeyword();
  Statement ParseIdle();
  Statement ParseBegin();
  Statement ParseDeclare();
  Statement ParseSet();
  Statement ParseIf();
  Statement ParseExecute(bool without_keyword);
  Statement ParseTransaction(TransactionStatement::Kind kind);
  Statement ParseRaise();
  Statement ParseWait();
  Statement ParseUse();
  Statement ParseReseed();

  // rows (parser_rows.cpp)
  Statement ParseInsert();
  Statement ParseUpdate();
  Statement ParseDelete();
  void ParseValuesRows(InsertStatement& insert);

  // definitions (parser_definitions.cpp)
  Statement ParseCreate();
  Statement ParseCreateTable();
  Statement ParseCreateIndex();
  Statement ParseCreateView(std::size_t start);
  bool AtConstraint() const;
  ConstraintSyntax ParseConstraint(std::string_view column);
  KeySyntax ParseKey(bool primary, std::string_view column);
  ForeignKeySyntax ParseReferences(std::string_view column);
  void SkipIndexOptions();

  // columns (parser_columns.cpp)
  void ParseTableElement(std::vector<ColumnSyntax>& columns,
                         std::vector<ConstraintSyntax>& constraints);
  void ParseColumn(std::vector<ColumnSyntax>& columns, std::vector<ConstraintSyntax>& constraints);
  void ParseColumnOptions(ColumnSyntax& column, std::vector<ConstraintSyntax>& constraints);
  void ParseIdentity(ColumnDef& column);
  bool ParseColumnTrait(ColumnDef& column);
  /// A name that is no type of the server's goes to `alias`; without one it raises 2715.
  TypeInfo ParseType(int position, std::string_view column, int default_length = 1,
                     ObjectName* alias = nullptr);

  // drops and changes (parser_changes.cpp)
  Statement ParseDrop();
  Statement ParseAlter();
  void ParseAlterAdd(AlterTableStatement& alter);
  void ParseAlterDrop(AlterTableStatement& alter);
  std::vector<std::string> ParseConstraintNames();

  // schemas, logins and users (parser_principals.cpp)
  bool AtPrincipal() const;
  Statement ParsePrincipal();
  void ParsePrincipalOptions(PrincipalStatement& statement);

  // types, indexes and what is read over (parser_modules.cpp)
  Statement ParseCreateType();
  Statement ParseAlterIndex();
  bool AtModule() const;
  Statement SkipBatch();
  Statement SkipStatistics();

  // queries (parser_query.cpp)
  QueryPtr ParseQuery();
  Select ParseSelect();
  SelectItem ParseSelectItem();
  std::vector<FromItem> ParseFrom();
  FromItem ParseFromPrimary();
  void ParseJoins(std::vector<FromItem>& items);
  std::vector<OrderItem> ParseOrderList();

  // expressions (parser_expression.cpp)
  ExprPtr ParseExpr() { return ParseOr(); }
  ExprPtr ParseOr();
  ExprPtr ParseAnd();
  ExprPtr ParseNot();
  ExprPtr ParsePredicate();
  ExprPtr ParseAfterOperand(ExprPtr left, bool negated);
  ExprPtr ParseComparison(ExprPtr left);
  ExprPtr ParseSum();
  ExprPtr ParseProduct();
  ExprPtr ParseUnary();
  ExprPtr ParsePrimary();
  ExprPtr ParseCollated();
  ExprPtr ParseParenthesised();
  ExprPtr ParseWord();
  ExprPtr ParseFunction(std::string name, int line);
  ExprPtr ParseCase();
  ExprPtr ParseCast();
  ExprPtr ParseConvert();
  ExprPtr NewExpr(ExprKind kind) const;
  std::vector<ExprPtr> ParseList();

  // Text nested without end must not take the stack with it.
  struct DepthGuard {
    explicit DepthGuard(Parser& parser);
    ~DepthGuard() { --depth; }
    int& depth;
  };

  std::string_view text_;
  Lexer lexer_;
  Token token_;
  std::optional<Token> second_;  // the one behind it, if it was looked at
  int depth_ = 0;
};

bool IsLiteralToken(const Token& token);
bool IsNumberToken(const Token& token);
/// The value and type of a literal, or of its negation. Raises 1007 for a number of more than 38
/// digits, 232 for a float out of range.
Literal ParseLiteral(const Token& token, bool negative = false);

/// True for a word that can't be an alias or a name without quotes.
bool IsReserved(const Token& token);

}  // namespace sandbox
