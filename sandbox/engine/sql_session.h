#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sandbox/catalog/session.h"
#include "sandbox/engine/engine.h"
#include "sandbox/engine/session_state.h"
#include "sandbox/parser/ast.h"
#include "sandbox/values/errors.h"

namespace sandbox {

/// One client's session: runs batches statement by statement.
class SqlSession final : public EngineSession, public Session {
 public:
  /// `requests` and `traits` are the server's.
  SqlSession(ServerFolder& folder, Requests& requests, const ServerTraits& traits,
             std::string login, int spid);
  ~SqlSession() override;

  const std::string& Database() const override { return state_.link->Name(); }
  bool UseDatabase(std::string_view name) override;
  void Execute(std::string_view batch, ResultSink& sink) override;
  void ExecuteWithParameters(std::string_view batch, std::span<const Parameter> parameters,
                             ResultSink& sink) override;
  void Call(std::string_view procedure, std::span<const Parameter> parameters,
            ResultSink& sink) override;
  std::unique_ptr<BulkTarget> BeginBulk(std::string_view insert_bulk_statement,
                                        ResultSink& sink) override;

  Relation FindRelation(const ObjectName& name) override;
  const Variable* FindVariable(std::string_view name) const override;
  std::optional<std::pair<Value, TypeInfo>> SessionValue(std::string_view name,
                                                         const std::vector<Value>& args) override;

  DatabaseLink& Link() override { return *state_.link; }
  DatabaseLink& LinkTo(std::string_view database) override;
  ServerFolder& Folder() override { return folder_; }
  Requests& ServerRequests() override { return requests_; }
  const ServerTraits& Traits() const override { return traits_; }
  const std::string& Login() const override { return login_; }
  void Message(int number, int severity, int state, std::string text) override;
  void SendRows(const std::vector<ColumnInfo>& columns,
                const std::vector<std::vector<Value>>& rows) override;
  void RunText(std::string_view text) override;
  Value Evaluate(const Expr& expr, const TypeInfo* type = nullptr) override;

  // ---- for the runners of statements
  int Spid() const { return spid_; }
  SessionState& State() { return state_; }
  /// While it lives, the session is among the requests at work.
  Requests::Guard AtWork() { return {requests_, spid_, is_sending}; }
  void Done(std::optional<std::int64_t> rows);
  /// Gives a declared variable a value. Raises 137 and the errors of conversions.
  void Assign(std::string_view name, const Value& value, const TypeInfo& from);
  void RunBlock(const Block& block);
  void RunStatement(const Statement& statement);

  bool InTransaction() const { return state_.transaction_count > 0; }
  void BeginTransaction();
  /// Makes committed what statements outside a transaction have changed so far.
  void CommitImplicit();
  /// `tell`: the client is told that its transaction is over.
  void RollbackAll(bool tell);
  /// Throws Cancelled when the client gave up what runs.
  void ThrowIfCancelled() const;

 private:
  DatabaseLink& OpenLink(const std::shared_ptr<DatabaseState>& state);
  void Dispatch(const Statement& statement);
  void Report(const SqlError& error, int line, bool changes_rows);
  void EndCancelled();
  void EndImplicit() noexcept;

  ServerFolder& folder_;
  Requests& requests_;
  const ServerTraits& traits_;
  const std::string login_;
  const int spid_;
  SessionState state_;
};

}  // namespace sandbox
