#pragma once

#include <cstdint>
#include <string>

#include "sandbox/tds/byte_writer.h"

namespace sandbox::tds {

/// What a client tells of itself before anything else.
struct PreLogin {
  bool requires_encryption = false;
};

/// Throws ProtocolError when the option list is broken.
PreLogin ParsePreLogin(std::string_view message);
/// The answer: this server's version, no encryption, no multiple active result sets.
void WritePreLoginReply(ByteWriter& out);

struct Login {
  std::uint32_t version = 0;
  std::uint32_t packet_size = 0;
  std::string user;
  std::string password;
  std::string database;
  std::string language;
  bool integrated = false;
};

/// Throws ProtocolError when a field lies outside the message.
Login ParseLogin(std::string_view message);

}  // namespace sandbox::tds
