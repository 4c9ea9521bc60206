#include "tests/support/temp_folder.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>

namespace dorvane::test {

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "dorvane-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = pattern;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

namespace {

bool IsFree(int port) {
  const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int yes = 1;
  setsockopt(probe, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool free = bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  close(probe);
  return free;
}

}  // namespace

int FreePort() {
  static std::mt19937 random{std::random_device{}()};
  std::uniform_int_distribution<int> ports(12000, 31999);
  for (int attempt = 0; attempt < 200; ++attempt) {
    const int port = ports(random);
    if (IsFree(port)) return port;
  }
  throw std::runtime_error("no free port");
}

}  // namespace dorvane::test
