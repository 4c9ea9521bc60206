#pragma once

#include <functional>
#include <string>
#include <thread>

namespace dorvane::test {

/// Listens on a free loopback port and handles each connection with a function, one after another.
/// Ended with its owner.
class Listener {
 public:
  /// `serve` gets the connected socket, which is closed after it.
  explicit Listener(std::function<void(int socket)> serve);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  int Port() const { return port_; }

 private:
  int socket_ = -1;
  int port_ = 0;
  std::function<void(int)> serve_;
  std::jthread thread_;
};

/// What a client sent in its login record.
struct LoginRecord {
  std::string tds_version;  // four hexadecimal bytes as they travel
  std::string user;
  std::string password;
  std::string language;
  std::string database;
};

/// Plays SQL Server up to the login record, then hangs up. Empty when the client gave up before.
LoginRecord ReceiveLogin(int socket);

/// Waits until the other side closes the connection.
void AwaitClose(int socket);

}  // namespace dorvane::test
