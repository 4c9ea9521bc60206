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
  Flow Done(std::optional<std::int64_t> rows = std::nullopt) {
    session_.Done(rows);
    return Flow::Next;
  }

  SqlSession& session_;
  SessionState& state_;
};

/// SELECT (execute_query.cpp).
class QueryRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  Flow Run(const SelectStatement& statement);

 private:
  void AssignVariables(const BoundQuery& query, const Binder& binder);
  void StreamQuery(const BoundQuery& query, const Binder& binder);
};

/// Changes of rows (insert.cpp, change.cpp).
class ChangeRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  Flow Run(const InsertStatement& statement);
  Flow Run(const UpdateStatement& statement);
  Flow Run(const DeleteStatement& statement);
  Flow Run(const TruncateStatement& statement);
  Flow Run(const ReseedStatement& statement);
};

/// Databases, tables, views, indexes, types, and who may be who (definitions_*.cpp,
/// execute_type.cpp, execute_principal.cpp).
class DefinitionRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  Flow Run(const CreateDatabaseStatement& statement);
  Flow Run(const DropDatabaseStatement& statement);
  Flow Run(const CreateTableStatement& statement);
  Flow Run(const AlterTableStatement& statement);
  Flow Run(const CreateIndexStatement& statement);
  Flow Run(const AlterIndexStatement& statement);
  Flow Run(const CreateTypeStatement& statement);
  Flow Run(const DropTableStatement& statement);
  Flow Run(const CreateViewStatement& statement);
  Flow Run(const PrincipalStatement& statement);

 private:
  void CreateSchema(const PrincipalStatement& statement);
  void CreateLogin(const PrincipalStatement& statement);
  void CreateUser(const PrincipalStatement& statement);
};

/// Variables, options, control of flow, messages, transactions (execute_flow.cpp,
/// execute_transaction.cpp, settings.cpp).
class FlowRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  Flow Run(const NothingStatement&) { return Flow::Next; }
  Flow Run(const UseStatement& statement);
  Flow Run(const DeclareStatement& statement);
  Flow Run(const SetVariableStatement& statement);
  Flow Run(const SetOptionStatement& statement);
  Flow Run(const IfStatement& statement);
  Flow Run(const WhileStatement& statement);
  Flow Run(const BlockStatement& statement);
  Flow Run(const JumpStatement& statement);
  Flow Run(const PrintStatement& statement);
  Flow Run(const RaiseStatement& statement);
  Flow Run(const WaitStatement& statement);
  Flow Run(const TransactionStatement& statement);

 private:
  bool Holds(const Expr& condition);
  ServerMessage Raised(const RaiseStatement& statement);
  void SetIdentityInsert(const SetOptionStatement& statement);
  void SetRowLimit(const SetOptionStatement& statement);
};

/// EXECUTE, and procedures called by the client (execute_procedure.cpp).
class ProcedureRunner : public StatementRunner {
 public:
  using StatementRunner::StatementRunner;
  Flow Run(const ExecuteStatement& statement);
  /// The procedure's arguments by position or name; what it writes to goes back. Returns its
  /// status.
  int Call(const ObjectName& name, std::span<Parameter> arguments);
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
