#include "tests/support/listener.h"

#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace dorvane::test {

Listener::Listener(std::function<void(int)> serve)
    : port_(FreePort()), socket_(ListenAt(port_)), serve_(std::move(serve)) {
  if (socket_ < 0) throw std::runtime_error("cannot listen");
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
