#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sandbox/parser/ast.h"
#include "sandbox/storage/catalog.h"

namespace sandbox {

class SqliteStatement;

struct Variable {
  TypeInfo type;
  Value value;
};

/// An expression bound to the catalog and written in SQLite's language.
struct Bound {
  std::string sql;
  TypeInfo type;
  bool nullable = true;
  bool identity = false;
  bool predicate = false;  // a condition; it has no value
  bool is_null = false;    // the word NULL, which takes any type
  std::optional<Value> constant;
  std::string name;  // of the column it is, if it is one
};

/// A column that a FROM clause offers.
struct ScopeColumn {
  std::string name;
  TypeInfo type;
  bool nullable = true;
  bool identity = false;
  std::string sql;
  bool hidden = false;  // "*" leaves it out
};

struct ScopeSource {
  std::string alias;   // the exposed name
  std::string schema;  // of a table without an alias
  const TableDef* table = nullptr;
  std::string stored;  // how SQLite knows it: the alias in the rendered text
  std::vector<ScopeColumn> columns;
};

struct Scope {
  std::vector<ScopeSource> sources;
  const Scope* outer = nullptr;
};

struct BoundQuery {
  std::string sql;
  std::vector<ColumnInfo> columns;
  std::vector<std::string> variables;  // "select @x = ...": the variables, else empty
};

/// What a name in FROM stands for.
struct Relation {
  const TableDef* table = nullptr;
  const ViewDef* view = nullptr;
  std::string stored;                // the name for SQLite, "main.t5"
  std::vector<ScopeColumn> columns;  // of a catalog view; empty for a table
};

/// What a binder asks of the session.
class BindContext {
 public:
  virtual ~BindContext() = default;
  /// Raises 208 (or 911).
  virtual Relation FindRelation(const ObjectName& name) = 0;
  virtual const Variable* FindVariable(std::string_view name) const = 0;
  /// A value that depends on the session: db_name(), @@spid, scope_identity(). Nothing when the
  /// name is none of them.
  virtual std::optional<std::pair<Value, TypeInfo>> SessionValue(
      std::string_view name, const std::vector<Value>& args) = 0;
};

/// Binds queries and expressions against the catalog. Raises the server's errors.
class Binder {
 public:
  explicit Binder(BindContext& context) : context_(context) {}

  BoundQuery BindQuery(const Query& query, const Scope* outer = nullptr);
  Bound BindValue(const Expr& expr, const Scope& scope);
  std::string BindCondition(const Expr& expr, const Scope& scope);
  /// The FROM clause in SQLite's language; fills the scope.
  std::string BindFrom(const std::vector<FromItem>& items, Scope& scope);
  /// Adds one table under an alias and returns it rendered.
  std::string AddTable(const Relation& relation, const std::string& alias, Scope& scope);

  /// `bound` as a value of type `to` (an implicit conversion is checked).
  static Bound Coerce(Bound bound, const TypeInfo& to, bool is_explicit = false, int style = 0);
  /// A value of `type` ready to be compared, sorted or grouped.
  static std::string Collated(const std::string& sql, const TypeInfo& type);
  static Bound Constant(Value value, const TypeInfo& type);

  /// Binds the values of the parameters ?1, ?2, ... in what was bound.
  void SetParameters(SqliteStatement& statement) const;

 private:
  // queries
  BoundQuery BindSelect(const Select& select, const Query* ordered, const Scope* outer);
  std::string BindItems(const Select& select, Scope& scope, BoundQuery& query);
  BoundQuery BindCompound(const Query& query, const Scope* outer);
  /// A term of ORDER BY.
  struct OrderTerm {
    std::string sql;
    TypeInfo type;
    std::optional<std::size_t> column;  // the result's column that it names
    bool descending = false;
  };
  std::vector<OrderTerm> BindOrder(const Query& query, const BoundQuery& bound, Scope& scope);
  std::string TopCount(const Expr& top, const Scope& scope);
  BoundQuery CoerceQuery(BoundQuery query, const std::vector<TypeInfo>& types) const;
  std::string BindJoin(const FromItem& item, Scope& scope, bool first);
  std::string BindSource(const FromItem& item, Scope& scope);
  std::string AddDerived(BoundQuery query, const std::string& alias,
                         const std::vector<std::string>& names, Scope& scope);
  void AddStar(const Expr& star, const Scope& scope, std::vector<Bound>& items) const;

  // expressions
  Bound BindAny(const Expr& expr, const Scope& scope);
  Bound BindColumn(const Expr& expr, const Scope& scope);
  Bound BindVariable(const Expr& expr);
  Bound BindCast(const Expr& expr, const Scope& scope);
  Bound BindCollate(const Expr& expr, const Scope& scope);
  Bound BindUnary(const Expr& expr, const Scope& scope);
  Bound BindBinary(const Expr& expr, const Scope& scope);
  Bound BindArithmetic(char op, Bound left, Bound right);
  Bound BindIn(const Expr& expr, const Scope& scope);
  Bound BindBetween(const Expr& expr, const Scope& scope);
  Bound BindLike(const Expr& expr, const Scope& scope);
  Bound BindSubquery(const Expr& expr, const Scope& scope);
  Bound BindCase(const Expr& expr, const Scope& scope);
  Bound BindFunction(const Expr& expr, const Scope& scope);
  Bound BindSessionFunction(const Expr& expr, const Scope& scope);
  Bound BindAggregate(const Expr& expr, const Scope& scope);
  Bound BindScalar(std::size_t position, const Expr& expr, const Scope& scope);
  Bound BindFirstValue(const Expr& expr, const Scope& scope);  // isnull, coalesce
  Bound Compare(const std::string& op, Bound left, Bound right) const;
  std::string NewAlias();
  std::string AddParameter(const std::string& name, Value value, const TypeInfo& type);

  BindContext& context_;
  std::vector<std::pair<Value, TypeInfo>> parameters_;
  std::map<std::string, int> parameter_numbers_;
  int last_alias_ = 0;
  int depth_ = 0;
  int aggregate_depth_ = 0;
  bool saw_aggregate_ = false;
  // Columns used outside aggregates since the last reset, for message 8120: rendered, and shown.
  std::vector<std::pair<std::string, std::string>> bare_columns_;
};

/// True when "schema.table.column" or "table.column" in `parts` means a column of the source; with
/// the column's name alone always.
bool Exposes(const ScopeSource& source, const std::vector<std::string>& parts);

/// True for count, sum and the other aggregates.
bool IsAggregate(std::string_view name);

}  // namespace sandbox
