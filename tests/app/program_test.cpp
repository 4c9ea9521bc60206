#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>

#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;

constexpr std::chrono::seconds kLimit{20};

TEST(Program, TellsWhenItsTextIsNotTaken) {
  for (const char* option : {"--help", "--version"}) {
    EXPECT_EQ(Process({DORVANE_PROGRAM, option}, "/dev/full").Wait(kLimit), 1) << option;
    EXPECT_EQ(Process({DORVANE_PROGRAM, option}, "/dev/null").Wait(kLimit), 0) << option;
  }
}

/// What a system log would be told, in a folder that stands for /dev.
class SystemLog {
 public:
  SystemLog() : socket_(socket(AF_UNIX, SOCK_DGRAM, 0)) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, (devices_ / "log").c_str(), sizeof(address.sun_path) - 1);
    bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    const timeval limit = {kLimit.count(), 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
  }
  ~SystemLog() { close(socket_); }
  SystemLog(const SystemLog&) = delete;
  SystemLog& operator=(const SystemLog&) = delete;

  /// Runs a command that sees no other system log. Its exit status.
  int Run(const std::string& command) const {
    const std::string devices = devices_.Path().string();
    return test::Run({"unshare", "--map-root-user", "--mount", "sh", "-c",
                      "mount --bind " + devices + " /dev && exec " + command})
        .status;
  }
  std::string Receive() const {
    std::array<char, 4096> message;
    const ssize_t size = recv(socket_, message.data(), message.size(), 0);
    return size > 0 ? std::string(message.data(), static_cast<std::size_t>(size)) : "";
  }

 private:
  TempFolder devices_;
  int socket_;
};

TEST(Program, ARunThatHasNoLogLeavesItsTraceInTheSystemLog) {
  if (test::Run({"unshare", "--map-root-user", "--mount", "true"}).status != 0) {
    GTEST_SKIP() << "this machine gives nobody a mount table of his own";
  }
  const SystemLog log;
  EXPECT_EQ(log.Run(DORVANE_PROGRAM " /no/such/file.dcs"), 2);
  EXPECT_THAT(log.Receive(),
              HasSubstr("Dorvane: /no/such/file.dcs: conversion failed! unkown error 76 - "));
}

}  // namespace
}  // namespace dorvane::test
