#include "platform/ado/transport.h"

#include <netdb.h>
#include <netinet/in.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

#include "platform/files/descriptor.h"

namespace dorvane::ado {

namespace {

// Where the systems keep the authorities that they trust.
constexpr std::array kSystemAuthorities{
    "/etc/ssl/certs/ca-certificates.crt", "/etc/pki/tls/certs/ca-bundle.crt",
    "/etc/ssl/ca-bundle.pem", "/etc/ssl/cert.pem", "/opt/homebrew/etc/ca-certificates/cert.pem"};

bool IsLoopback(const addrinfo& entry) {
  if (entry.ai_family == AF_INET) {
    const auto& address = *reinterpret_cast<const sockaddr_in*>(entry.ai_addr);
    return ntohl(address.sin_addr.s_addr) >> 24 == IN_LOOPBACKNET;
  }
  const auto& address = *reinterpret_cast<const sockaddr_in6*>(entry.ai_addr);
  return entry.ai_family == AF_INET6 && IN6_IS_ADDR_LOOPBACK(&address.sin6_addr);
}

}  // namespace

bool IsLoopback(const std::string& host) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return false;
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(found, freeaddrinfo);
  for (const addrinfo* entry = found; entry != nullptr; entry = entry->ai_next) {
    if (!IsLoopback(*entry)) return false;
  }
  return true;
}

std::string AuthoritiesFile(const ConnectionSettings& settings) {
  const auto can_read = [](const std::string& path) { return access(path.c_str(), R_OK) == 0; };
  std::string file = settings.ca_file;
  if (file.empty()) {
    const auto system = std::ranges::find_if(kSystemAuthorities, can_read);
    file = system != kSystemAuthorities.end() ? *system : kSystemAuthorities.front();
  }
  if (!can_read(file)) files::ThrowFileError(errno, file);
  return file;
}

}  // namespace dorvane::ado
