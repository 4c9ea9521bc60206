#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ado/connection.h"
#include "tests/platform/ado/mysql/fixture.h"
#include "tests/support/certificate.h"
#include "tests/support/listener.h"
#include "tests/support/relay.h"

namespace dorvane::ado {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int kTlsFailure = 2026;  // the client library's number

/// A server that offers TLS with a certificate for "localhost".
class MySqlEncryptionTest : public testing::Test {
 protected:
  struct Server {
    test::TempFolder folder;
    test::Certificate own = test::MakeCertificate(folder.Path(), "localhost");
    test::Certificate other = test::MakeCertificate(folder.Path(), "other.invalid");
    test::PrivateMySql mysql{
        {"--ssl-cert=" + own.certificate.string(), "--ssl-key=" + own.key.string()}};
  };
  static Server& Shared() {
    static Server server;
    return server;
  }

  static ConnectionSettings Settings(Encryption encryption) {
    return {.server = "localhost",
            .port = Shared().mysql.Port(),
            .user_id = "root",
            .password = Shared().mysql.Password(),
            .encryption = encryption,
            .ca_file = Shared().own.certificate.string()};
  }

  static Failure LogOn(const ConnectionSettings& settings) {
    Connection connection(MySqlProvider());
    return FailureOf(connection, [&] { connection.Open(settings); });
  }

  /// Logs on through somebody on the way who changes what the server says.
  static Failure LogOnThrough(const test::Portion& change, ConnectionSettings settings) {
    said_.clear();
    const test::Listener listener([&](int socket) {
      std::string& said = said_.emplace_back();
      test::Relay(
          socket, Shared().mysql.Port(), [&](const std::string& bytes) { said += bytes; }, change);
    });
    settings.port = listener.Port();
    return LogOn(settings);
  }

  static inline std::vector<std::string> said_;  // by the client, on each connection
};

/// Where a server's greeting says what it can do: behind its version and 13 bytes.
std::size_t CapabilitiesIn(const std::string& greeting) {
  return greeting.find('\0', 5) + 1 + 13;
}

void StripTls(std::string& portion) {
  const bool is_greeting = portion.size() > 5 && portion[3] == 0 && portion[4] == '\x0a';
  if (is_greeting) portion[CapabilitiesIn(portion) + 1] &= ~0x08;
}

void StripTlsAndMethods(std::string& portion) {
  const std::size_t size = portion.size();
  StripTls(portion);
  if (size > 60) portion[CapabilitiesIn(portion) + 5] &= ~0x08;
}

TEST_F(MySqlEncryptionTest, NothingOfTheLogonIsSaidWhereSomebodyStripsTls) {
  for (const auto strip : {StripTls, StripTlsAndMethods}) {
    for (const Encryption encryption : {Encryption::Required, Encryption::Verified}) {
      EXPECT_EQ(LogOnThrough(strip, Settings(encryption)), (Failure{hresult::kFail, kTlsFailure}));
      EXPECT_THAT(said_, testing::ElementsAre(IsEmpty()));
    }
  }
}

TEST_F(MySqlEncryptionTest, OfferedGoesOnWithoutAndIsExposedWhereTheServerIsNotThisMachine) {
  const test::Listener listener([&](int socket) {
    test::Relay(
        socket, Shared().mysql.Port(), [](const std::string&) {}, StripTls);
  });
  // An address that leads to this machine, and that the program takes for another one's.
  for (const std::string host : {"127.0.0.1", "0.0.0.0"}) {
    ConnectionSettings settings = Settings(Encryption::Offered);
    settings.server = host;
    for (const int port : {listener.Port(), Shared().mysql.Port()}) {
      settings.port = port;
      Connection connection(MySqlProvider());
      connection.Open(settings);
      EXPECT_EQ(connection.IsExposed(), host == "0.0.0.0" && port == listener.Port());
    }
  }
}

TEST_F(MySqlEncryptionTest, AHandshakeThatFailsIsNotFollowedByAnOpenLogon) {
  int portions = 0;
  const auto garble = [&](std::string& portion) {
    if (portions++ > 0) portion.assign(portion.size(), 'x');
  };
  EXPECT_EQ(LogOnThrough(garble, Settings(Encryption::Required)),
            (Failure{hresult::kFail, kTlsFailure}));
  ASSERT_EQ(said_.size(), 1U);
  EXPECT_EQ(said_[0].at(36), '\x16') << "behind the request for TLS comes its handshake";
  EXPECT_THAT(said_[0], Not(HasSubstr("root")));
}

TEST_F(MySqlEncryptionTest, VerifiedTrustsTheAuthorityAndTheNameAlone) {
  ConnectionSettings settings = Settings(Encryption::Verified);
  EXPECT_EQ(LogOn(settings), Failure{});
  const Failure refused{hresult::kFail, kTlsFailure};
  settings.server = "127.0.0.1";
  EXPECT_EQ(LogOn(settings), refused) << "the certificate is for another name";
  settings.server = "localhost";
  settings.ca_file = Shared().other.certificate;
  EXPECT_EQ(LogOn(settings), refused);
  settings.ca_file = "";
  EXPECT_EQ(LogOn(settings), refused) << "the system does not know the authority";
  settings.ca_file = Shared().folder / "none.pem";
  EXPECT_EQ(LogOn(settings), (Failure{run_time::kFileNotFound, 0}));
}

TEST_F(MySqlEncryptionTest, RequiredIsEncryptedByEveryMethod) {
  const test::PrivateMySql& server = Shared().mysql;
  if (server.IsMariaDb()) server.Query("install soname 'auth_ed25519'");
  const std::vector<std::string> methods =
      server.IsMariaDb()
          ? std::vector<std::string>{"via mysql_native_password using password('secret')",
                                     "via ed25519 using password('secret')"}
          : std::vector<std::string>{"with caching_sha2_password by 'secret'",
                                     "with sha256_password by 'secret'"};
  for (const std::string& method : methods) {
    server.Query("create user 'someone'@'127.0.0.1' identified " + method);
    ConnectionSettings settings = Settings(Encryption::Required);
    settings.server = "127.0.0.1";
    settings.user_id = "someone";
    settings.ca_file = "";
    Connection connection(MySqlProvider());
    connection.Open(settings);
    EXPECT_NE(connection.Execute("show session status like 'Ssl_cipher'").Field("Value").Text(), "")
        << method;
    EXPECT_FALSE(connection.IsExposed());
    settings.password = "wrong";
    EXPECT_EQ(LogOn(settings), (Failure{hresult::kFail, 1045})) << method;
    server.Query("drop user 'someone'@'127.0.0.1'");
  }
}

}  // namespace
}  // namespace dorvane::ado
