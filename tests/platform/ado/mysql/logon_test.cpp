#include <sys/socket.h>

#include "tests/platform/ado/mysql/fixture.h"
#include "tests/support/listener.h"

namespace dorvane::ado {

namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::Not;

constexpr int kNotAllowed = 5010;  // the client library's number for a method it may not use

class MySqlLogonTest : public MySqlTest {
 protected:
  /// The settings of a user with the fixture's password.
  ConnectionSettings As(const std::string& user) const {
    ConnectionSettings settings = settings_;
    settings.user_id = user;
    settings.database = "";
    return settings;
  }

  static void OfferTls(bool offered) {
    MySql().Query(offered ? "set global tls_version = default; alter instance reload tls"
                          : "set global tls_version = '';"
                            "alter instance reload tls no rollback on error");
  }
};

TEST_F(MySqlLogonTest, EveryMethodWorksFromTheFirstLogonOnWithTlsAndWithout) {
  const bool is_mariadb = IsMariaDb();
  for (const bool with_tls : {false, true}) {
    if (!is_mariadb) OfferTls(with_tls);
    for (const std::string& method : PasswordMethods(MySql())) {
      SCOPED_TRACE(method + (with_tls ? ", TLS" : ""));
      MySql().Query("create user 'someone'@'127.0.0.1' identified " + method);
      ConnectionSettings settings = As("someone");
      EXPECT_EQ(LogOn(settings), Failure{}) << "the server has nothing of the user in its cache";
      EXPECT_EQ(LogOn(settings), Failure{});
      settings.password = "wrong";
      EXPECT_EQ(LogOn(settings), (Failure{hresult::kFail, 1045}));
      MySql().Query("drop user 'someone'@'127.0.0.1'");
    }
    if (is_mariadb) return;  // this server offers no TLS
    connection_.Close();
    connection_.Open(settings_);
    const Rows status = RowsOf("show session status like 'Ssl_cipher'");
    EXPECT_EQ(!status.at(0).at(1).empty(), with_tls);
  }
}

/// Speaks the server's side of a logon without TLS, up to the end of the patience of the client.
class PasswordThief {
 public:
  /// Greets with one authentication method and asks for another, or goes on with the same.
  PasswordThief(std::string greeted, std::string asked)
      : greeted_(std::move(greeted)), asked_(std::move(asked)) {}

  void Serve(int socket) {
    sequence_ = 0;
    // Version, session, the first part of a challenge, capabilities, the second part.
    Send(socket,
         "\x0a"
         "5.7.0\0"
         "\1\0\0\0"
         "challeng\0"s +
             "\x09\xa2\x2d\2\0\x08\0\x15"s + std::string(10, '\0') + "elengthened!\0"s + greeted_ +
             '\0');
    if (!Take(socket)) return;
    if (greeted_ != asked_) {
      Send(socket, "\xfe" + asked_ + "\0another challenge 20\0"s);
      if (!Take(socket)) return;
    }
    const std::string wants_whole_password = "\1\4";
    do Send(socket, wants_whole_password);
    while (Take(socket));
  }
  const std::string& Loot() const { return loot_; }

 private:
  void Send(int socket, const std::string& payload) {
    const std::string packet =
        std::string{static_cast<char>(payload.size()), 0, 0, sequence_} + payload;
    send(socket, packet.data(), packet.size(), MSG_NOSIGNAL);
  }
  /// The client's next packet goes to the loot; false when there is none.
  bool Take(int socket) {
    const std::string header = test::Receive(socket, 4);
    if (header.empty()) return false;
    loot_ += test::Receive(socket, static_cast<unsigned char>(header[0]));
    sequence_ = static_cast<char>(header[3] + 1);
    return true;
  }

  std::string greeted_;
  std::string asked_;
  std::string loot_;
  char sequence_ = 0;
};

TEST_F(MySqlLogonTest, AServerThatAsksForTheBarePasswordDoesNotGetIt) {
  struct Case {
    const char* greeted;
    const char* asked;
    int native_error;  // 0: any
  };
  const Case cases[] = {
      {"mysql_native_password", "mysql_clear_password", kNotAllowed},
      {"mysql_clear_password", "mysql_clear_password", kNotAllowed},
      {"mysql_native_password", "dialog", kNotAllowed},
      {"mysql_native_password", "mysql_old_password", kNotAllowed},
      {"caching_sha2_password", "dialog", kNotAllowed},
      {"caching_sha2_password", "caching_sha2_password", 0},
      {"mysql_native_password", "caching_sha2_password", 0},
      {"sha256_password", "sha256_password", 0},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.greeted + " then "s + each.asked);
    PasswordThief thief(each.greeted, each.asked);
    {
      const test::Listener listener([&](int socket) { thief.Serve(socket); });
      ConnectionSettings settings = As("someone");
      settings.port = listener.Port();
      const Failure failure = LogOn(settings);
      EXPECT_EQ(failure.number, hresult::kFail);
      EXPECT_TRUE(each.native_error == 0 || failure.native_error == each.native_error) << failure;
    }
    EXPECT_THAT(thief.Loot(), Not(HasSubstr(settings_.password)));
  }
}

TEST_F(MySqlLogonTest, ALatin1ServerKeepsEveryTextAndMakesUnicodeDatabases) {
  const test::PrivateMySql latin1(
      {"--character-set-server=latin1", "--loose-skip-character-set-client-handshake"});
  ConnectionSettings settings = As("root");
  settings.port = latin1.Port();
  Connection connection(InstalledProvider(kind_));
  connection.Open(settings);
  connection.Execute("create database made");
  connection.Execute("create table made.t(v varchar(9))");
  connection.Execute("insert into made.t values ('中é')");
  EXPECT_EQ(Ask(connection, "select v from made.t"), "中é");
  EXPECT_EQ(latin1.Query("select hex(v) from made.t"), "E4B8ADC3A9\n");
}

TEST_F(MySqlLogonTest, LimitsOfTheServerDoNotShortenResults) {
  Run("create table t(id int)");
  Run("insert into t select seq from " + test::Sequence(1, 20) + " s");
  MySql().Query("set global sql_select_limit = 5; set global max_join_size = 10");
  Connection connection(InstalledProvider(kind_));
  connection.Open(settings_);
  Recordset rows = connection.Execute("select a.id from t a, t b");
  int count = 0;
  for (; !rows.AtEnd(); rows.MoveNext()) ++count;
  MySql().Query("set global sql_select_limit = default; set global max_join_size = default");
  EXPECT_EQ(count, 400);
}

TEST_F(MySqlLogonTest, TablesWithoutAKeyAreMadeWhereTheRightIsThere) {
  if (IsMariaDb()) GTEST_SKIP() << "MariaDB makes any table";
  const auto set_switches = [](const char* value) {
    for (const char* name : {"sql_require_primary_key", "sql_generate_invisible_primary_key"}) {
      MySql().Query(fmt::format("set global {} = {}", name, value));
    }
  };
  MySql().Query("create user 'plain'@'127.0.0.1' identified by 'secret'");
  set_switches("on");
  Connection connection(InstalledProvider(kind_));
  connection.Open(settings_);
  connection.Execute("create table bare(id int)");
  EXPECT_EQ(connection.Columns("bare").size(), 1U);
  EXPECT_EQ(LogOn(As("plain")), Failure{}) << "a user who may not switch them off";
  set_switches("off");
}

}  // namespace
}  // namespace dorvane::ado
