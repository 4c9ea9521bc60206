#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "sandbox/engine/session_state.h"
#include "sandbox/engine/sql_session.h"
#include "sandbox/parser/ast.h"

namespace sandbox {

/// Runs the statements of one family. What they leave behind is in the session's state.
class StatementRunner {
 public:
  explicit StatementRunner(SqlSession& session) : session_(session), state_(session.State()) {}

 protected:
  DatabaseLink& Link() { return *state_.link; }
  /// The statement is over, with the rows that it returned or changed, if it tells them.
  void Done(std::optional<std::int64_t> rows = std::nullopt) { session_.Done(rows); }

  SqlSession& session_;
  SessionState& state_;
};

/// SELECT (execute_query.cpp).
class QueryRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  void Run(const SelectStatement& statement);

 private:
  void AssignVariables(const BoundQuery& query, const Binder& binder);
  void StreamQuery(const BoundQuery& query, const Binder& binder);
};

/// Changes of rows (insert.cpp, change.cpp).
class ChangeRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  void Run(const InsertStatement& statement);
  void Run(const UpdateStatement& statement);
  void Run(const DeleteStatement& statement);
  void Run(const TruncateStatement& statement);
  void Run(const ReseedStatement& statement);
};

/// Databases, tables, views, indexes, types, and who may be who (definitions_*.cpp,
/// execute_type.cpp, execute_principal.cpp).
class DefinitionRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  void Run(const CreateDatabaseStatement& statement);
  void Run(const DropDatabaseStatement& statement);
  void Run(const CreateTableStatement& statement);
  void Run(const AlterTableStatement& statement);
  void Run(const CreateIndexStatement& statement);
  void Run(const AlterIndexStatement& statement);
  void Run(const CreateTypeStatement& statement);
  void Run(const DropTableStatement& statement);
  void Run(const CreateViewStatement& statement);
  void Run(const PrincipalStatement& statement);

 private:
  void CreateSchema(const PrincipalStatement& statement);
  void CreateLogin(const PrincipalStatement& statement);
  void CreateUser(const PrincipalStatement& statement);
};

/// Variables, options, conditions, messages, transactions (execute_flow.cpp,
/// execute_transaction.cpp, settings.cpp).
class FlowRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  void Run(const NothingStatement&) {}
  void Run(const UseStatement& statement);
  void Run(const DeclareStatement& statement);
  void Run(const SetVariableStatement& statement);
  void Run(const SetOptionStatement& statement);
  void Run(const IfStatement& statement);
  void Run(const BlockStatement& statement);
  void Run(const RaiseStatement& statement);
  void Run(const WaitStatement& statement);
  void Run(const TransactionStatement& statement);

 private:
  bool Holds(const Expr& condition);
  ServerMessage Raised(const RaiseStatement& statement);
  void SetIdentityInsert(const SetOptionStatement& statement);
};

/// EXECUTE, and procedures called by the client (execute_procedure.cpp).
class ProcedureRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  void Run(const ExecuteStatement& statement);
  /// The procedure's arguments by position or name. Returns its status.
  int Call(const ObjectName& name, std::span<const Parameter> arguments);
};

/// All families.
class StatementRunners : public QueryRunner,
                         public ChangeRunner,
                         public DefinitionRunner,
                         public FlowRunner,
                         public ProcedureRunner {
 public:
  explicit StatementRunners(SqlSession& session)
      : QueryRunner(session),
        ChangeRunner(session),
        DefinitionRunner(session),
        FlowRunner(session),
        ProcedureRunner(session) {}
  using ChangeRunner::Run;
  using DefinitionRunner::Run;
  using FlowRunner::Run;
  using ProcedureRunner::Run;
  using QueryRunner::Run;
};

}  // namespace sandbox
