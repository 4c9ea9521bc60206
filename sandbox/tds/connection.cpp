#include "sandbox/tds/connection.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <optional>

#include "sandbox/tds/bulk_load.h"
#include "sandbox/tds/procedures.h"
#include "sandbox/tds/request_header.h"
#include "sandbox/text/utf16.h"

namespace sandbox::tds {

namespace {

constexpr int kHandshakeSeconds = 30;
constexpr std::size_t kLongestBatch = 256 * 1024 * 1024;

void SetReceiveTimeout(int socket, int seconds) {
  timeval timeout{.tv_sec = seconds, .tv_usec = 0};
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
}

}  // namespace

Connection::Connection(int socket, Engine& engine, const Credentials& credentials,
                       AttentionWatch& watch)
    : socket_(socket), engine_(engine), credentials_(credentials), watch_(watch), client_(socket) {}

void Connection::Run() {
  SetReceiveTimeout(socket_, kHandshakeSeconds);
  if (!LogIn(client_, engine_, credentials_)) return;
  SetReceiveTimeout(socket_, 0);
  try {
    while (auto type = client_.stream.NextMessage()) {
      Serve(*type);
      if (client_.stream.Broken()) return;
    }
  } catch (const ProtocolError&) {
    ReportBrokenStream();
    throw;
  }
}

void Connection::ReportBrokenStream() {
  ByteWriter& out = client_.stream.Out();
  out.bytes().clear();
  WriteMessage(out,
               {.number = 4002,
                .text = "The incoming tabular data stream (TDS) protocol stream is incorrect. The "
                        "stream ended unexpectedly.",
                .procedure = {}});
  WriteDone(out, Token::Done, kDoneError, 0);
  client_.stream.EndReply();
}

void Connection::Serve(MessageType type) {
  switch (type) {
    case MessageType::SqlBatch:
      return ServeBatch();
    case MessageType::Rpc:
      return ServeProcedures();
    case MessageType::BulkLoad:
      return ServeBulkLoad();
    case MessageType::Attention:
      return ConfirmAttention();
    default:
      throw ProtocolError("a message of unknown type");
  }
}

void Connection::ServeBatch() {
  ByteReader reader(client_.stream);
  SkipAllHeaders(reader);
  std::string batch;
  Utf16Decoder decoder;
  reader.EachPiece(kLongestBatch, [&](std::string_view piece) { decoder.Append(piece, batch); });
  decoder.Finish(batch);
  RunRequest(ResultWriter::Request::Batch, [&](ResultWriter& results) {
    if (IsInsertBulk(batch)) {
      bulk_target_ = client_.engine->BeginBulk(batch, results);
    } else {
      client_.engine->Execute(batch, results);
    }
  });
}

void Connection::ServeProcedures() {
  ByteReader reader(client_.stream);
  std::vector<RpcRequest> requests = ReadRpcRequests(reader);
  RunRequest(ResultWriter::Request::Procedure, [&](ResultWriter& results) {
    for (RpcRequest& request : requests) RunProcedure(*client_.engine, request, results);
  });
}

void Connection::ServeBulkLoad() {
  if (bulk_target_ == nullptr) throw ProtocolError("bulk rows arrive without an INSERT BULK");
  // A load that does not reach its end is given up with its target.
  std::unique_ptr<BulkTarget> target = std::move(bulk_target_);
  ByteReader reader(client_.stream);
  ResultWriter results(client_, ResultWriter::Request::Batch);
  client_.engine->cancel = false;
  LoadRows(reader, *target, results);
  client_.stream.SkipMessage();
  results.Finish();
  client_.stream.EndReply();
}

void Connection::ConfirmAttention() {
  WriteDone(client_.stream.Out(), Token::Done, kDoneAttention, 0);
  client_.stream.EndReply();
}

void Connection::RunRequest(ResultWriter::Request kind,
                            const std::function<void(ResultWriter&)>& work) {
  bulk_target_.reset();
  client_.engine->cancel = client_.stream.AttentionFollows();
  ResultWriter results(client_, kind);
  if (!client_.engine->cancel) {
    // Bytes that were already received are the next request's; the socket would mislead.
    std::optional<AttentionWatch::Guard> guard;
    if (!client_.stream.HasMore()) guard.emplace(watch_, socket_, client_.engine->cancel);
    work(results);
  }
  if (!client_.engine->cancel) {
    results.Finish();
    client_.stream.EndReply();
    return;
  }
  auto next = client_.stream.NextMessage();
  if (!next) throw Disconnected("the client left during a request");
  if (next != MessageType::Attention) throw ProtocolError("a request interrupts another");
  results.FinishCancelled();
  client_.stream.EndReply();
}

}  // namespace sandbox::tds
