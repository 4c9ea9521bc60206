#include "sandbox/tds/result_writer.h"

#include <string>

namespace sandbox::tds {

namespace {

constexpr int kFirstErrorSeverity = 11;

enum ColumnFlags : std::uint16_t { kNullable = 0x01, kUpdatableUnknown = 0x08, kIdentity = 0x10 };

std::string_view DescriptorBytes(const std::uint64_t& id) {
  if (id == 0) return {};
  return {reinterpret_cast<const char*>(&id), sizeof id};
}

}  // namespace

ResultWriter::ResultWriter(ClientSession& client, Request request)
    : client_(client),
      out_(client.stream.Out()),
      request_(request),
      cancel_(client.engine->cancel) {}

void ResultWriter::Flush() {
  client_.engine->is_sending = true;
  client_.stream.FlushFullPackets();
  client_.engine->is_sending = false;
  if (client_.stream.Broken()) cancel_ = true;
}

void ResultWriter::WritePending(std::uint16_t extra_status) {
  if (!pending_) return;
  WriteDone(out_, pending_->token, static_cast<std::uint16_t>(pending_->status | extra_status),
            pending_->row_count);
  pending_.reset();
  Flush();
}

void ResultWriter::WriteColumn(const ColumnInfo& column, const WireType& type) {
  auto flags = static_cast<std::uint16_t>(kUpdatableUnknown | (column.nullable ? kNullable : 0) |
                                          (column.identity ? kIdentity : 0));
  out_.U32(type.user_type);
  out_.U16(flags);
  WriteTypeInfo(out_, type);
  if (type.shape == WireShape::Long) {
    constexpr std::uint8_t kNameParts = 1;
    out_.U8(kNameParts);
    WriteText(out_, "");
  }
  WriteShortText(out_, column.name);
}

void ResultWriter::Columns(const std::vector<ColumnInfo>& columns) {
  CloseStatement();
  if (Dropped()) return;
  WritePending(kDoneMore);
  encoders_.clear();
  out_.U8(static_cast<std::uint8_t>(Token::ColMetadata));
  out_.U16(static_cast<std::uint16_t>(columns.size()));
  for (const ColumnInfo& column : columns) {
    WireType type = MakeWireType(column.type);
    WriteColumn(column, type);
    encoders_.emplace_back(type);
  }
  result_open_ = true;
  Flush();
}

void ResultWriter::Row(std::span<const Value> values) {
  if (Dropped() || !result_open_) return;
  const std::size_t start = out_.size();
  try {
    out_.U8(static_cast<std::uint8_t>(Token::Row));
    if (values.size() != encoders_.size()) throw std::bad_variant_access();
    for (std::size_t i = 0; i < values.size(); ++i) encoders_[i].Write(out_, values[i]);
  } catch (const std::bad_variant_access&) {
    out_.bytes().resize(start);
    Message({.number = 8630,
             .severity = 17,
             .text = "Internal Query Processor Error: a value does not match its column's type.",
             .procedure = {}});
    result_open_ = false;
  }
  Flush();
}

void ResultWriter::Done(std::optional<std::int64_t> row_count) {
  result_open_ = false;
  if (Dropped()) return;
  WritePending(kDoneMore);
  Token token = request_ == Request::Batch ? Token::Done : Token::DoneInProc;
  auto status = static_cast<std::uint16_t>((error_open_ ? kDoneError : kDoneFinal) |
                                           (row_count ? kDoneCount : kDoneFinal));
  pending_ = PendingDone{token, status, static_cast<std::uint64_t>(row_count.value_or(0))};
  error_open_ = false;
}

void ResultWriter::CloseStatement() {
  if (result_open_ || error_open_) Done(std::nullopt);
}

void ResultWriter::Message(const ServerMessage& message) {
  if (Dropped()) return;
  WritePending(kDoneMore);
  WriteMessage(out_, message);
  if (message.severity >= kFirstErrorSeverity) error_open_ = true;
  Flush();
}

void ResultWriter::DatabaseChanged(std::string_view database) {
  if (Dropped()) return;
  WritePending(kDoneMore);
  WriteEnvChange(out_, EnvChange::Database, database, "");
}

void ResultWriter::TransactionChanged(std::uint64_t id, bool committed) {
  const std::uint64_t before = client_.transaction;
  client_.transaction = id;
  if (Dropped()) return;
  WritePending(kDoneMore);
  EnvChange ended = committed ? EnvChange::CommitTransaction : EnvChange::RollbackTransaction;
  WriteEnvChangeBytes(out_, id != 0 ? EnvChange::BeginTransaction : ended, DescriptorBytes(id),
                      DescriptorBytes(before));
}

void ResultWriter::ReturnStatus(std::int32_t status) {
  if (request_ == Request::Procedure) {
    return_status_ = status;
    return;
  }
  CloseStatement();
  if (Dropped()) return;
  WritePending(kDoneMore);
  WriteReturnStatus(out_, status);
  pending_ = PendingDone{Token::DoneProc, kDoneFinal, 0};
}

void ResultWriter::EndProcedure() {
  if (result_open_) Done(std::nullopt);
  if (Dropped()) return;
  WritePending(kDoneMore);
  WriteReturnStatus(out_, return_status_);
  pending_ = PendingDone{Token::DoneProc, error_open_ ? kDoneError : kDoneFinal, 0};
  error_open_ = false;
  return_status_ = 0;
}

void ResultWriter::Finish() {
  CloseStatement();
  if (!pending_) pending_ = PendingDone{Token::Done, kDoneFinal, 0};
  WritePending(kDoneFinal);
}

void ResultWriter::FinishCancelled() {
  WritePending(kDoneMore);
  WriteDone(out_, Token::Done, kDoneAttention, 0);
}

}  // namespace sandbox::tds
