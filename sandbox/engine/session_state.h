#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "sandbox/binder/binder.h"
#include "sandbox/catalog/database_link.h"
#include "sandbox/engine/engine.h"

namespace sandbox {

/// What SET chose for the session.
struct SessionOptions {
  bool no_count = false;
  bool format_only = false;
  bool implicit_transactions = false;
  std::int64_t row_limit = 0;  // of SET ROWCOUNT; 0 is none
};

using Variables = std::map<std::string, Variable, std::less<>>;

/// The parameters of a batch as its variables.
Variables VariablesOf(std::span<const Parameter> parameters);

/// What belongs to one batch.
struct BatchState {
  ResultSink* sink = nullptr;
  Variables variables;
  int line = 1;  // of the statement that runs
};

/// Everything that statements leave in their session.
struct SessionState {
  std::map<int, std::unique_ptr<DatabaseLink>> links;  // by database id
  DatabaseLink* link = nullptr;                        // of the current database
  SessionOptions options;
  std::optional<std::pair<DatabaseState*, int>> identity_insert;  // database and table
  int transaction_count = 0;
  std::uint64_t transaction_id = 0;
  std::int64_t row_count = 0;
  int last_error = 0;
  std::optional<std::int64_t> scope_identity;
  int nesting = 0;  // batches that run, one within the other
  BatchState batch;
};

/// Gives a variable its old value back, however the scope ends.
template <typename T>
class Restorer {
 public:
  Restorer(T& place, T value) : place_(place), old_(std::exchange(place, std::move(value))) {}
  ~Restorer() { place_ = std::move(old_); }
  Restorer(const Restorer&) = delete;
  Restorer& operator=(const Restorer&) = delete;

 private:
  T& place_;
  T old_;
};

/// The batch that runs, from its start to its end; then the one around it goes on.
class BatchFrame {
 public:
  BatchFrame(SessionState& state, Variables variables, ResultSink& sink)
      : batch_(state.batch, {&sink, std::move(variables), 1}),
        nesting_(state.nesting, state.nesting + 1),
        is_outermost_(state.nesting == 1) {}
  bool IsOutermost() const { return is_outermost_; }

 private:
  const Restorer<BatchState> batch_;
  const Restorer<int> nesting_;
  const bool is_outermost_;
};

}  // namespace sandbox
