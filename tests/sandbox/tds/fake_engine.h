#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "sandbox/engine/engine.h"

namespace sandbox::tds {

/// An engine whose answers a test scripts: what a batch does is a function, what the client sent is
/// kept.
class FakeEngine : public Engine {
 public:
  using Answer = std::function<void(EngineSession& session, ResultSink& sink)>;

  std::map<std::string, Answer> batches;
  std::vector<ColumnInfo> bulk_columns;

  std::vector<std::string> Batches() const;
  std::vector<std::vector<Value>> BulkRows() const;

  std::unique_ptr<EngineSession> OpenSession(std::string_view login) override;
  void CreateDatabase(std::string_view) override {}

 private:
  class Session;
  class Bulk;

  mutable std::mutex mutex_;
  std::vector<std::string> batches_;
  std::vector<std::vector<Value>> bulk_rows_;
};

}  // namespace sandbox::tds
