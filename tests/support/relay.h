#pragma once

#include <functional>
#include <string>

namespace dorvane::test {

/// Passes what a client and a server on loopback say to each other until either closes. The
/// functions get each portion of what one says before it goes on, and may change it.
using Portion = std::function<void(std::string& bytes)>;
void Relay(int client, int server_port, const Portion& from_client, const Portion& from_server);

}  // namespace dorvane::test
