#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "sandbox/engine/engine.h"
#include "sandbox/tds/packet_stream.h"

namespace sandbox::tds {

/// What the parts of one connection share.
struct ClientSession {
  explicit ClientSession(int socket) : stream(socket) {}

  PacketStream stream;
  std::unique_ptr<EngineSession> engine;
  std::uint64_t transaction = 0;  // 0 when none is open
};

}  // namespace sandbox::tds
