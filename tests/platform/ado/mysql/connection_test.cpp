#include <fstream>

#include "tests/platform/ado/mysql/fixture.h"
#include "tests/support/listener.h"
#include "tests/support/temp_folder.h"

namespace dorvane::ado {

namespace {

class MySqlConnectionTest : public MySqlTest {
 protected:
  static ConnectionSettings With(void (*change)(ConnectionSettings&)) {
    ConnectionSettings settings = Settings();
    change(settings);
    return settings;
  }

  /// A table of `rows` rows whose text column holds `width` characters.
  void MakeRows(int rows, int width) {
    Run("create table many(id int primary key, note text)");
    Run(fmt::format("insert into many select seq, repeat('x', {}) from {} s", width,
                    test::Sequence(1, rows)));
  }
};

TEST_F(MySqlConnectionTest, TellsWhyALogonFailed) {
  using S = ConnectionSettings;
  EXPECT_EQ(LogOn(Settings()), Failure{});
  EXPECT_EQ(LogOn(With([](S& s) { s.password = "wrong"; })), (Failure{hresult::kFail, 1045}));
  EXPECT_EQ(LogOn(With([](S& s) { s.database = "absent"; })), (Failure{hresult::kFail, 1049}));
  EXPECT_EQ(LogOn(With([](S& s) { s.port = test::FreePort(); })), (Failure{hresult::kFail, 2003}));
  EXPECT_EQ(LogOn(With([](S& s) { s.server = "no.such.host.invalid"; })),
            (Failure{hresult::kFail, 2003}));
}

TEST_F(MySqlConnectionTest, APortIsMeantEvenOnLocalhost) {
  ConnectionSettings settings = Settings();
  settings.server = "localhost";
  EXPECT_EQ(LogOn(settings), Failure{});
  settings.port = test::FreePort();
  EXPECT_EQ(LogOn(settings), (Failure{hresult::kFail, 2003}));
}

TEST_F(MySqlConnectionTest, SettingsCarryWhatTheStringCannot) {
  Server().Query(
      "drop user if exists 'o;dd'@'127.0.0.1';"
      "create user 'o;dd'@'127.0.0.1' identified by 'se;Database=x;\\'`\"pw'");
  ConnectionSettings settings = Settings();
  settings.user_id = "o;dd";
  settings.password = "se;Database=x;'`\"pw";
  settings.database = "";
  EXPECT_EQ(LogOn(settings), Failure{});
}

TEST_F(MySqlConnectionTest, UsesTlsWhereTheServerHasIt) {
  const test::TempFolder folder;
  const auto key = (folder / "key.pem").string();
  const auto certificate = (folder / "cert.pem").string();
  const test::Outcome made =
      test::Run({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                 "/CN=nobody", "-keyout", key, "-out", certificate});
  ASSERT_EQ(made.status, 0) << made.output;
  test::PrivateMySql server({"--ssl-key=" + key, "--ssl-cert=" + certificate});
  Connection connection(MySqlProvider());
  connection.Open({.server = "127.0.0.1",
                   .port = server.Port(),
                   .user_id = "root",
                   .password = server.Password()});
  Recordset status = connection.Execute("show session status like 'Ssl_cipher'");
  EXPECT_NE(status.Field("Value").Text(), "");
  // Reads and a broken connection behave the same inside the cipher.
  EXPECT_EQ(Ask(connection, "select repeat('x', 300000)").size(), 300000U);
  server.Kill();
  EXPECT_EQ(FailureOf(connection, [&] { connection.Execute("select 1"); }).number, hresult::kFail);
}

TEST_F(MySqlConnectionTest, SessionModeKeepsValuesAndRefusesWhatDoesNotFit) {
  Run("set global sql_mode = 'ANSI,NO_BACKSLASH_ESCAPES,NO_ZERO_DATE'");
  Connection connection(MySqlProvider());
  connection.Open(Settings());
  Run("set global sql_mode = default");
  const std::string mode = Ask(connection, "select @@sql_mode");
  EXPECT_THAT(mode, testing::HasSubstr("NO_AUTO_VALUE_ON_ZERO"));
  EXPECT_THAT(mode, testing::HasSubstr("STRICT_TRANS_TABLES"));
  EXPECT_THAT(mode, testing::HasSubstr("NO_ZERO_DATE"));
  EXPECT_EQ(Ask(connection, "select \"a\\\\b\""), "a\\b");
  EXPECT_EQ(Ask(connection, "select @@character_set_client"), "utf8mb4");
}

TEST_F(MySqlConnectionTest, ClassifiesRefusedStatements) {
  Run("create table parent(id int primary key)");
  Run("create table child(id int, foreign key (id) references parent(id))");
  Run("insert into parent values (1)");
  const auto failure = [&](std::string_view sql) {
    return FailureOf(connection_, [&] { Run(sql); });
  };
  EXPECT_EQ(failure("selec 1"), (Failure{hresult::kErrorsInCommand, 1064}));
  EXPECT_EQ(failure("create table parent(id int)"), (Failure{hresult::kErrorsInCommand, 1050}));
  EXPECT_EQ(failure("insert into parent values (1)"), (Failure{hresult::kErrorsInCommand, 1062}));
  EXPECT_EQ(failure("insert into child values (2)"), (Failure{hresult::kErrorsInCommand, 1452}));
  EXPECT_EQ(failure("insert into parent values ('x')"), (Failure{hresult::kErrorsOccurred, 1366}));
  EXPECT_EQ(failure("insert into parent values (9999999999)"),
            (Failure{hresult::kErrorsOccurred, 1264}));
  EXPECT_EQ(failure("alter table child add foreign key (id) references absent(id)"),
            (Failure{hresult::kFail, Server().IsMariaDb() ? 1005 : 1824}));
  const char* reason = Server().IsMariaDb() ? "errno: 150" : "the referenced table 'absent'";
  EXPECT_THAT(connection_.Errors()[0].description, testing::HasSubstr(reason));
  Run("insert into child values (1)");
  EXPECT_TRUE(connection_.Errors().empty());
}

TEST_F(MySqlConnectionTest, AStatementWhileStreamingRunsOnASecondSession) {
  MakeRows(20000, 100);
  Recordset stream = connection_.Execute("select id from many order by id");
  EXPECT_FALSE(stream.AtEnd());
  const std::string streaming_id = Ask("select connection_id()");
  EXPECT_EQ(Ask("select count(*) from many"), "20000");
  EXPECT_EQ(Ask("select connection_id()"), streaming_id) << "the second session was not kept";
  std::int64_t sum = 0;
  for (; !stream.AtEnd(); stream.MoveNext()) sum += std::get<std::int64_t>(stream.Field(0).Value());
  EXPECT_EQ(sum, 20000LL * 20001 / 2);
  EXPECT_NE(Ask("select connection_id()"), streaming_id) << "the first session is idle again";
}

TEST_F(MySqlConnectionTest, BlocksAreBoundedInRowsAndBytes) {
  MakeRows(3000, 10000);
  Recordset rows = connection_.Execute("select * from many");
  RowBlock block({.rows = 1000, .bytes = 200'000});
  std::size_t total = 0;
  while (rows.GetRows(block)) {
    EXPECT_LE(block.Rows(), 21U);
    total += block.Rows();
  }
  EXPECT_EQ(total, 3000U);
  EXPECT_EQ(block.Rows(), 0U);
  EXPECT_FALSE(rows.GetRows(block));
}

TEST_F(MySqlConnectionTest, AResultLeftEarlyIsNotReadToItsEnd) {
  const auto sent = [&] {
    return std::stoll(Server().Query("show global status like 'Bytes_sent'").substr(11));
  };
  const auto before = sent();
  {
    Recordset endless = connection_.Execute(
        fmt::format("select repeat('x', 10000) from {0} a, {0} b", test::Sequence(1, 10000)));
    EXPECT_FALSE(endless.AtEnd());
  }
  EXPECT_EQ(Ask("select 'goes on'"), "goes on");
  EXPECT_LT(sent() - before, 100'000'000);
}

TEST_F(MySqlConnectionTest, ClosingTheConnectionClosesItsRecordsets) {
  MakeRows(5000, 1000);
  Recordset stream = connection_.Execute("select * from many");
  EXPECT_FALSE(stream.AtEnd());
  connection_.Close();
  EXPECT_THROW(stream.MoveNext(), RunTimeError);
  EXPECT_EQ(FailureOf(connection_, [&] { Run("select 1"); }), (Failure{kObjectClosed, 0}));
}

TEST_F(MySqlConnectionTest, AKilledSessionIsAnErrorNotAHang) {
  MakeRows(20000, 1000);
  const std::string id = Ask("select connection_id()");
  Recordset stream = connection_.Execute("select * from many");
  EXPECT_FALSE(stream.AtEnd());
  Server().Query("kill " + id);
  const Failure in_stream = FailureOf(connection_, [&] {
    for (; !stream.AtEnd();) stream.MoveNext();
  });
  EXPECT_EQ(in_stream.number, hresult::kFail);
  EXPECT_NE(in_stream.native_error, 0);
  EXPECT_TRUE(stream.AtEnd()) << "a failed result has no more rows";
  stream.Close();

  // The connection does not log on again behind its user's back: session state would be lost.
  EXPECT_EQ(FailureOf(connection_, [&] { Run("select 1"); }).number, hresult::kFail);
}

TEST_F(MySqlConnectionTest, AKilledStatementLeavesTheSessionUsable) {
  MakeRows(20000, 1000);
  const std::string id = Ask("select connection_id()");
  Recordset stream = connection_.Execute("select * from many");
  EXPECT_FALSE(stream.AtEnd());
  Server().Query("kill query " + id);
  const Failure failure = FailureOf(connection_, [&] {
    for (; !stream.AtEnd();) stream.MoveNext();
  });
  EXPECT_EQ(failure.native_error, 1317);
  EXPECT_EQ(Ask("select connection_id()"), id);
}

TEST_F(MySqlConnectionTest, ReadsWhatProceduresAndUnpreparableStatementsReturn) {
  Run("create procedure two() begin select 1 as a; do 0; select 'x' as b, 2 as c; end");
  Recordset results = connection_.Execute("call two()");
  EXPECT_EQ(results.Field("a").Text(), "1");
  results.MoveNext();
  EXPECT_EQ(Ask("select 3"), "3");  // while another result waits
  ASSERT_TRUE(results.NextRecordset());
  EXPECT_EQ(results.Field("B").Text(), "x");
  EXPECT_FALSE(results.NextRecordset());
  results.Close();
  Run("create table t(id int)");
  EXPECT_EQ(connection_.Execute("insert into t values (1)").FieldCount(), 0U);
  // A statement about prepared statements can't be one itself.
  Run("prepare s from 'select id as one, null as none from t union select 2, 3'");
  Recordset texts = connection_.Execute("execute s");
  EXPECT_EQ(texts.FieldInfos().at(0).type, DataType::LongVarWChar);
  EXPECT_EQ(texts.Field("one").Text(), "1");
  EXPECT_TRUE(texts.Field("none").IsNull());
  texts.MoveNext();
  EXPECT_EQ(texts.Field("none").Text(), "3");
  texts.MoveNext();
  EXPECT_TRUE(texts.AtEnd());
  EXPECT_EQ(FailureOf(connection_, [&] { Run("execute absent"); }).native_error, 1243);
}

TEST_F(MySqlConnectionTest, AServerThatNeverAnswersIsGivenUp) {
  const test::Listener silent(test::AwaitClose);
  ConnectionSettings settings = Settings();
  settings.port = silent.Port();
  const Failure failure = LogOn(settings);  // ends by itself, or the test run's limit ends it
  EXPECT_EQ(failure.number, hresult::kFail);
}

TEST_F(MySqlConnectionTest, ReadsNoOptionFiles) {
  const test::TempFolder home;
  std::ofstream(home / ".my.cnf") << "[client]\nuser=nobody\nport=1\ninit-command=nonsense\n";
  const char* previous = std::getenv("HOME");
  const std::string kept = previous == nullptr ? "" : previous;
  setenv("HOME", home.Path().c_str(), 1);
  EXPECT_EQ(LogOn(Settings()), Failure{});
  setenv("HOME", kept.c_str(), 1);
}

}  // namespace
}  // namespace dorvane::ado
