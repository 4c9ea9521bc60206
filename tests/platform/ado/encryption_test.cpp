// Encryption of a session, on servers of both kinds that have TLS with a certificate of their own.
#include <map>

#include "platform/ado/transport.h"
#include "tests/platform/ado/server_test.h"
#include "tests/platform/ado/tls_front.h"
#include "tests/support/certificate.h"
#include "tests/support/listener.h"
#include "tests/support/relay.h"

namespace dorvane::ado {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

// An address that leads to this machine, and that the program takes for another one's.
constexpr const char* kElsewhere = "0.0.0.0";

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

class EncryptionTest : public BothServers {
 protected:
  struct Certificates {
    test::TempFolder folder;
    test::Certificate own = test::MakeCertificate(folder.Path(), "localhost");
    test::Certificate other = test::MakeCertificate(folder.Path(), "other.invalid");
  };
  static Certificates& Files() {
    static Certificates files;
    return files;
  }
  static test::PrivateMySql& MySqlWithTls() {
    static test::PrivateMySql server({"--ssl-cert=" + Files().own.certificate.string(),
                                      "--ssl-key=" + Files().own.key.string()});
    return server;
  }
  int PortWithTls() const {
    if (IsMySql()) return MySqlWithTls().Port();
    static const test::Listener front(
        [](int socket) { test::ServeWithTls(socket, MsSql().Port(), Files().own); });
    return front.Port();
  }
  int PortWithout() const {
    if (!IsMySql()) return MsSql().Port();
    static const test::Listener stripped([](int socket) {
      test::Relay(
          socket, MySqlWithTls().Port(), [](const std::string&) {}, StripTls);
    });
    return stripped.Port();
  }

  ConnectionSettings SettingsFor(const std::string& host, Encryption encryption,
                                 bool with_tls = true) const {
    return {.server = host,
            .port = with_tls ? PortWithTls() : PortWithout(),
            .user_id = settings_.user_id,
            .password = settings_.password,
            .encryption = encryption};
  }

  const Failure no_tls_{hresult::kFail, Either(2026, 18)};
};

INSTANTIATE_TEST_SUITE_P(, EncryptionTest, kBothServers, NameOfKind);

TEST_P(EncryptionTest, VerifiedTrustsTheAuthorityAndTheNameAlone) {
  ConnectionSettings settings = SettingsFor("localhost", Encryption::Verified);
  settings.ca_file = Files().own.certificate;
  EXPECT_EQ(LogOn(settings), Failure{});
  settings.server = "127.0.0.1";
  EXPECT_EQ(LogOn(settings), no_tls_) << "the certificate is for another name";
  settings.server = "localhost";
  settings.ca_file = Files().other.certificate;
  EXPECT_EQ(LogOn(settings), no_tls_);
  settings.ca_file = "";
  EXPECT_EQ(LogOn(settings), no_tls_) << "the system does not know the authority";
  settings.ca_file = Files().folder / "none.pem";
  EXPECT_EQ(LogOn(settings), (Failure{run_time::kFileNotFound, 0}));
}

TEST_P(EncryptionTest, RequiredAsksForNoCertificateButForTls) {
  ConnectionSettings settings = SettingsFor("127.0.0.1", Encryption::Required);
  EXPECT_EQ(LogOn(settings), Failure{});
  settings.password = "wrong";
  EXPECT_EQ(LogOn(settings).native_error, Either(1045, 18456));
  for (const Encryption encryption : {Encryption::Required, Encryption::Verified}) {
    EXPECT_EQ(LogOn(SettingsFor("localhost", encryption, false)), no_tls_);
  }
}

TEST_P(EncryptionTest, OfferedIsExposedOnlyWhereAnotherMachineHasNone) {
  for (const std::string host : {"127.0.0.1", kElsewhere}) {
    for (const bool with_tls : {true, false}) {
      Connection connection(InstalledProvider(kind_));
      connection.Open(SettingsFor(host, Encryption::Offered, with_tls));
      EXPECT_EQ(connection.IsExposed(), host == kElsewhere && !with_tls);
    }
  }
}

TEST_P(EncryptionTest, RowsTravelBothWaysBehindTls) {
  Connection connection(InstalledProvider(kind_));
  connection.Open(SettingsFor("localhost", Encryption::Required));
  connection.Execute("create database sealed");
  connection.Execute("use sealed");
  connection.Execute("create table notes(id int not null, note varchar(200))");
  RowBlock rows;
  rows.Clear(2);
  for (std::int64_t id = 0; id < 1000; ++id) {
    const std::span<Value> row = rows.AppendRow();
    row[0] = IsMySql() ? Value(rows.Storage().Store(fmt::to_string(id))) : Value(id);
    row[1] = std::string_view("a note that makes the load longer than a packet");
  }
  connection.OpenTable("notes", {"id", "note"}).InsertRows(rows, 0, rows.Rows());
  EXPECT_EQ(RowsOf(connection.Execute("select id, note from notes")).size(), 1000U);
}

/// MySQL begins in the open and only then asks for TLS: there is room for somebody on the way.
class MySqlEncryptionTest : public EncryptionTest {
 protected:
  /// Logs on through somebody who changes what the server says.
  Failure LogOnThrough(const test::Portion& change, Encryption encryption) {
    said_.clear();
    const test::Listener listener([&](int socket) {
      std::string& said = said_.emplace_back();
      test::Relay(
          socket, PortWithTls(), [&](const std::string& bytes) { said += bytes; }, change);
    });
    ConnectionSettings settings = SettingsFor("localhost", encryption);
    settings.ca_file = Files().own.certificate;
    settings.port = listener.Port();
    return LogOn(settings);
  }

  std::vector<std::string> said_;  // by the client, on each connection
};

INSTANTIATE_TEST_SUITE_P(, MySqlEncryptionTest, testing::Values(ServerKind::MySql), NameOfKind);

TEST_P(MySqlEncryptionTest, NothingOfTheLogonIsSaidWhereSomebodyStripsTls) {
  for (const auto strip : {StripTls, StripTlsAndMethods}) {
    for (const Encryption encryption : {Encryption::Required, Encryption::Verified}) {
      EXPECT_EQ(LogOnThrough(strip, encryption), no_tls_);
      EXPECT_THAT(said_, testing::ElementsAre(IsEmpty()));
    }
  }
}

TEST_P(MySqlEncryptionTest, AHandshakeThatFailsIsNotFollowedByAnOpenLogon) {
  int portions = 0;
  const auto garble = [&](std::string& portion) {
    if (portions++ > 0) portion.assign(portion.size(), 'x');
  };
  EXPECT_EQ(LogOnThrough(garble, Encryption::Required), no_tls_);
  ASSERT_EQ(said_.size(), 1U);
  EXPECT_EQ(said_[0].at(36), '\x16') << "behind the request for TLS comes its handshake";
  EXPECT_THAT(said_[0], Not(HasSubstr("root")));
}

TEST_P(MySqlEncryptionTest, RequiredIsEncryptedByEveryMethod) {
  const test::PrivateMySql& server = MySqlWithTls();
  for (const std::string& method : PasswordMethods(server)) {
    server.Query("create user 'someone'@'127.0.0.1' identified " + method);
    ConnectionSettings settings = SettingsFor("127.0.0.1", Encryption::Required);
    settings.user_id = "someone";
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
