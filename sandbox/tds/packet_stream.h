#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sandbox/tds/byte_reader.h"
#include "sandbox/tds/byte_writer.h"

namespace sandbox::tds {

enum class MessageType : std::uint8_t {
  SqlBatch = 1,
  Rpc = 3,
  Reply = 4,
  Attention = 6,
  BulkLoad = 7,
  Login7 = 16,
  PreLogin = 18,
};

constexpr std::size_t kPacketHeaderSize = 8;
constexpr std::size_t kDefaultPacketSize = 4096;
constexpr std::size_t kSmallestPacketSize = 512;
constexpr std::size_t kLargestPacketSize = 32767;

/// The client is gone, or its socket failed.
class Disconnected : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Messages over a connected socket, cut into packets. Requests are read packet by packet, replies
/// leave as soon as a send buffer is full, so neither is held whole in memory.
class PacketStream : public ByteSource {
 public:
  /// The socket stays its owner's.
  explicit PacketStream(int socket) : socket_(socket) {}

  /// Waits for the first packet of a message; what is left of the one before is skipped. Nothing
  /// when the client closed the connection. Throws ProtocolError, Disconnected.
  std::optional<MessageType> NextMessage();
  /// Reads and drops what is left of the message.
  void SkipMessage();
  /// Whether bytes behind the current message have been received, and are an attention packet.
  bool HasMore() const { return in_end_ > in_begin_; }
  bool AttentionFollows() const {
    return HasMore() && in_[in_begin_] == static_cast<char>(MessageType::Attention);
  }
  /// Throws ProtocolError, Disconnected.
  std::string_view NextPiece() override;

  /// The reply under construction. Call FlushFullPackets now and then, EndReply at its end.
  ByteWriter& Out() { return out_; }
  void FlushFullPackets();
  void EndReply();
  /// From the next packet on; a full packet must not be pending.
  void SetPacketSize(std::size_t size) { packet_size_ = size; }
  /// True once sending failed; further output is dropped.
  bool Broken() const { return broken_; }

 private:
  struct Header {
    MessageType type;
    std::uint8_t status;
  };

  bool ReadPacket(Header& header);
  bool FillTo(std::size_t count);
  void SendPackets(std::string_view payload, bool last);
  void SendAll(std::string_view bytes);

  int socket_;
  std::array<char, 65536> in_;
  std::size_t in_begin_ = 0;
  std::size_t in_end_ = 0;
  std::string_view piece_;
  MessageType type_{};
  bool last_packet_ = true;

  ByteWriter out_;
  std::string framed_;
  std::size_t packet_size_ = kDefaultPacketSize;
  std::uint8_t packet_number_ = 1;
  bool broken_ = false;
};

}  // namespace sandbox::tds
