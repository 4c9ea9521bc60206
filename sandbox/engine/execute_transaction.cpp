#include "sandbox/engine/statement_runners.h"
#include "sandbox/text/text_order.h"

namespace sandbox {

Flow FlowRunner::Run(const TransactionStatement& statement) {
  using Kind = TransactionStatement::Kind;
  switch (statement.kind) {
    case Kind::Begin:
      if (state_.transaction_count == 0) {
        session_.BeginTransaction();
      } else {
        ++state_.transaction_count;
      }
      break;
    case Kind::Commit:
      if (state_.transaction_count == 0) Raise(3902);
      if (--state_.transaction_count == 0) {
        session_.CommitImplicit();
        state_.transaction_id = 0;
        state_.batch.sink->TransactionChanged(0, true);
      }
      break;
    case Kind::Rollback: {
      if (state_.transaction_count == 0) Raise(3903);
      const std::string name = "save_" + LowerText(statement.name);
      if (!statement.name.empty() && Link().Writing()) {
        try {
          Link().RollbackTo(name);
          break;
        } catch (const SqliteError&) {
          // no savepoint of that name: the transaction's own, then
        }
      }
      session_.RollbackAll(true);
      break;
    }
    case Kind::Save:
      if (state_.transaction_count == 0)
        Raise(15034, "SAVE TRANSACTION needs an open transaction.");
      Link().BeginWrite();
      Link().Savepoint("save_" + LowerText(statement.name));
      break;
  }
  return Done();
}

}  // namespace sandbox
