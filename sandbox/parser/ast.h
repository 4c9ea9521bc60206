#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "sandbox/parser/lexer.h"
#include "sandbox/storage/catalog.h"
#include "sandbox/values/types.h"

namespace sandbox {

struct Query;
struct Expr;
struct Statement;
using ExprPtr = std::unique_ptr<Expr>;
using QueryPtr = std::unique_ptr<Query>;
using StatementPtr = std::unique_ptr<Statement>;
using Block = std::vector<StatementPtr>;

/// A name of up to four parts; missing ones are empty.
struct ObjectName {
  std::string database, schema, name;
  /// A table of the session's own, which is in no database and no schema.
  bool IsTemporary() const { return name.starts_with('#'); }
  /// As written in messages: "dbo.t".
  std::string Text() const;
};

/// A value written in the text, with the type the server gives it.
struct Literal {
  Value value;
  TypeInfo type;
  bool is_null = false;  // NULL, which takes any type
};

enum class ExprKind {
  Literal,   // literal
  Column,    // name parts in `parts`, the column last
  Star,      // parts: the table before ".*", may be empty
  Variable,  // text: "@x" or "@@x"
  Unary,     // text: "-", "+", "~", "not"
  Binary,    // text: arithmetic, comparison, "and", "or"
  IsNull,    // negated
  In,        // args[0] in args[1..] or query; negated
  Between,   // args: value, low, high; negated
  Like,      // args: text, pattern[, escape]; negated
  Exists,    // query
  Subquery,  // query
  Case,      // args: [operand,] when, then..., [else]; flags below
  Function,  // text: lower-case name; args; distinct, star
  Collate,   // args[0]; text: the collation
  Cast,      // type; args[0], args[1] the style; text: "cast", "convert"
};

struct OrderItem {
  ExprPtr expr;
  bool descending = false;
};

struct Expr {
  ExprKind kind = ExprKind::Literal;
  int line = 1;
  std::string text;
  std::vector<std::string> parts;
  std::vector<ExprPtr> args;
  QueryPtr query;
  Literal literal;
  TypeInfo type;
  bool negated = false;
  bool distinct = false;
  bool has_operand = false;  // Case: "case x when ..."
  bool has_else = false;
};

enum class JoinKind { Inner, Left, Right, Cross };

struct FromItem {
  JoinKind join = JoinKind::Cross;  // how it joins what stands before it
  ObjectName name;                  // a table or view,
  QueryPtr query;                   // or a derived table,
  std::vector<FromItem> group;      // or joins in parentheses
  std::string alias;
  std::vector<std::string> column_aliases;
  ExprPtr on;
  int line = 1;
};

struct SelectItem {
  ExprPtr expr;
  std::string alias;
  std::string variable;  // "@x" of "select @x = ..."
};

struct Select {
  bool distinct = false;
  ExprPtr top;
  std::vector<SelectItem> items;
  std::vector<FromItem> from;
  ExprPtr where;
  std::vector<ExprPtr> group_by;
  ExprPtr having;
};

enum class SetOperator { Union, UnionAll };

/// selects[0], then each further select with the operator in front of it.
struct Query {
  std::vector<Select> selects;
  std::vector<SetOperator> operators;
  std::vector<OrderItem> order;
  int line = 1;
};

// ---- definitions

struct ColumnList {
  std::vector<std::string> names;
  std::vector<bool> descending;
};

struct ForeignKeySyntax {
  ColumnList columns;
  ObjectName parent;
  ColumnList parent_columns;  // empty: the parent's primary key
  ForeignKeyRule on_delete = ForeignKeyRule::NoAction;
  ForeignKeyRule on_update = ForeignKeyRule::NoAction;
};

struct KeySyntax {
  ColumnList columns;
  bool primary = false;
  std::optional<bool> clustered;
};

struct CheckSyntax {
  ExprPtr condition;
};

struct DefaultSyntax {
  ExprPtr value;
  std::string column;  // of "default x for column"
};

struct ConstraintSyntax {
  std::string name;    // empty: the server makes one
  std::string column;  // the column it was written at
  std::variant<KeySyntax, ForeignKeySyntax, CheckSyntax, DefaultSyntax> what;
};

struct ColumnSyntax {
  ColumnDef column;
  ObjectName alias_type;  // a type that is not the server's own; else empty
  ExprPtr computed;
  std::optional<bool> nullable;
  int line = 1;
};

// ---- statements

struct SelectStatement {
  QueryPtr query;
};

struct InsertStatement {
  ObjectName table;
  std::vector<std::string> columns;
  bool default_values = false;
  std::vector<ExprPtr> cells;  // row after row; null: DEFAULT
  std::size_t width = 0;       // cells in the first row
  std::size_t rows = 0;
  QueryPtr query;
};

struct Assignment {
  std::string column;
  ExprPtr value;
};

struct UpdateStatement {
  ObjectName table;
  std::vector<Assignment> assignments;
  ExprPtr where;
};

struct DeleteStatement {
  ObjectName table;
  ExprPtr where;
};

struct TruncateStatement {
  ObjectName table;
};
struct CreateDatabaseStatement {
  std::string name;
};
struct DropDatabaseStatement {
  std::string name;
};
struct UseStatement {
  std::string name;
};

struct CreateTableStatement {
  ObjectName table;
  std::vector<ColumnSyntax> columns;
  std::vector<ConstraintSyntax> constraints;
};

struct InsertBulkStatement {
  ObjectName table;
  std::vector<ColumnSyntax> columns;
  bool keeps_nulls = false;
  bool checks_constraints = false;
};

struct AlterTableStatement {
  enum class Action { Add, DropConstraint, Check, NoCheck };
  ObjectName table;
  Action action = Action::Add;
  std::vector<ColumnSyntax> columns;
  std::vector<ConstraintSyntax> constraints;
  std::vector<std::string> names;   // to drop, or to check; for these none means all
  std::optional<bool> checks_rows;  // WITH CHECK, WITH NOCHECK
};

struct CreateIndexStatement {
  std::string name;
  ObjectName table;
  ColumnList columns;
  std::vector<std::string> included;
  ExprPtr filter;
  bool unique = false;
  bool clustered = false;
  bool ignore_existing = false;
};

/// ALTER INDEX; without a name every index of the table.
struct AlterIndexStatement {
  std::string name;
  ObjectName table;
  bool disables = false;  // else it is made anew
};

struct DropTableStatement {
  std::vector<ObjectName> tables;
  bool view = false;
};
struct CreateViewStatement {
  ObjectName name;
  std::vector<std::string> columns;
  QueryPtr query;
  std::string text;
};

/// CREATE of a schema, login or user.
struct PrincipalStatement {
  enum class Kind { Schema, Login, User } kind = Kind::Schema;
  std::string name;
  std::string owner;                          // of a schema; empty: who creates it
  std::optional<std::string> password;        // of a login
  std::optional<std::string> login;           // of a user; empty: without login
  std::optional<std::string> default_schema;  // of a user
};

struct CreateTypeStatement {
  ObjectName name;
  TypeInfo type;
  bool nullable = true;
};

struct DeclareItem {
  std::string name;
  TypeInfo type;
  ExprPtr value;
};
struct DeclareStatement {
  std::vector<DeclareItem> items;
};
struct SetVariableStatement {
  std::string name;
  ExprPtr value;
};
struct SetOptionStatement {
  std::vector<std::string> words;
  ObjectName table;
  ExprPtr value;
};
struct IfStatement {
  ExprPtr condition;
  StatementPtr then, otherwise;
};
struct BlockStatement {
  Block body;
};
struct RaiseStatement {
  std::vector<ExprPtr> args;
};
struct WaitStatement {
  ExprPtr delay;
};
struct NothingStatement {};

/// DBCC CHECKIDENT with RESEED.
struct ReseedStatement {
  ObjectName table;
  std::int64_t last = 0;
};

struct TransactionStatement {
  enum class Kind { Begin, Commit, Rollback } kind;
};

struct ExecuteArgument {
  std::string name;
  ExprPtr value;
};
struct ExecuteStatement {
  ObjectName procedure;
  std::vector<ExecuteArgument> arguments;
};

struct Statement {
  int line = 1;
  std::variant<NothingStatement, SelectStatement, InsertStatement, UpdateStatement, DeleteStatement,
               TruncateStatement, ReseedStatement, CreateDatabaseStatement, DropDatabaseStatement,
               UseStatement, CreateTableStatement, AlterTableStatement, CreateIndexStatement,
               AlterIndexStatement, CreateTypeStatement, DropTableStatement, CreateViewStatement,
               PrincipalStatement, DeclareStatement, SetVariableStatement, SetOptionStatement,
               IfStatement, BlockStatement, RaiseStatement, WaitStatement, TransactionStatement,
               ExecuteStatement>
      what;
};

/// An expression in the server's normalised text: "([qty]>(0))" without the outer parentheses.
std::string NormalisedText(const Expr& expr);

}  // namespace sandbox
