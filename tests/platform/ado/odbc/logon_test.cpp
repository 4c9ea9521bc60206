#include "platform/ado/odbc/logon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/ado/types.h"
#include "tests/support/listener.h"

namespace dorvane::ado::odbc {

namespace {

using test::Listener;

constexpr int kServerNotFound = 17;

ConnectionSettings SettingsFor(int port) {
  ConnectionSettings settings;
  settings.server = "127.0.0.1";
  settings.port = port;
  settings.user_id = "sa";
  settings.password = "secret";
  return settings;
}

/// The native error by which callers know why a logon failed.
int FailedLogon(const ConnectionSettings& settings, int seconds = 10) {
  try {
    const Logon logon(settings, std::chrono::seconds(seconds));
  } catch (const ProviderError& error) {
    EXPECT_EQ(error.Number(), hresult::kFail);
    EXPECT_GE(error.Entries().size(), 2U);
    return error.Entries().size() < 2 ? -1 : error.Entries()[1].native_error;
  }
  ADD_FAILURE() << "logged on";
  return -1;
}

/// Plays SQL Server without encryption up to the login, then hangs up. Whether the login came.
bool ReceivesLogin(int socket) {
  constexpr char kLogin = 0x10;
  constexpr std::string_view kWithoutEncryption(
      "\x04\x01\x00\x1A\x00\x00\x01\x00"
      "\x00\x00\x0B\x00\x06\x01\x00\x11\x00\x01\xFF"
      "\x0F\x00\x00\x00\x00\x00\x02",
      26);
  while (true) {
    const std::string header = test::Receive(socket, 8);
    if (header.empty() || header[0] == kLogin) return !header.empty();
    test::Receive(socket, static_cast<unsigned char>(header[3]) - 8);
    send(socket, kWithoutEncryption.data(), kWithoutEncryption.size(), MSG_NOSIGNAL);
  }
}

TEST(Logon, TakesNoHangUpForAServer) {
  const Listener listener([](int) {});
  EXPECT_EQ(FailedLogon(SettingsFor(listener.Port())), kServerNotFound);
}

TEST(Logon, TakesNoNonsenseForAServer) {
  for (const std::string_view nonsense :
       {std::string_view("HTTP/1.1 400 Bad Request\r\n\r\n"),
        std::string_view("\0\0\0\0\0\0\0\0", 8),
        std::string_view("\x04\x01\x00\x09\x00\x00\x01\x00\xFF", 9),
        std::string_view("\x04\x01\xFF\xFF\x00\x00\x01\x00", 8)}) {
    const Listener listener([&](int socket) {
      send(socket, nonsense.data(), nonsense.size(), MSG_NOSIGNAL);
      shutdown(socket, SHUT_WR);
      test::AwaitClose(socket);
    });
    EXPECT_EQ(FailedLogon(SettingsFor(listener.Port())), kServerNotFound);
  }
}

TEST(Logon, GivesUpOnASilentServer) {
  const Listener listener(test::AwaitClose);
  EXPECT_EQ(FailedLogon(SettingsFor(listener.Port()), 1), kServerNotFound);
}

TEST(Logon, OfATrustedConnectionNeedsATicket) {
  setenv("KRB5CCNAME", "FILE:/nonexistent/ticket", 1);
  const Listener listener([](int socket) { ReceivesLogin(socket); });
  ConnectionSettings settings = SettingsFor(listener.Port());
  settings.integrated_security = true;
  EXPECT_EQ(FailedLogon(settings), 18452);
  settings.port = test::FreePort();
  EXPECT_EQ(FailedLogon(settings), kServerNotFound);
}

TEST(Logon, SaysNothingToAServerWithoutTheTlsThatIsDemanded) {
  using enum Encryption;
  for (const Encryption encryption : {Offered, Required, Verified}) {
    std::atomic<bool> has_come = false;
    {
      const Listener listener([&](int socket) {
        if (ReceivesLogin(socket)) has_come = true;
      });
      ConnectionSettings settings = SettingsFor(listener.Port());
      settings.encryption = encryption;
      EXPECT_THROW(Logon(settings, std::chrono::seconds(10)), ProviderError);
    }
    EXPECT_EQ(has_come, encryption == Offered);
  }
}

}  // namespace
}  // namespace dorvane::ado::odbc
