#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "platform/ado/types.h"
#include "tests/platform/ado/odbc/server_fixture.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ServerTest, TellsFailedLogonsApart) {
  const auto failure = [](ConnectionSettings settings) {
    try {
      OdbcProvider().Connect(settings);
    } catch (const ProviderError& error) {
      return error.Entries().at(1).native_error;
    }
    return 0;
  };
  ConnectionSettings settings = Settings();
  settings.password = "wrong";
  EXPECT_EQ(failure(settings), 18456);
  settings = Settings();
  settings.database = "nowhere";
  EXPECT_EQ(failure(settings), 4060);
  settings = Settings();
  settings.user_id.clear();
  EXPECT_EQ(failure(settings), 18456);
}

TEST_F(ServerTest, FindsTheServerByAnyFormOfItsName) {
  for (const std::string name : {"127.0.0.1,", "tcp:127.0.0.1,", "(local),", "127.0.0.1\\any,"}) {
    ConnectionSettings settings = Settings();
    settings.server = name + std::to_string(settings.port);
    settings.port = 0;
    EXPECT_NO_THROW(OdbcProvider().Connect(settings)) << name;
  }
}

TEST_F(ServerTest, FailuresHaveTheirNumbersAndTexts) {
  Run("create table fails (id int not null primary key, small tinyint null, word varchar(3) null)");
  Run("insert into fails (id) values (1)");
  struct {
    std::string sql;
    std::int32_t native;
    std::int32_t number;
  } const cases[] = {
      {"insert into fails (id) values (1)", 2627, hresult::kIntegrityViolation},
      {"insert into fails (id) values (null)", 515, hresult::kIntegrityViolation},
      {"select * from no_such_table", 208, hresult::kErrorsInCommand},
      {"create table fails (id int)", 2714, hresult::kErrorsInCommand},
      {"selekt", 0, hresult::kErrorsInCommand},
      {"insert into fails (id, small) values (2, 256)", 220, hresult::kErrorsOccurred},
      {"insert into fails (id, word) values (2, 'long')", 0, hresult::kDataOverflow},
  };
  for (const auto& c : cases) {
    const ProviderError error = Failure(c.sql);
    EXPECT_EQ(error.Number(), c.number) << c.sql;
    EXPECT_EQ(error.Entries()[0].number, c.number) << c.sql;
    const std::int32_t native = error.Entries()[0].native_error;
    EXPECT_TRUE(c.native == 0 || native == c.native) << c.sql << native;
    EXPECT_EQ(error.Description(), error.Entries()[0].description);
    EXPECT_EQ(error.Description().find("[FreeTDS]"), std::string::npos);
  }
  EXPECT_FALSE(session_->IsStreaming());
  EXPECT_EQ(Rows("select count(*) from fails"), Rows("select 1"));
}

TEST_F(ServerTest, ABatchIsCarriedOutWholeWhenItReturns) {
  Run("create table batch (id int not null primary key)");
  Run("insert into batch values (1); update batch set id = 5 where id = 99; "
      "insert into batch values (2); insert into batch values (3)");
  EXPECT_THAT(Rows("select id from batch order by id"),
              ElementsAre(ElementsAre("1"), ElementsAre("2"), ElementsAre("3")));
  // Behind other statements a failure is found all the same.
  EXPECT_EQ(Failure("insert into batch values (4); insert into batch values (1)")
                .Entries()[0]
                .native_error,
            2627);
}

TEST_F(ServerTest, StepsThroughSeveralResults) {
  Run("create table steps (id int not null)");
  const auto reader = session_->Execute(
      "insert into steps values (1); select 1 as a; insert into steps values (2); "
      "select 'x' as b, 'y' as c; select id from steps where id > 10");
  EXPECT_EQ(reader->Fields().at(0).name, "a");
  EXPECT_THAT(Rest(*reader), ElementsAre(ElementsAre("1")));
  EXPECT_TRUE(session_->IsStreaming());
  ASSERT_TRUE(reader->NextResult());
  EXPECT_EQ(reader->Fields().size(), 2U);
  ASSERT_TRUE(reader->NextResult());  // past rows that were not read
  EXPECT_THAT(Rest(*reader), IsEmpty());
  EXPECT_FALSE(session_->IsStreaming());
  EXPECT_FALSE(reader->NextResult());
}

TEST_F(ServerTest, AFailureBehindRowsComesAfterThem) {
  Run("create table behind (id int not null primary key)");
  Run("insert into behind values (1)");
  const auto reader = session_->Execute("select id from behind; insert into behind values (1)");
  RowBlock block;
  ASSERT_TRUE(reader->Read(block));
  EXPECT_EQ(block.Rows(), 1U);
  EXPECT_THROW(reader->Read(block), ProviderError);
  EXPECT_FALSE(session_->IsStreaming());
  const auto other = session_->Execute("select id from behind; insert into behind values (1)");
  ASSERT_TRUE(other->Read(block));
  EXPECT_THROW(other->NextResult(), ProviderError);
}

