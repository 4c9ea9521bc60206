#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/engine/engine.h"

namespace sandbox::testing {

/// "a|b"
std::string RowText(const std::vector<std::string>& row);

/// One result of a batch, its values as text: NULL is "NULL", bytes are "0x...".
struct Result {
  std::vector<ColumnInfo> columns;
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> Names() const;
  /// "a|b;c|d"
  std::string Text() const;
};

/// Everything a batch answered.
class Answer final : public ResultSink {
 public:
  void Columns(const std::vector<ColumnInfo>& columns) override;
  void Row(std::span<const Value> values) override;
  void Done(std::optional<std::int64_t> row_count) override {
    counts.push_back(row_count.value_or(-1));
  }
  void Message(const ServerMessage& message) override { messages.push_back(message); }
  void DatabaseChanged(std::string_view name) override { database = name; }
  void TransactionChanged(std::uint64_t id, bool) override { transaction = id; }
  void ReturnStatus(std::int32_t value) override { status = value; }

  /// The errors' numbers, in their order: "2627 3621" (the notes among them too).
  std::string Numbers() const;
  /// The text of the first message.
  std::string FirstText() const { return messages.empty() ? "" : messages.front().text; }
  /// The first result's rows.
  std::string Rows() const { return results.empty() ? "" : results.front().Text(); }

  std::vector<Result> results;
  std::vector<std::int64_t> counts;
  std::vector<ServerMessage> messages;
  std::string database;
  std::uint64_t transaction = 0;
  std::int32_t status = -1;
};

/// A server in a folder of its own with a database "db", and one session in it.
class BatchTest : public ::testing::Test {
 protected:
  BatchTest();
  ~BatchTest() override;
  Answer Run(std::string_view batch) { return Run(*session, batch); }
  static Answer Run(EngineSession& in, std::string_view batch);
  /// Runs a batch that must not say anything.
  void Must(std::string_view batch);
  /// The rows of the only result of a query that must not fail.
  std::string Query(std::string_view query);
  std::unique_ptr<EngineSession> NewSession(std::string_view login = "sa");
  void Reopen();

  std::filesystem::path folder;
  std::unique_ptr<Engine> engine;
  std::unique_ptr<EngineSession> session;
};

}  // namespace sandbox::testing
