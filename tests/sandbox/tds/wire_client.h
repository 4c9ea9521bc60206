#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/tds/file_descriptor.h"
#include "sandbox/tds/packet_stream.h"
#include "sandbox/tds/tokens.h"

namespace sandbox::tds {

/// Speaks the protocol byte by byte, so that a test can break its rules.
class WireClient {
 public:
  explicit WireClient(std::uint16_t port);

  void SendBytes(std::string_view bytes);
  void Send(MessageType type, std::string_view payload, std::uint8_t status = 1);
  void LogIn(std::uint32_t packet_size = 4096);
  void SendBatch(std::string_view text);

  /// The next reply's payload; empty once the server closed the connection. Fails after 20 s.
  std::string Receive();
  /// The sizes of the latest reply's packets, headers included.
  const std::vector<std::size_t>& PacketSizes() const { return packet_sizes_; }
  /// Tells the server that nothing more comes.
  void StopSending();
  /// The server closed the connection, whatever it sent before. Fails when it does not.
  bool ClosedByServer();

 private:
  bool ReceiveExactly(char* to, std::size_t count);

  FileDescriptor socket_;
  std::vector<std::size_t> packet_sizes_;
};

struct LoginFields {
  std::string user = "sa";
  std::string password = "secret";
  std::string database = "shop";
  std::uint32_t version = 0x74000004;
  std::uint32_t packet_size = 4096;
  bool integrated = false;
};
std::string LoginRecord(const LoginFields& fields);
std::string PreLoginRecord(std::uint8_t encryption);
/// With the headers that 7.2 and later put first.
std::string BatchRecord(std::string_view text);
std::string Packet(MessageType type, std::string_view payload, std::uint8_t status = 1);

std::string Utf16(std::string_view utf8);
/// The DONE token that a reply of 7.2 or later ends with: its status.
std::uint16_t FinalStatus(const std::string& reply);
bool Contains(const std::string& reply, std::string_view bytes);

}  // namespace sandbox::tds
