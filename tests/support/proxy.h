#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <mutex>
#include <thread>

#include "platform/ado/connection_settings.h"

namespace dorvane::test {

/// What happens to a connection, for good.
enum class Fault {
  Cut,             // both sides see an orderly end
  Reset,           // both sides see a reset
  Truncate,        // an orderly end in the middle of a packet
  Corrupt,         // a packet's header lies about its length
  Delay,           // everything arrives late
  Swallow,         // nothing arrives any more in either direction
  SwallowAnswers,  // nothing arrives at the client any more
  Stall,           // nothing is read any more, so that buffers fill
};

/// When a fault happens: with a byte of one direction, counted over all connections.
struct Strike {
  Fault fault = Fault::Cut;
  bool on_answers = false;    // bytes from the server are counted, else those to it
  std::size_t after = 0;      // bytes that pass before it
  std::uint8_t pattern = 21;  // of a lie: the bits of the length that change; not 0
};

/// A loopback port that leads to another one, until a fault happens to one of its connections. The
/// others, and those that come later, go on.
class Proxy {
 public:
  /// `framing` is that of the server's packets.
  Proxy(int server_port, ServerKind framing);
  /// Closes what is left open.
  ~Proxy();
  Proxy(const Proxy&) = delete;
  Proxy& operator=(const Proxy&) = delete;

  int Port() const { return port_; }
  /// Bytes are counted from now on.
  void Arm(const Strike& strike);
  bool HasStruck() const { return has_struck_; }
  /// The bytes of one direction since then.
  std::size_t Counted(bool on_answers);

 private:
  class Tunnel;

  void Accept();
  /// True when the strike falls into these `size` bytes, of which `passing` come before it.
  bool Strikes(bool answers, std::size_t size, std::size_t& passing, Strike& strike);

  const int server_port_;
  const ServerKind framing_;
  const int port_;
  const int listener_;
  std::atomic<bool> is_over_ = false;
  std::atomic<bool> has_struck_ = false;
  std::mutex mutex_;
  bool is_armed_ = false;
  Strike strike_;
  std::array<std::size_t, 2> counted_{};  // of requests and of answers
  std::list<std::thread> tunnels_;
  std::thread acceptor_;
};

}  // namespace dorvane::test
