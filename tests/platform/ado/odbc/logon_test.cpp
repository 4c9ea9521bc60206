#include "platform/ado/odbc/logon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/ado/types.h"
#include "tests/platform/ado/odbc/login_record.h"
#include "tests/support/listener.h"
#include "tests/support/temp_folder.h"

namespace dorvane::ado::odbc {

namespace {

using test::Listener;
using test::LoginRecord;

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

LoginRecord LoginSentFor(ConnectionSettings settings) {
  LoginRecord login;
  {
    const Listener listener([&](int socket) {
      const LoginRecord received = test::ReceiveLogin(socket);
      if (!received.tds_version.empty()) login = received;
    });
    settings.server = "127.0.0.1";
    settings.port = listener.Port();
    EXPECT_THROW(Logon(settings, std::chrono::seconds(10)), ProviderError);
  }
  return login;
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
  const Listener listener([](int socket) { test::ReceiveLogin(socket); });
  ConnectionSettings settings = SettingsFor(listener.Port());
  settings.integrated_security = true;
  EXPECT_EQ(FailedLogon(settings), 18452);
  settings.port = test::FreePort();
  EXPECT_EQ(FailedLogon(settings), kServerNotFound);
}

TEST(Logon, SendsValuesThatLookLikeSyntaxAsTheyAre) {
  for (const std::string value : {"plain", "a;b", "a}b", "a;b}c", "x}", "{x}", "{;}", "a=b",
                                  "it's \"x\"", " edge ", "ä€😀;"}) {
    ConnectionSettings settings;
    settings.user_id = "u" + value;
    settings.password = value;
    settings.database = "d" + value;
    const LoginRecord login = LoginSentFor(settings);
    EXPECT_EQ(login.user, "u" + value);
    EXPECT_EQ(login.password, value);
    EXPECT_EQ(login.database, "d" + value);
  }
}

TEST(Logon, SaysNothingToAServerWithoutTheTlsThatIsDemanded) {
  for (const Encryption encryption : {Encryption::Required, Encryption::Verified}) {
    ConnectionSettings settings = SettingsFor(0);
    settings.encryption = encryption;
    EXPECT_EQ(LoginSentFor(settings).tds_version, "");
  }
}

TEST(Logon, IsNotChangedByTheUsersFreeTdsSettings) {
  const test::TempFolder folder;
  const std::string dump = (folder / "dump").string();
  const std::pair<const char*, std::string> settings_of_the_user[] = {
      {"TDSVER", "4.2"}, {"TDSPORT", "9"}, {"TDSHOST", "192.0.2.1"}, {"TDSDUMP", dump}};
  // In a fresh process: in this one the library has been used already.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        for (const auto& [name, value] : settings_of_the_user) setenv(name, value.c_str(), 1);
        const LoginRecord login = LoginSentFor(SettingsFor(0));
        const bool is_ours = login.tds_version == "04000074" && login.language == "us_english" &&
                             login.password == "secret";
        _exit(is_ours && !std::filesystem::exists(dump) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace dorvane::ado::odbc
