#include "sandbox/tds/packet_stream.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace sandbox::tds {

namespace {

constexpr std::uint8_t kEndOfMessage = 0x01;
// To withdraw a message, or to begin the session anew.
constexpr std::uint8_t kNotServed = 0x02 | 0x08 | 0x10;
constexpr std::size_t kSendThreshold = 65536;

std::uint16_t BigEndian16(const char* bytes) {
  std::uint16_t value;
  std::memcpy(&value, bytes, sizeof value);
  return __builtin_bswap16(value);
}

}  // namespace

bool PacketStream::FillTo(std::size_t count) {
  if (in_end_ - in_begin_ >= count) return true;
  std::memmove(in_.data(), in_.data() + in_begin_, in_end_ - in_begin_);
  in_end_ -= in_begin_;
  in_begin_ = 0;
  while (in_end_ < count) {
    ssize_t got = recv(socket_, in_.data() + in_end_, in_.size() - in_end_, 0);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw Disconnected(std::strerror(errno));
    if (got == 0) return false;
    in_end_ += static_cast<std::size_t>(got);
  }
  return true;
}

bool PacketStream::ReadPacket(Header& header) {
  if (!FillTo(kPacketHeaderSize)) {
    if (in_end_ != in_begin_) throw Disconnected("the client left inside a packet");
    return false;
  }
  const char* bytes = in_.data() + in_begin_;
  std::size_t length = BigEndian16(bytes + 2);
  if (length < kPacketHeaderSize || length > kLargestPacketSize) {
    throw ProtocolError("a packet's length is out of range");
  }
  header = {static_cast<MessageType>(bytes[0]), static_cast<std::uint8_t>(bytes[1])};
  if ((header.status & kNotServed) != 0) {
    throw ProtocolError("a message is withdrawn, or asks for a fresh session");
  }
  if (!FillTo(length)) throw Disconnected("the client left inside a packet");
  piece_ = std::string_view(in_.data() + in_begin_ + kPacketHeaderSize, length - kPacketHeaderSize);
  in_begin_ += length;
  return true;
}

std::optional<MessageType> PacketStream::NextMessage() {
  SkipMessage();
  Header header;
  if (!ReadPacket(header)) return std::nullopt;
  type_ = header.type;
  last_packet_ = (header.status & kEndOfMessage) != 0;
  return type_;
}

void PacketStream::SkipMessage() {
  while (!last_packet_) NextPiece();
}

std::string_view PacketStream::NextPiece() {
  while (piece_.empty() && !last_packet_) {
    Header header;
    if (!ReadPacket(header)) throw Disconnected("the client left inside a message");
    if (header.type != type_) throw ProtocolError("a message of another type interrupts a message");
    last_packet_ = (header.status & kEndOfMessage) != 0;
  }
  return std::exchange(piece_, {});
}

void PacketStream::FlushFullPackets() {
  if (out_.size() < kSendThreshold) return;
  std::size_t payload_size = packet_size_ - kPacketHeaderSize;
  // At least one byte stays behind for the packet that ends the message.
  std::size_t whole = (out_.size() - 1) / payload_size * payload_size;
  SendPackets(std::string_view(out_.bytes()).substr(0, whole), false);
  out_.bytes().erase(0, whole);
}

void PacketStream::EndReply() {
  SendPackets(out_.bytes(), true);
  out_.bytes().clear();
  packet_number_ = 1;
}

void PacketStream::SendPackets(std::string_view payload, bool last) {
  std::size_t payload_size = packet_size_ - kPacketHeaderSize;
  framed_.clear();
  do {
    std::string_view part = payload.substr(0, payload_size);
    payload.remove_prefix(part.size());
    std::size_t length = part.size() + kPacketHeaderSize;
    bool ends = last && payload.empty();
    const char header[kPacketHeaderSize] = {static_cast<char>(MessageType::Reply),
                                            static_cast<char>(ends ? kEndOfMessage : 0),
                                            static_cast<char>(length >> 8),
                                            static_cast<char>(length & 0xFF),
                                            0,
                                            0,
                                            static_cast<char>(packet_number_++),
                                            0};
    framed_.append(header, sizeof header);
    framed_.append(part);
  } while (!payload.empty());
  SendAll(framed_);
}

void PacketStream::SendAll(std::string_view bytes) {
  while (!bytes.empty() && !broken_) {
    ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    broken_ = sent <= 0;
    if (!broken_) bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

}  // namespace sandbox::tds
