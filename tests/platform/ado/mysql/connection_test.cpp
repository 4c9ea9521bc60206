#include <fstream>

#include "tests/platform/ado/mysql/fixture.h"
#include "tests/support/listener.h"
#include "tests/support/temp_folder.h"

namespace dorvane::ado {

namespace {

using MySqlConnectionTest = MySqlTest;

TEST_F(MySqlConnectionTest, SettingsCarryWhatTheStringCannot) {
  MySql().Query(
      "drop user if exists 'o;dd'@'127.0.0.1';"
      "create user 'o;dd'@'127.0.0.1' identified by 'se;Database=x;\\'`\"pw'");
  ConnectionSettings settings = settings_;
  settings.user_id = "o;dd";
  settings.password = "se;Database=x;'`\"pw";
  settings.database = "";
  EXPECT_EQ(LogOn(settings), Failure{});
}

TEST_F(MySqlConnectionTest, SessionModeKeepsValuesAndRefusesWhatDoesNotFit) {
  Run("set global sql_mode = 'ANSI,NO_BACKSLASH_ESCAPES,NO_ZERO_DATE'");
  Connection connection(InstalledProvider(kind_));
  connection.Open(settings_);
  Run("set global sql_mode = default");
  const std::string mode = Ask(connection, "select @@sql_mode");
  EXPECT_THAT(mode, testing::HasSubstr("NO_AUTO_VALUE_ON_ZERO"));
  EXPECT_THAT(mode, testing::HasSubstr("STRICT_TRANS_TABLES"));
  EXPECT_THAT(mode, testing::HasSubstr("NO_ZERO_DATE"));
  EXPECT_EQ(Ask(connection, "select \"a\\\\b\""), "a\\b");
  EXPECT_EQ(Ask(connection, "select @@character_set_client"), "utf8mb4");
}

TEST_F(MySqlConnectionTest, AKilledStatementIsAnErrorAndAKilledSessionIsGone) {
  const std::string id = Ask("select connection_id()");
  for (const std::string kill : {"kill query ", "kill "}) {
    Recordset stream =
        connection_.Execute("select repeat('x', 1000) from " + Numbers(100'000) + " s");
    EXPECT_FALSE(stream.AtEnd());
    MySql().Query(kill + id);
    const Failure failure = FailureOf(connection_, [&] {
      for (; !stream.AtEnd();) stream.MoveNext();
    });
    EXPECT_NE(failure.native_error, 0);
    EXPECT_TRUE(stream.AtEnd()) << "a failed result has no more rows";
    if (kill == "kill ") break;
    EXPECT_EQ(failure.native_error, 1317);
    EXPECT_EQ(Ask("select connection_id()"), id);
  }
  // The connection does not log on again behind its user's back: session state would be lost.
  EXPECT_EQ(FailureOfSql("select 1").number, hresult::kFail);
}

TEST_F(MySqlConnectionTest, ReadsWhatUnpreparableStatementsReturn) {
  Run("create table t(id int)");
  Run("insert into t values (1)");
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
  ConnectionSettings settings = settings_;
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
  EXPECT_EQ(LogOn(settings_), Failure{});
  setenv("HOME", kept.c_str(), 1);
}

}  // namespace
}  // namespace dorvane::ado
