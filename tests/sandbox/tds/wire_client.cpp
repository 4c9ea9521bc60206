#include "tests/sandbox/tds/wire_client.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <stdexcept>

#include "sandbox/text/utf16.h"
#include "tests/support/sockets.h"

namespace sandbox::tds {

std::string Utf16(std::string_view utf8) {
  std::string out;
  AppendUtf16(utf8, out);
  return out;
}

std::string Packet(MessageType type, std::string_view payload, std::uint8_t status) {
  std::size_t length = payload.size() + kPacketHeaderSize;
  std::string packet = {static_cast<char>(type),
                        static_cast<char>(status),
                        static_cast<char>(length >> 8),
                        static_cast<char>(length & 0xFF),
                        0,
                        0,
                        1,
                        0};
  return packet.append(payload);
}

std::string PreLoginRecord(std::uint8_t encryption) {
  const char record[] = {1, 0, 6, 0, 1, '\xFF', static_cast<char>(encryption)};
  return {record, sizeof record};
}

std::string LoginRecord(const LoginFields& fields) {
  constexpr std::size_t kFixedSize = 94;
  constexpr std::size_t kFieldsAt = 36;
  ByteWriter out;
  out.Fill(kFixedSize, 0);
  out.Patch(4, fields.version);
  out.Patch(8, fields.packet_size);
  out.Patch(25, static_cast<std::uint8_t>(fields.integrated ? 0x80 : 0));
  std::string password = Utf16(fields.password);
  for (char& c : password) {
    auto byte = static_cast<std::uint8_t>(c);
    c = static_cast<char>((byte << 4 | byte >> 4) ^ 0xA5);
  }
  // Host, user, password, program, server, extension, library, language, database.
  const std::string texts[] = {Utf16("host"),
                               Utf16(fields.user),
                               password,
                               Utf16("test"),
                               Utf16("sandbox"),
                               "",
                               Utf16("lib"),
                               "",
                               Utf16(fields.database)};
  std::size_t at = kFieldsAt;
  for (const std::string& text : texts) {
    out.Patch(at, static_cast<std::uint16_t>(out.size()));
    out.Patch(at + 2, static_cast<std::uint16_t>(text.size() / 2));
    out.Raw(text);
    at += 4;
  }
  out.Patch(0, static_cast<std::uint32_t>(out.size()));
  return out.bytes();
}

std::string BatchRecord(std::string_view text) {
  ByteWriter out;
  out.U32(22);
  out.U32(18);
  out.U16(2);  // transaction descriptor
  out.U64(0);
  out.U32(1);
  out.Raw(Utf16(text));
  return out.bytes();
}

std::uint16_t FinalStatus(const std::string& reply) {
  constexpr std::size_t kDoneSize = 13;
  if (reply.size() < kDoneSize) throw std::runtime_error("the reply has no end");
  std::string_view done = std::string_view(reply).substr(reply.size() - kDoneSize);
  if (static_cast<std::uint8_t>(done[0]) < static_cast<std::uint8_t>(Token::Done)) {
    throw std::runtime_error("the reply does not end with DONE");
  }
  return static_cast<std::uint8_t>(done[1]);
}

bool Contains(const std::string& reply, std::string_view bytes) {
  return reply.find(bytes) != std::string::npos;
}

WireClient::WireClient(std::uint16_t port) : socket_(dorvane::test::ConnectTo(port)) {
  if (socket_.get() < 0) throw std::runtime_error("cannot connect");
  timeval timeout{.tv_sec = 20, .tv_usec = 0};
  setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
}

void WireClient::SendBytes(std::string_view bytes) {
  // A server that has closed already is no failure of the sender.
  while (!bytes.empty()) {
    ssize_t sent = send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

void WireClient::Send(MessageType type, std::string_view payload, std::uint8_t status) {
  SendBytes(Packet(type, payload, status));
}

void WireClient::LogIn(std::uint32_t packet_size) {
  Send(MessageType::PreLogin, PreLoginRecord(2));
  Receive();
  Send(MessageType::Login7, LoginRecord({.packet_size = packet_size}));
  if (FinalStatus(Receive()) != 0) throw std::runtime_error("cannot log in");
}

void WireClient::SendBatch(std::string_view text) {
  Send(MessageType::SqlBatch, BatchRecord(text));
}

bool WireClient::ReceiveExactly(char* to, std::size_t count) {
  while (count > 0) {
    ssize_t got = recv(socket_.get(), to, count, 0);
    if (got < 0 && errno == EAGAIN) throw std::runtime_error("the server does not answer");
    if (got <= 0) return false;
    to += got;
    count -= static_cast<std::size_t>(got);
  }
  return true;
}

std::string WireClient::Receive() {
  std::string payload;
  packet_sizes_.clear();
  unsigned char header[kPacketHeaderSize] = {};
  while ((header[1] & 1) == 0) {
    if (!ReceiveExactly(reinterpret_cast<char*>(header), sizeof header)) return {};
    std::size_t size = header[2] * 256U + header[3];
    packet_sizes_.push_back(size);
    std::string part(size - sizeof header, 0);
    if (!ReceiveExactly(part.data(), part.size())) return {};
    payload += part;
  }
  return payload;
}

void WireClient::StopSending() {
  shutdown(socket_.get(), SHUT_WR);
}

bool WireClient::ClosedByServer() {
  char byte;
  while (ReceiveExactly(&byte, 1)) {
  }
  return true;
}

}  // namespace sandbox::tds
