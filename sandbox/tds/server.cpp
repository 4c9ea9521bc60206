#include "sandbox/tds/server.h"

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <system_error>

namespace sandbox::tds {

namespace {

[[noreturn]] void Fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

FileDescriptor Listen(std::uint16_t port) {
  FileDescriptor listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (listener.get() < 0) Fail("socket");
  int on = 1;
  setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  if (bind(listener.get(), generic, sizeof address) != 0 || listen(listener.get(), 64) != 0) {
    Fail(fmt::format("cannot listen on 127.0.0.1:{}", port));
  }
  return listener;
}

std::uint16_t PortOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) Fail("getsockname");
  return ntohs(address.sin_port);
}

}  // namespace

Server::Server(Engine& engine, Credentials credentials, std::uint16_t port)
    : engine_(engine),
      credentials_(std::move(credentials)),
      listener_(Listen(port)),
      port_(PortOf(listener_.get())),
      acceptor_([this] { Accept(); }) {}

Server::~Server() {
  stopping_ = true;
  shutdown(listener_.get(), SHUT_RDWR);
  acceptor_.join();
  // A shut socket ends its connection's reads and writes; the watch cancels what runs.
  for (Client& client : clients_) shutdown(client.socket.get(), SHUT_RDWR);
  for (Client& client : clients_) client.thread.join();
}

void Server::Accept() {
  constexpr auto kPause = std::chrono::milliseconds(50);
  while (!stopping_) {
    FileDescriptor socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    RemoveFinished();
    if (socket.get() >= 0) {
      Start(std::move(socket));
    } else if (!stopping_) {
      std::this_thread::sleep_for(kPause);  // out of descriptors, most likely
    }
  }
}

void Server::Start(FileDescriptor socket) {
  int on = 1;
  setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  Client& client = clients_.emplace_back();
  client.socket = std::move(socket);
  try {
    client.thread = std::thread([this, &client] { Serve(client); });
  } catch (const std::system_error& error) {
    fmt::print(stderr, "a client was turned away: {}\n", error.what());
    clients_.pop_back();
  }
}

void Server::Serve(Client& client) {
  try {
    Connection(client.socket.get(), engine_, credentials_, watch_).Run();
  } catch (const std::exception& error) {
    if (!stopping_) fmt::print(stderr, "a connection ended: {}\n", error.what());
  }
  shutdown(client.socket.get(), SHUT_RDWR);
  client.finished = true;
}

void Server::RemoveFinished() {
  for (auto client = clients_.begin(); client != clients_.end();) {
    if (!client->finished) {
      ++client;
      continue;
    }
    client->thread.join();
    client = clients_.erase(client);
  }
}

}  // namespace sandbox::tds
