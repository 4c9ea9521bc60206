#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "sandbox/storage/sqlite.h"
#include "tests/sandbox/sql/batch.h"

namespace sandbox::testing {

namespace {

// Calls back for every row, so that something else can happen while a result streams.
class Callback final : public ResultSink {
 public:
  explicit Callback(std::function<void(int)> on_row) : on_row_(std::move(on_row)) {}
  void Columns(const std::vector<ColumnInfo>&) override {}
  void Row(std::span<const Value>) override { on_row_(++rows); }
  void Done(std::optional<std::int64_t>) override { ++done; }
  void Message(const ServerMessage& message) override { texts += message.text; }
  void DatabaseChanged(std::string_view) override {}
  void TransactionChanged(std::uint64_t, bool) override {}
  void ReturnStatus(std::int32_t) override {}
  int rows = 0;
  int done = 0;
  std::string texts;

 private:
  std::function<void(int)> on_row_;
};

class SessionsTest : public BatchTest {
 protected:
  SessionsTest() {
    Must(
        "create table t (id int primary key, v varchar(10)); insert t values (1,'a'), (2,'b'), "
        "(3,'c')");
  }
};

TEST_F(SessionsTest, OneStreamsWhileAnotherWrites) {
  auto other = NewSession();
  Callback sink([&](int row) {
    if (row != 1) return;
    EXPECT_EQ(
        Run(*other, "insert t values (4, 'd') create table made (x int) insert made values (1)")
            .Numbers(),
        "");
  });
  session->Execute("insert t values (9, 'z') select * from t order by id", sink);
  EXPECT_EQ(sink.rows, 4) << "a result is what was there when it began";
  EXPECT_EQ(Query("select count(*) from t"), "5");
  EXPECT_EQ(Query("select x from made"), "1");
}

TEST_F(SessionsTest, WhatIsNotCommittedIsNotSeen) {
  auto other = NewSession();
  Must("begin tran insert t values (4, 'd')");
  EXPECT_EQ(Run(*other, "select count(*) from t").Rows(), "3");
  std::atomic<bool> done{false};
  std::thread writer([&] {
    EXPECT_EQ(Run(*other, "insert t values (4, 'other')").Numbers(), "2627 3621");
    done = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(done) << "a second writer waits for the first";
  Must("commit");
  writer.join();
  EXPECT_EQ(Run(*other, "select v from t where id = 4").Rows(), "d");
}

TEST_F(SessionsTest, SessionsInsertSideBySide) {
  Must("create table n (id int identity primary key, who int)");
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int who = 0; who < 4; ++who) {
    threads.emplace_back([&, who] {
      auto mine = NewSession();
      for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(Run(*mine, "insert n (who) values (" + std::to_string(who) + ")").Numbers(), "");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Query("select count(*), count(distinct id), min(id), max(id) from n"), "200|200|1|200");
}

TEST_F(SessionsTest, CancelEndsWhatRuns) {
  Must("create table big (n int); insert big values (1),(2),(3),(4),(5),(6),(7),(8),(9),(10)");
  std::thread canceller([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    session->cancel = true;
  });
  const Answer answer =
      Run("select count(*) from big a, big b, big c, big d, big e, big f, big g, big h, big i, big "
          "j, big k");
  canceller.join();
  EXPECT_TRUE(answer.messages.empty()) << answer.FirstText();
  session->cancel = false;
  EXPECT_EQ(Query("select count(*) from t"), "3");
}

// Two sessions make the same table: the second one waits, and finds it there.
TEST_F(SessionsTest, MakeTheSameTable) {
  const auto other = NewSession();
  Must("begin tran; create table made (a int)");
  EXPECT_EQ(Run(*other, "select * from made").Numbers(), "208");
  Answer second;
  std::thread waiting([&] { other->Execute("create table made (b int)", second); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  Must("commit");
  waiting.join();
  EXPECT_EQ(second.Numbers(), "2714");
  EXPECT_EQ(Run(*other, "select a from made").Numbers(), "");
}

TEST_F(SessionsTest, LoginsOutliveTheServer) {
  Must("create login clerk with password = 'pw'");
  Reopen();
  EXPECT_TRUE(engine->MayLogIn("Clerk", "pw"));
  EXPECT_FALSE(engine->MayLogIn("clerk", "PW"));
}

TEST_F(SessionsTest, AFolderOfAnotherVersionIsNotOpened) {
  session.reset();
  engine.reset();
  SqliteConnection(folder / "server.db", false).Execute("PRAGMA user_version=2");
  EXPECT_THROW(OpenEngine(folder, false), std::runtime_error);
}

}  // namespace
}  // namespace sandbox::testing
