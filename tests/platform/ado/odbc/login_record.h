#pragma once

#include <string>

namespace dorvane::test {

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

}  // namespace dorvane::test
