#pragma once

namespace dorvane::test {

/// A socket that listens on a loopback port, or -1 when the port is taken.
int ListenAt(int port);

/// A socket that is connected to a loopback port, or -1 when nobody listens there.
int ConnectTo(int port);

/// A loopback port that nobody listens on, below 32768 as the endpoints' 16-bit ports need it.
/// Throws std::runtime_error when none is found.
int FreePort();

}  // namespace dorvane::test
