#include "tests/support/listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

#include "tests/support/temp_folder.h"

namespace dorvane::test {

namespace {

bool Bind(int socket, int port) {
  // A connection of an earlier listener may linger on the port.
  const int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

Listener::Listener(std::function<void(int)> serve) : serve_(std::move(serve)) {
  port_ = FreePort();
  socket_ = socket(AF_INET, SOCK_STREAM, 0);
  if (!Bind(socket_, port_) || listen(socket_, 8) != 0) throw std::runtime_error("cannot listen");
  thread_ = std::jthread([this] {
    while (true) {
      const int client = accept(socket_, nullptr, nullptr);
      if (client < 0) return;
      serve_(client);
      close(client);
    }
  });
}

Listener::~Listener() {
  shutdown(socket_, SHUT_RDWR);
  thread_.join();
  close(socket_);
}

std::string Receive(int socket, std::size_t size) {
  std::string bytes(size, '\0');
  std::size_t got = 0;
  while (got < size) {
    const ssize_t count = recv(socket, bytes.data() + got, size - got, 0);
    if (count <= 0) return {};
    got += count;
  }
  return bytes;
}

void AwaitClose(int socket) {
  while (!Receive(socket, 1).empty()) {
  }
}

}  // namespace dorvane::test
