#include "sandbox/engine/statement_runners.h"

namespace sandbox {

void FlowRunner::Run(const TransactionStatement& statement) {
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
    case Kind::Rollback:
      if (state_.transaction_count == 0) Raise(3903);
      session_.RollbackAll(true);
      break;
  }
  Done();
}

}  // namespace sandbox
