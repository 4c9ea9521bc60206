#include "tests/support/relay.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "tests/support/sockets.h"

namespace dorvane::test {

namespace {

/// What a socket has to read by now; empty when it has ended.
std::string ReceiveSome(int socket) {
  std::string bytes(65536, '\0');
  const ssize_t count = recv(socket, bytes.data(), bytes.size(), 0);
  bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return bytes;
}

}  // namespace

void Relay(int client, int server_port, const Portion& from_client, const Portion& from_server) {
  const int server = ConnectTo(server_port);
  while (true) {
    std::array<pollfd, 2> ends = {{{client, POLLIN, 0}, {server, POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0) break;
    const bool is_clients = ends[0].revents != 0;
    std::string bytes = ReceiveSome(is_clients ? client : server);
    if (bytes.empty()) break;
    (is_clients ? from_client : from_server)(bytes);
    send(is_clients ? server : client, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }
  close(server);
}

}  // namespace dorvane::test
