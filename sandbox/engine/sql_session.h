#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sandbox/binder/binder.h"
#include "sandbox/catalog/session.h"
#include "sandbox/engine/engine.h"
#include "sandbox/parser/ast.h"
#include "sandbox/values/errors.h"

namespace sandbox {

/// Where control goes after a statement.
enum class Flow { Next, Break, Continue, Return };

/// What SET chose for the session.
struct SessionOptions {
  bool no_count = false;
  bool xact_abort = false;
  bool format_only = false;
  bool no_execute = false;
  bool implicit_transactions = false;
  std::int64_t row_limit = 0;  // of SET ROWCOUNT; 0 is none
  int text_size = -1;
};

using Variables = std::map<std::string, Variable, std::less<>>;

/// One client's session: runs batches statement by statement.
class SqlSession final : public EngineSession, public Session {
 public:
  /// `requests` and `traits` are the server's.
  SqlSession(ServerFolder& folder, Requests& requests, const ServerTraits& traits,
             std::string login, int spid);
  ~SqlSession() override;

  const std::string& Database() const override { return link_->Name(); }
  bool UseDatabase(std::string_view name) override;
  void Execute(std::string_view batch, ResultSink& sink) override;
  void ExecuteWithParameters(std::string_view batch, std::span<Parameter> parameters,
                             ResultSink& sink) override;
  void Call(std::string_view procedure, std::span<Parameter> parameters, ResultSink& sink) override;
  std::vector<ColumnInfo> Describe(std::string_view batch,
                                   std::span<const Parameter> parameters) override;
  std::unique_ptr<BulkTarget> BeginBulk(std::string_view insert_bulk_statement,
                                        ResultSink& sink) override;

  Relation FindRelation(const ObjectName& name) override;
  const Variable* FindVariable(std::string_view name) const override;
  std::optional<std::pair<Value, TypeInfo>> SessionValue(std::string_view name,
                                                         const std::vector<Value>& args) override;

  DatabaseLink& Link() override { return *link_; }
  DatabaseLink& LinkTo(std::string_view database) override;
  ServerFolder& Folder() override { return folder_; }
  Requests& ServerRequests() override { return requests_; }
  /// While it lives, the session is among them.
  Requests::Guard AtWork() { return {requests_, spid_, is_sending}; }
  const ServerTraits& Traits() const override { return traits_; }
  const std::string& Login() const override { return login_; }

  /// Makes committed what statements outside a transaction have changed so far.
  void CommitImplicit();
  void Message(int number, int severity, int state, std::string text) override;
  void Done(std::optional<std::int64_t> rows);
  void SendRows(const std::vector<ColumnInfo>& columns,
                const std::vector<std::vector<Value>>& rows) override;
  void RunBatch(std::string_view batch) override { Execute(batch, *sink_); }
  Value Evaluate(const Expr& expr, const TypeInfo* type = nullptr) override;
  void SetScopeIdentity(std::int64_t value) override { scope_identity_ = value; }
  bool InTransaction() const { return transaction_count_ > 0; }

 private:
  DatabaseLink& OpenLink(const std::shared_ptr<DatabaseState>& state);

  // batches (session.cpp)
  void RunText(std::string_view batch, Variables variables, ResultSink& sink,
               std::span<Parameter> outputs);
  Flow RunBlock(const Block& block);
  Flow RunStatement(const Statement& statement);
  Flow Dispatch(const Statement& statement);
  void BeginTransaction();
  void Report(SqlError error, int line, bool changes_rows);
  void RollbackAll(bool tell);
  void EndImplicit() noexcept;

  // statements; each in the file of its concern
  Flow Run(const NothingStatement&) { return Flow::Next; }
  Flow Run(const SelectStatement& statement);
  Flow Run(const InsertStatement& statement);
  Flow Run(const UpdateStatement& statement);
  Flow Run(const DeleteStatement& statement);
  Flow Run(const TruncateStatement& statement);
  Flow Run(const ReseedStatement& statement);
  Flow Run(const CreateDatabaseStatement& statement);
  Flow Run(const DropDatabaseStatement& statement);
  Flow Run(const UseStatement& statement);
  Flow Run(const CreateTableStatement& statement);
  Flow Run(const AlterTableStatement& statement);
  Flow Run(const CreateIndexStatement& statement);
  Flow Run(const AlterIndexStatement& statement);
  Flow Run(const DropIndexStatement& statement);
  Flow Run(const CreateTypeStatement& statement);
  Flow Run(const DropTypeStatement& statement);
  Flow Run(const DropTableStatement& statement);
  Flow Run(const CreateViewStatement& statement);
  Flow Run(const PrincipalStatement& statement);
  Flow Run(const DeclareStatement& statement);
  Flow Run(const SetVariableStatement& statement);
  Flow Run(const SetOptionStatement& statement);
  Flow Run(const IfStatement& statement);
  Flow Run(const WhileStatement& statement);
  Flow Run(const BlockStatement& statement);
  Flow Run(const TryStatement& statement);
  Flow Run(const JumpStatement& statement);
  Flow Run(const PrintStatement& statement);
  Flow Run(const RaiseStatement& statement);
  Flow Run(const WaitStatement& statement);
  Flow Run(const TransactionStatement& statement);
  Flow Run(const ExecuteStatement& statement);

  bool Holds(const Expr& condition);
  void Assign(std::string_view name, Value value, const TypeInfo& from);
  void SelectInto(const Select& select, const Query& query);
  void AssignVariables(const BoundQuery& query, const Binder& binder);
  void StreamQuery(const BoundQuery& query, const Binder& binder);
  void ChangeSchema(const PrincipalStatement& statement);
  void ChangeLogin(const PrincipalStatement& statement);
  void ChangeUser(const PrincipalStatement& statement);
  void SetIdentityInsert(const SetOptionStatement& statement);
  void ExecuteSql(std::span<Parameter> arguments);
  /// The procedure's arguments, by position or name, as `sp_executesql` and others take them.
  int CallProcedure(const ObjectName& name, std::span<Parameter> arguments);

  ServerFolder& folder_;
  Requests& requests_;
  const ServerTraits& traits_;
  const std::string login_;
  const int spid_;
  std::map<int, std::unique_ptr<DatabaseLink>> links_;  // by database id
  DatabaseLink* link_ = nullptr;
  ResultSink* sink_ = nullptr;
  Variables variables_;
  SessionOptions options_;
  std::optional<std::pair<DatabaseState*, int>> identity_insert_;  // database and table
  int transaction_count_ = 0;
  std::uint64_t transaction_id_ = 0;
  std::int64_t row_count_ = 0;
  int last_error_ = 0;
  std::optional<std::int64_t> scope_identity_;
  std::optional<ServerMessage> caught_;  // in a CATCH block
  int try_depth_ = 0;
  int nesting_ = 0;
  int current_line_ = 1;
  std::int32_t return_status_ = 0;
};

}  // namespace sandbox
