#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ado/odbc/logon.h"
#include "platform/ado/transport.h"
#include "tests/platform/ado/odbc/login_record.h"
#include "tests/platform/ado/odbc/server_fixture.h"
#include "tests/platform/ado/odbc/tls_front.h"
#include "tests/support/listener.h"

namespace dorvane::ado {

namespace {

constexpr int kTlsFailure = 18;
// An address that leads to this machine, and that the program takes for another one's.
constexpr const char* kElsewhere = "0.0.0.0";

class EncryptionTest : public ServerTest {
 protected:
  struct Front {
    test::TempFolder folder;
    test::Certificate own = test::MakeCertificate(folder.Path(), "localhost");
    test::Certificate other = test::MakeCertificate(folder.Path(), "other.invalid");
    test::Listener listener{
        [this](int socket) { test::ServeWithTls(socket, ServerTest::Settings().port, own); }};
  };
  static Front& Shared() {
    static Front front;
    return front;
  }

  /// The practice server behind a front with TLS, or itself.
  static ConnectionSettings SettingsFor(const std::string& host, Encryption encryption, bool tls) {
    ConnectionSettings settings = Settings();
    settings.server = host;
    settings.encryption = encryption;
    if (tls) settings.port = Shared().listener.Port();
    return settings;
  }

  /// The native error of a logon; 0 when it worked.
  static int LogOn(const ConnectionSettings& settings) {
    try {
      const odbc::Logon logon(settings);
      return 0;
    } catch (const ProviderError& error) {
      return error.Entries().at(1).native_error;
    }
  }
};

TEST_F(EncryptionTest, NothingOfTheLogonIsSaidToAServerWithoutTls) {
  for (const Encryption encryption : {Encryption::Required, Encryption::Verified}) {
    test::LoginRecord login;
    const test::Listener listener([&](int socket) { login = test::ReceiveLogin(socket); });
    ConnectionSettings settings = SettingsFor("127.0.0.1", encryption, false);
    settings.port = listener.Port();
    EXPECT_EQ(LogOn(settings), kTlsFailure);
    EXPECT_EQ(login.user, "");
    EXPECT_EQ(login.password, "");
  }
}

TEST_F(EncryptionTest, VerifiedTrustsTheAuthorityAndTheNameAlone) {
  ConnectionSettings settings = SettingsFor("localhost", Encryption::Verified, true);
  settings.ca_file = Shared().own.certificate;
  EXPECT_EQ(LogOn(settings), 0);
  settings.password = "wrong";
  EXPECT_EQ(LogOn(settings), 18456);
  settings.server = "127.0.0.1";
  EXPECT_EQ(LogOn(settings), kTlsFailure) << "the certificate is for another name";
  settings.server = "localhost";
  settings.ca_file = Shared().other.certificate;
  EXPECT_EQ(LogOn(settings), kTlsFailure);
  settings.ca_file = "";
  EXPECT_EQ(LogOn(settings), kTlsFailure) << "the system does not know the authority";
  settings.ca_file = Shared().folder / "none.pem";
  EXPECT_THROW(LogOn(settings), RunTimeError);
}

TEST_F(EncryptionTest, RowsTravelBothWaysBehindTls) {
  ConnectionSettings settings = SettingsFor("localhost", Encryption::Verified, true);
  settings.ca_file = Shared().own.certificate;
  const auto session = OdbcProvider().Connect(settings);
  session->Execute("create table sealed(id int not null, note varchar(200))");
  RowBlock rows;
  rows.Clear(2);
  for (std::int64_t id = 0; id < 1000; ++id) {
    const std::span<Value> row = rows.AppendRow();
    row[0] = id;
    row[1] = std::string_view("a note that makes the load longer than a packet");
  }
  session->OpenWriter("[sealed]", {"id", "note"})->Insert(rows, 0, rows.Rows());
  EXPECT_EQ(Rest(*session->Execute("select id, note from sealed")).size(), 1000U);
}

TEST_F(EncryptionTest, RequiredAsksForNoCertificate) {
  EXPECT_EQ(LogOn(SettingsFor("127.0.0.1", Encryption::Required, true)), 0);
  EXPECT_EQ(LogOn(SettingsFor("127.0.0.1", Encryption::Required, false)), kTlsFailure);
}

TEST_F(EncryptionTest, OfferedIsExposedOnlyWhereAnotherMachineOffersNone) {
  const auto is_exposed = [](const char* host, bool tls) {
    return odbc::Logon(SettingsFor(host, Encryption::Offered, tls)).IsExposed();
  };
  EXPECT_FALSE(is_exposed("127.0.0.1", false));
  EXPECT_FALSE(is_exposed(kElsewhere, true));
  EXPECT_TRUE(is_exposed(kElsewhere, false));
  ConnectionSettings settings = SettingsFor(kElsewhere, Encryption::Offered, false);
  settings.password = "wrong";
  EXPECT_EQ(LogOn(settings), 18456);
}

TEST(Loopback, IsThisMachineByNameOrAddress) {
  for (const char* host : {"localhost", "127.0.0.1", "127.8.9.10", "::1"}) {
    EXPECT_TRUE(IsLoopback(host)) << host;
  }
  for (const char* host : {"192.0.2.1", kElsewhere, "fe80::1", "no-such-host.invalid"}) {
    EXPECT_FALSE(IsLoopback(host)) << host;
  }
}

}  // namespace
}  // namespace dorvane::ado
