#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "sandbox/engine/engine.h"
#include "sandbox/tds/packet_stream.h"
#include "sandbox/tds/protocol_version.h"

namespace sandbox::tds {

/// What the parts of one connection share.
struct ClientSession {
  explicit ClientSession(int socket) : stream(socket) {}

  PacketStream stream;
  ProtocolVersion version = ProtocolVersion::V74;
  std::unique_ptr<EngineSession> engine;
  std::string login;
  std::string login_database;
  std::uint64_t transaction = 0;  // 0 when none is open
};

}  // namespace sandbox::tds