TEST_F(ServerTest, AFailureAmongRowsIsNotLost) {
  Run("create table among (id int not null primary key)");
  Run("insert into among values (1), (2), (3)");
  const auto reader = session_->Execute("select id, 6 / (3 - id) from among order by id");
  RowBlock block;
  EXPECT_THROW(while (reader->Read(block)) EXPECT_LT(block.Rows(), 3U), ProviderError);
}

class ManyRows : public ServerTest {
 protected:
  static constexpr int kRows = 20000;

  void SetUp() override {
    Run("create table many (id int not null primary key, word varchar(20) null)");
    for (int i = 0; i < kRows; i += 1000) {
      std::string sql = "insert into many values ";
      for (int k = i; k < i + 1000; ++k) {
        sql += (k == i ? "(" : ",(") + std::to_string(k) + ",'w" + std::to_string(k) + "')";
      }
      Run(sql);
    }
  }
  void TearDown() override { Run("drop table many"); }
};

TEST_F(ManyRows, ComeInOrderWhateverTheBlockTakes) {
  for (const BlockLimits limits : {BlockLimits{}, BlockLimits{1, 1 << 20},
                                   BlockLimits{777, 1 << 20}, BlockLimits{5000, 100}}) {
    const auto reader = session_->Execute("select id, word from many order by id");
    const auto rows = Rest(*reader, limits);
    ASSERT_EQ(rows.size(), std::size_t{kRows});
    for (int i = 0; i < kRows; i += 1111) {
      EXPECT_THAT(rows[i], ElementsAre(std::to_string(i), "w" + std::to_string(i)));
    }
  }
}

TEST_F(ManyRows, ABlockKeepsItsLimits) {
  const auto reader = session_->Execute("select id, word from many order by id");
  RowBlock block(BlockLimits{300, 1 << 20});
  ASSERT_TRUE(reader->Read(block));
  EXPECT_EQ(block.Rows(), 300U);
  EXPECT_TRUE(session_->IsStreaming());
}

TEST_F(ManyRows, LeftEarlyFreeTheSessionAtOnce) {
  auto reader = session_->Execute("select a.id, b.word from many a cross join many b");
  RowBlock block;
  ASSERT_TRUE(reader->Read(block));
  const auto start = std::chrono::steady_clock::now();
  reader.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  EXPECT_FALSE(session_->IsStreaming());
  EXPECT_THAT(Rows("select count(*) from many"), ElementsAre(ElementsAre(std::to_string(kRows))));
}

TEST_F(ServerTest, ASmallResultFreesTheSessionWithItsFirstBlock) {
  const auto reader = session_->Execute("select 1 as n");
  EXPECT_TRUE(session_->IsStreaming());
  RowBlock block;
  ASSERT_TRUE(reader->Read(block));
  EXPECT_FALSE(session_->IsStreaming());
  EXPECT_EQ(std::get<std::int64_t>(block.Row(0)[0]), 1);
}

TEST_F(ServerTest, AReaderMayOutliveItsSession) {
  auto reader = session_->Execute("select 1 as n");
  session_.reset();
  EXPECT_THAT(Rest(*reader), ElementsAre(ElementsAre("1")));
}

TEST_F(ServerTest, TransactionsAreKeptOrTakenBack) {
  Run("create table kept (id int not null primary key)");
  session_->BeginTransaction();
  Run("insert into kept values (1)");
  session_->Rollback();
  session_->BeginTransaction();
  Run("insert into kept values (2)");
  session_->Commit();
  EXPECT_THAT(Rows("select id from kept"), ElementsAre(ElementsAre("2")));
  EXPECT_NO_THROW(session_->Rollback());  // when the server has ended the transaction itself
}

TEST(ServerLoss, FailsStatementsButNotTheRollback) {
  test::SandboxServer server({"shop"});
  ConnectionSettings settings;
  settings.server = "127.0.0.1";
  settings.port = server.Port();
  settings.user_id = "sa";
  settings.password = server.Password();
  const auto session = OdbcProvider().Connect(settings);
  session->BeginTransaction();
  server.Kill();
  EXPECT_NO_THROW(session->Rollback());
  EXPECT_THROW(session->Execute("select 1"), ProviderError);
  EXPECT_FALSE(session->IsStreaming());
}

TEST_F(ServerTest, QuestionMarksAndBracesAreNoSyntax) {
  EXPECT_THAT(Rows("select '?' as a, '{d x}' as b, N'{call ?}' as c -- ? {"),
              ElementsAre(ElementsAre("?", "{d x}", "{call ?}")));
}

TEST_F(ServerTest, HasNoTableWriter) {
  EXPECT_THROW(session_->OpenWriter("[t]", {"id"}), ProviderError);
}

}  // namespace
}  // namespace dorvane::ado
