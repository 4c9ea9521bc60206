#include "sandbox/tds/transaction_request.h"

#include "sandbox/text/utf16.h"

namespace sandbox::tds {

namespace {

enum class Request : std::uint16_t { Begin = 5, Commit = 7, Rollback = 8, Save = 9 };

constexpr std::uint8_t kBeginNext = 0x01;

/// The transaction's name in brackets behind a blank, or nothing.
std::string ReadName(ByteReader& reader) {
  std::string name = Utf16ToUtf8(reader.Bytes(reader.U8()));
  return name.empty() ? name : " [" + name + "]";
}

std::string BeginBatch(ByteReader& reader) {
  reader.U8();  // the isolation level: every session here is serializable
  return "begin transaction" + ReadName(reader);
}

std::string EndBatch(ByteReader& reader, const char* verb) {
  std::string batch = verb + ReadName(reader);
  bool begin_next = (reader.U8() & kBeginNext) != 0;
  return begin_next ? batch + "; " + BeginBatch(reader) : batch;
}

}  // namespace

std::string TransactionBatch(ByteReader& reader) {
  switch (static_cast<Request>(reader.U16())) {
    case Request::Begin:
      return BeginBatch(reader);
    case Request::Commit:
      return EndBatch(reader, "commit transaction");
    case Request::Rollback:
      return EndBatch(reader, "rollback transaction");
    case Request::Save:
      return "save transaction" + ReadName(reader);
  }
  throw ProtocolError("a transaction request is unknown");
}

}  // namespace sandbox::tds
