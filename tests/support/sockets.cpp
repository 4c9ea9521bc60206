#include "tests/support/sockets.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <random>
#include <stdexcept>

namespace dorvane::test {

namespace {

/// What `use` (bind or connect) makes of a new socket and a loopback port: the socket, or -1.
template <typename Use>
int NewSocket(int port, Use use) {
  const int made = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  // A connection of an earlier listener may linger on the port.
  const int yes = 1;
  setsockopt(made, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (use(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return made;
  close(made);
  return -1;
}

}  // namespace

int ListenAt(int port) {
  const int made = NewSocket(port, bind);
  if (made < 0 || listen(made, 16) == 0) return made;
  close(made);
  return -1;
}

int ConnectTo(int port) {
  return NewSocket(port, connect);
}

int FreePort() {
  static std::mt19937 random{std::random_device{}()};
  std::uniform_int_distribution<int> ports(12000, 31999);
  for (int attempt = 0; attempt < 200; ++attempt) {
    const int port = ports(random);
    const int probe = ListenAt(port);
    if (probe < 0) continue;
    close(probe);
    return port;
  }
  throw std::runtime_error("no free port");
}

}  // namespace dorvane::test
