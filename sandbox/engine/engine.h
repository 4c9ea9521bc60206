#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/catalog/server_traits.h"
#include "sandbox/values/server_message.h"
#include "sandbox/values/types.h"

namespace sandbox {

/// Where a batch's answers go, in their order. A result is Columns, then Row any number of times,
/// then Done; a statement without a result is Done alone.
class ResultSink {
 public:
  virtual ~ResultSink() = default;
  virtual void Columns(const std::vector<ColumnInfo>& columns) = 0;
  virtual void Row(std::span<const Value> values) = 0;
  /// A statement ended; the count of rows returned or affected where it has one (and nocount is
  /// off).
  virtual void Done(std::optional<std::int64_t> row_count) = 0;
  virtual void Message(const ServerMessage& message) = 0;
  virtual void DatabaseChanged(std::string_view database) = 0;
  /// Transaction started / ended, for the wire's environment change. `id` is 0 when ended.
  virtual void TransactionChanged(std::uint64_t id, bool committed) = 0;
  virtual void ReturnStatus(std::int32_t status) = 0;
};

/// Rows arriving by bulk load into one table.
class BulkTarget {
 public:
  virtual ~BulkTarget() = default;
  virtual const std::vector<ColumnInfo>& Columns() const = 0;
  /// Values in the order of Columns. False when the row was refused; the message went to the sink.
  virtual bool Row(std::span<const Value> values, ResultSink& sink) = 0;
  virtual std::int64_t Finish(ResultSink& sink) = 0;
};

/// One client's session. Not thread-safe but for `cancel`, which ends what runs within a moment.
class EngineSession {
 public:
  virtual ~EngineSession() = default;
  virtual const std::string& Database() const = 0;
  /// Selects a database; false (with message 911 or 4060 left to the caller) when there is none.
  virtual bool UseDatabase(std::string_view name) = 0;
  /// A language batch. Every failure goes to the sink as a message; never throws.
  virtual void Execute(std::string_view batch, ResultSink& sink) = 0;
  /// A parameterised batch (sp_executesql).
  virtual void ExecuteWithParameters(std::string_view batch, std::span<const Parameter> parameters,
                                     ResultSink& sink) = 0;
  /// A stored procedure by name ("sp_tables", "sp_help", ...).
  virtual void Call(std::string_view procedure, std::span<const Parameter> parameters,
                    ResultSink& sink) = 0;
  /// A bulk load announced by an INSERT BULK statement; null (messages sent) when it cannot start.
  virtual std::unique_ptr<BulkTarget> BeginBulk(std::string_view insert_bulk_statement,
                                                ResultSink& sink) = 0;
  std::atomic<bool> cancel{false};
  /// Kept by the one who sends: true while an answer is on its way to the client.
  std::atomic<bool> is_sending{false};
};

/// All databases of one server, kept in a folder: one SQLite file each. Thread-safe.
class Engine {
 public:
  virtual ~Engine() = default;
  virtual std::unique_ptr<EngineSession> OpenSession(std::string_view login) = 0;
  /// Makes the database unless there is one of that name.
  virtual void CreateDatabase(std::string_view name) = 0;
  /// True for a login that CREATE LOGIN made, with its password.
  virtual bool MayLogIn(std::string_view /*login*/, std::string_view /*password*/) const {
    return false;
  }
};

/// Opens (or makes) the server's folder. Throws std::runtime_error when it cannot be used. Without
/// `durable` a power cut may lose the latest commits.
std::unique_ptr<Engine> OpenEngine(const std::filesystem::path& folder, bool durable = true,
                                   ServerTraits traits = {});

}  // namespace sandbox
