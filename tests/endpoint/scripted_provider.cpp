#include "tests/endpoint/scripted_provider.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "endpoint/literal_text.h"

namespace dorvane::test {

namespace {

std::string Shown(const ado::Value& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return std::string(*text);
  if (const auto* binary = std::get_if<ado::Binary>(&value)) return HexCode(binary->bytes);
  return "NULL";
}

class ScriptedReader : public ado::ResultReader {
 public:
  ScriptedReader(std::vector<ScriptedResult> results, std::optional<ado::ProviderError> failure)
      : results_(std::move(results)), failure_(std::move(failure)) {}

  const std::vector<ado::FieldInfo>& Fields() const override {
    static const std::vector<ado::FieldInfo> none;
    return result_ < results_.size() ? results_[result_].fields : none;
  }
  bool Read(ado::RowBlock& block) override {
    block.Clear(Fields().size());
    if (result_ >= results_.size()) return false;
    const auto& rows = results_[result_].rows;
    while (row_ < rows.size() && !block.IsFull()) {
      std::ranges::copy(rows[row_++], block.AppendRow().begin());
    }
    if (row_ == rows.size() && failure_) throw *failure_;
    return block.Rows() > 0;
  }
  bool NextResult() override {
    row_ = 0;
    return ++result_ < results_.size();
  }

 private:
  std::vector<ScriptedResult> results_;
  std::optional<ado::ProviderError> failure_;
  std::size_t result_ = 0;
  std::size_t row_ = 0;
};

}  // namespace

class ScriptedWriter : public ado::TableWriter {
 public:
  explicit ScriptedWriter(ScriptedServer& server) : server_(server) {}
  void Insert(const ado::RowBlock& rows, std::size_t first, std::size_t count) override {
    for (std::size_t i = first; i < first + count; ++i) {
      std::vector<std::string> row;
      for (const ado::Value& value : rows.Row(i)) row.push_back(Shown(value));
      if (server_.on_row) server_.on_row(row);
      server_.stored.push_back(std::move(row));
    }
  }

 private:
  ScriptedServer& server_;
};

class ScriptedSession : public ado::Session {
 public:
  explicit ScriptedSession(ScriptedServer& server) : server_(server) {}

  std::unique_ptr<ado::ResultReader> Execute(std::string_view sql) override {
    server_.Record(sql);
    const std::string text(sql);
    const auto answer = server_.answers_.find(text);
    const auto broken = server_.broken_results_.find(text);
    return std::make_unique<ScriptedReader>(
        answer != server_.answers_.end() ? answer->second : std::vector<ScriptedResult>(),
        broken != server_.broken_results_.end() ? std::optional(broken->second) : std::nullopt);
  }
  bool IsStreaming() const override { return false; }
  bool IsAlive() override { return !server_.lost; }
  bool IsExposed() const override { return server_.is_exposed; }
  std::unique_ptr<ado::TableWriter> OpenWriter(std::string_view table,
                                               const std::vector<std::string>& columns) override {
    server_.Record(fmt::format("insert {} ({})", table, fmt::join(columns, ",")));
    return std::make_unique<ScriptedWriter>(server_);
  }
  void BeginTransaction() override {
    server_.Record("begin");
    server_.rollback_to_ = server_.stored.size();
  }
  void Commit() override {
    server_.Record("commit");
    server_.rollback_to_.reset();
  }
  void Rollback() override {
    server_.Record("rollback");
    if (server_.rollback_to_) server_.stored.resize(*server_.rollback_to_);
    server_.rollback_to_.reset();
  }
  std::vector<ado::TableInfo> Tables() override { return server_.tables; }
  std::vector<ado::Column> Columns(const ado::TableName& table) override {
    return server_.columns[table.Text()];
  }
  std::vector<ado::Index> Indexes(const ado::TableName& table) override {
    return server_.indexes[table.Text()];
  }
  std::vector<ado::Key> Keys(const ado::TableName& table) override {
    if (server_.keys_failure) throw *server_.keys_failure;
    return server_.keys[table.Text()];
  }

 private:
  ScriptedServer& server_;
};

ScriptedResult TextResult(const std::vector<std::string>& names,
                          const std::vector<std::vector<std::optional<std::string_view>>>& rows) {
  ScriptedResult result;
  for (const std::string& name : names) {
    result.fields.push_back({.name = name, .type = ado::DataType::VarChar});
  }
  for (const auto& row : rows) {
    auto& values = result.rows.emplace_back();
    for (const auto& text : row) values.push_back(text ? ado::Value(*text) : ado::Value());
  }
  return result;
}

ado::ProviderError Failure(std::int32_t number, std::int32_t native_error,
                           const std::string& description) {
  return {number, "Scripted", description, {{number, native_error, description, ""}}};
}

std::unique_ptr<ado::Session> ScriptedServer::Connect(const ado::ConnectionSettings& settings) {
  last_settings = settings;
  if (connect_failure) throw *connect_failure;
  if (refused_logons > 0) {
    --refused_logons;
    throw Failure(ado::hresult::kFail, 2003, "nobody there");
  }
  lost = false;
  return std::make_unique<ScriptedSession>(*this);
}

ado::ProviderLookup ScriptedServer::Lookup() {
  return [this](ServerKind) -> ado::Provider& { return *this; };
}

std::vector<std::string> ScriptedServer::Sent(std::string_view beginning) const {
  std::vector<std::string> found;
  std::ranges::copy_if(log, std::back_inserter(found),
                       [beginning](const std::string& sql) { return sql.starts_with(beginning); });
  return found;
}

void ScriptedServer::Answer(const std::string& sql, std::vector<ScriptedResult> results) {
  answers_[sql] = std::move(results);
}

void ScriptedServer::Fail(const std::string& part, ado::ProviderError error, int times) {
  failures_.push_back({part, std::move(error), times});
}

void ScriptedServer::BreakResult(const std::string& sql, ado::ProviderError error) {
  broken_results_.emplace(sql, std::move(error));
}

void ScriptedServer::Record(std::string_view sql) {
  log.emplace_back(sql);
  for (FailureRule& rule : failures_) {
    if (rule.times == 0 || sql.find(rule.part) == std::string_view::npos) continue;
    --rule.times;
    throw rule.error;
  }
}

}  // namespace dorvane::test
