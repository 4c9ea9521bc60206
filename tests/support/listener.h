#pragma once

#include <functional>
#include <string>
#include <thread>

#include "tests/support/sockets.h"

namespace dorvane::test {

/// Listens on a free loopback port and handles each connection with a function, one after another.
/// Ended with its owner.
class Listener {
 public:
  /// `serve` gets the connected socket, which is closed after it.
  explicit Listener(std::function<void(int socket)> serve);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  int Port() const { return port_; }

 private:
  int port_;
  int socket_;
  std::function<void(int)> serve_;
  std::jthread thread_;
};

/// Exactly `size` bytes of a socket; none when it ends before.
std::string Receive(int socket, std::size_t size);

/// Waits until the other side closes the connection.
void AwaitClose(int socket);

}  // namespace dorvane::test
