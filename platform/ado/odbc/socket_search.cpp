#include "platform/ado/odbc/socket_search.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <charconv>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace dorvane::ado::odbc {

namespace {

struct Socket {
  int descriptor = -1;
  ino_t inode = 0;
};

std::vector<Socket> OwnSockets() {
  std::vector<Socket> sockets;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", ignored)) {
    const std::string name = entry.path().filename();
    Socket socket;
    std::from_chars(name.data(), name.data() + name.size(), socket.descriptor);
    struct stat status {};
    if (fstat(socket.descriptor, &status) != 0 || !S_ISSOCK(status.st_mode)) continue;
    socket.inode = status.st_ino;
    sockets.push_back(socket);
  }
  return sockets;
}

/// The port at the other end of a TCP connection.
std::optional<int> PeerPort(int descriptor) {
  sockaddr_storage peer{};
  socklen_t size = sizeof peer;
  if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) != 0) return std::nullopt;
  if (peer.ss_family == AF_INET) return ntohs(reinterpret_cast<sockaddr_in&>(peer).sin_port);
  if (peer.ss_family == AF_INET6) return ntohs(reinterpret_cast<sockaddr_in6&>(peer).sin6_port);
  return std::nullopt;
}

}  // namespace

SocketSearch::SocketSearch() {
  for (const Socket& socket : OwnSockets()) known_.insert(socket.inode);
}

int SocketSearch::NewSocket(int port) const {
  int found = -1;
  for (const Socket& socket : OwnSockets()) {
    const std::optional<int> peer = PeerPort(socket.descriptor);
    if (!peer || known_.contains(socket.inode) || (port != 0 && *peer != port)) continue;
    if (found != -1) return -1;
    found = socket.descriptor;
  }
  return found;
}

}  // namespace dorvane::ado::odbc
