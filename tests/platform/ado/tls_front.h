#pragma once

#include "tests/support/certificate.h"

namespace dorvane::test {

/// Gives a practice server TLS as SQL Server has it: the handshake inside prelogin packets, every
/// byte behind it encrypted. Serves one client to its end. Throws std::runtime_error when a file of
/// the certificate can't be used.
void ServeWithTls(int client, int server_port, const Certificate& certificate);

}  // namespace dorvane::test
