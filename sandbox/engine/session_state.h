#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
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
};

using Variables = std::map<std::string, Variable, std::less<>>;

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
  BatchState batch;
};

}  // namespace sandbox
