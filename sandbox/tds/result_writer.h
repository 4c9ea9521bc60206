#pragma once

#include <atomic>
#include <optional>
#include <vector>

#include "sandbox/engine/engine.h"
#include "sandbox/tds/client_session.h"
#include "sandbox/tds/tokens.h"
#include "sandbox/tds/value_encoder.h"

namespace sandbox::tds {

/// Puts the answers of one request on the wire as they come. Nothing it does throws: once the
/// client is gone or the request is cancelled, the rest is dropped and `cancel` is set.
class ResultWriter : public ResultSink {
 public:
  enum class Request { Batch, Procedure };

  ResultWriter(ClientSession& client, Request request);

  void Columns(const std::vector<ColumnInfo>& columns) override;
  void Row(std::span<const Value> values) override;
  void Done(std::optional<std::int64_t> row_count) override;
  void Message(const ServerMessage& message) override;
  void DatabaseChanged(std::string_view database) override;
  void TransactionChanged(std::uint64_t id, bool committed) override;
  void ReturnStatus(std::int32_t status) override;

  /// Ends a procedure: its status, and that it is over.
  void EndProcedure();

  /// The reply's last token; nothing may follow.
  void Finish();
  void FinishCancelled();

 private:
  struct PendingDone {
    Token token;
    std::uint16_t status;
    std::uint64_t row_count;
  };

  bool Dropped() const { return cancel_.load(std::memory_order_relaxed); }
  void WritePending(std::uint16_t extra_status);
  void CloseStatement();
  void WriteColumn(const ColumnInfo& column, const WireType& type);
  void Flush();

  ClientSession& client_;
  ByteWriter& out_;
  const Request request_;
  std::atomic<bool>& cancel_;
  std::vector<ValueEncoder> encoders_;
  // Held back until it is known whether more follows it.
  std::optional<PendingDone> pending_;
  bool result_open_ = false;
  bool error_open_ = false;
  std::int32_t return_status_ = 0;
};

}  // namespace sandbox::tds
