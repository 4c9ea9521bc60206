#include "tests/sandbox/tds/fake_engine.h"

namespace sandbox::tds {

class FakeEngine::Bulk : public BulkTarget {
 public:
  explicit Bulk(FakeEngine& engine) : engine_(engine) {}
  const std::vector<ColumnInfo>& Columns() const override { return engine_.bulk_columns; }
  bool Row(std::span<const Value> values, ResultSink&) override {
    std::lock_guard lock(engine_.mutex_);
    engine_.bulk_rows_.emplace_back(values.begin(), values.end());
    ++count_;
    return true;
  }
  std::int64_t Finish(ResultSink&) override { return count_; }

 private:
  FakeEngine& engine_;
  std::int64_t count_ = 0;
};

class FakeEngine::Session : public EngineSession {
 public:
  explicit Session(FakeEngine& engine) : engine_(engine) {}

  const std::string& Database() const override { return database_; }
  bool UseDatabase(std::string_view name) override {
    if (name != "master" && name != "shop") return false;
    database_ = name;
    return true;
  }
  void Execute(std::string_view batch, ResultSink& sink) override {
    batch = batch.substr(0, batch.find_last_not_of(" \r\n") + 1);  // tools end it with a line end
    {
      std::lock_guard lock(engine_.mutex_);
      engine_.batches_.emplace_back(batch);
    }
    auto found = engine_.batches.find(std::string(batch));
    if (found == engine_.batches.end()) {
      sink.Done(std::nullopt);
    } else {
      found->second(*this, sink);
    }
  }
  void ExecuteWithParameters(std::string_view batch, std::span<const Parameter>,
                             ResultSink& sink) override {
    Execute(batch, sink);
  }
  void Call(std::string_view, std::span<const Parameter>, ResultSink& sink) override {
    sink.Message({.number = 2812, .text = "Could not find stored procedure.", .procedure = {}});
  }
  std::unique_ptr<BulkTarget> BeginBulk(std::string_view, ResultSink&) override {
    return std::make_unique<Bulk>(engine_);
  }

 private:
  FakeEngine& engine_;
  std::string database_ = "master";
};

std::vector<std::string> FakeEngine::Batches() const {
  std::lock_guard lock(mutex_);
  return batches_;
}

std::vector<std::vector<Value>> FakeEngine::BulkRows() const {
  std::lock_guard lock(mutex_);
  return bulk_rows_;
}

std::unique_ptr<EngineSession> FakeEngine::OpenSession(std::string_view) {
  return std::make_unique<Session>(*this);
}

}  // namespace sandbox::tds
