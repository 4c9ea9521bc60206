// What SQL Server has of its own: the forms of its name, and batches.
#include "tests/platform/ado/odbc/server_fixture.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;

TEST_F(MsSqlTest, FindsTheServerByAnyFormOfItsName) {
  for (const std::string name : {"127.0.0.1,", "tcp:127.0.0.1,", "(local),", "127.0.0.1\\any,"}) {
    ConnectionSettings settings = settings_;
    settings.server = name + std::to_string(settings.port);
    settings.port = 0;
    EXPECT_EQ(LogOn(settings), Failure{}) << name;
  }
  settings_.user_id.clear();
  EXPECT_EQ(LogOn(settings_), (Failure{hresult::kFail, 18456})) << "no trusted connection";
}

TEST_F(MsSqlTest, LogsOnWithWhatLooksLikeSyntax) {
  for (const std::string value :
       {"a;b", "a}b", "a;b}c", "x}", "{x}", "{;}", "a=b", "it's \"x\"", " edge ", "ä€😀;"}) {
    std::string literal = value;
    if (const auto quote = literal.find('\''); quote != literal.npos) literal.insert(quote, "'");
    ConnectionSettings settings = settings_;
    settings.user_id = "u" + value;
    settings.password = value;
    settings.database = "d" + value;
    Run(fmt::format("create login [u{}] with password = N'{}'", value, literal));
    Run(fmt::format("create database [d{}]", value));
    EXPECT_EQ(LogOn(settings), Failure{}) << value;
    settings.password += " ";
    EXPECT_EQ(LogOn(settings), (Failure{hresult::kFail, 18456})) << value;
  }
}

TEST_F(MsSqlTest, ABatchIsCarriedOutWholeWhenItReturns) {
  Run("create table batch (id int not null primary key)");
  Run("insert into batch values (1); update batch set id = 5 where id = 99; "
      "insert into batch values (2); insert into batch values (3)");
  EXPECT_THAT(RowsOf("select id from batch order by id"),
              ElementsAre(ElementsAre("1"), ElementsAre("2"), ElementsAre("3")));
  // Behind other statements a failure is found all the same.
  EXPECT_EQ(FailureOfSql("insert into batch values (4); insert into batch values (1)").native_error,
            2627);
}

TEST_F(MsSqlTest, StepsPastRowsThatWereNotReadAndResultsWithoutAny) {
  Run("create table steps (id int not null)");
  Recordset rows = connection_.Execute(
      "insert into steps values (1); select 1 as a; insert into steps values (2); "
      "select 'x' as b, 'y' as c; select id from steps where id > 10");
  ASSERT_TRUE(rows.NextRecordset());
  EXPECT_EQ(rows.Field("b").Text(), "x");
  ASSERT_TRUE(rows.NextRecordset());
  EXPECT_TRUE(rows.AtEnd());
  EXPECT_FALSE(rows.NextRecordset());
}

TEST_F(MsSqlTest, AFailureBehindRowsComesAfterThem) {
  Run("create table behind (id int not null primary key)");
  Run("insert into behind values (1)");
  const auto batch = [&] {
    return connection_.Execute("select id from behind; insert into behind values (1)");
  };
  Recordset rows = batch();
  EXPECT_EQ(rows.Field("id").Text(), "1");
  EXPECT_THROW(rows.MoveNext(), RunTimeError);
  Recordset other = batch();
  EXPECT_EQ(other.Field("id").Text(), "1");
  EXPECT_THROW(other.NextRecordset(), RunTimeError);
}

TEST_F(MsSqlTest, AReaderMayOutliveItsSession) {
  const auto reader = session_->Execute("select 1 as n");
  session_.reset();
  RowBlock block;
  ASSERT_TRUE(reader->Read(block));
  EXPECT_EQ(std::get<std::int64_t>(block.Row(0)[0]), 1);
}

}  // namespace
}  // namespace dorvane::ado
