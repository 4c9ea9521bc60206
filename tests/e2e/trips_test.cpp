// How often the program goes to either server and back, which is what a distant one costs.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <list>
#include <thread>

#include "tests/e2e/rig.h"
#include "tests/support/listener.h"
#include "tests/support/relay.h"

namespace dorvane::test {

namespace {

constexpr int kFewTables = 4;
constexpr int kManyTables = 24;

/// A port that leads to another one and counts what is asked over it: bytes from the client behind
/// bytes from the server.
class TripCounter {
 public:
  explicit TripCounter(int server_port) : server_port_(server_port) {}

  int Port() const { return listener_.Port(); }
  int Trips() const { return trips_; }

 private:
  void Serve(int client) {
    bool is_asking = false;
    const auto asked = [&](std::string&) {
      if (!is_asking) ++trips_;
      is_asking = true;
    };
    Relay(client, server_port_, asked, [&](std::string&) { is_asking = false; });
    close(client);
  }

  const int server_port_;
  std::atomic<int> trips_ = 0;
  std::list<std::jthread> sessions_;
  Listener listener_{[this](int socket) {
    sessions_.emplace_back([this, client = dup(socket)] { Serve(client); });
  }};
};

struct Trips {
  int ms_sql = 0;
  int my_sql = 0;
};

class TripsTest : public testing::TestWithParam<ServerKind> {
 protected:
  TripsTest() : database_(Rig::Get().NewDatabases()) {
    std::string ms_sql;
    std::string my_sql;
    for (int i = 1; i <= kManyTables; ++i) {
      ms_sql += fmt::format(
          "create table t{0}(id int identity primary key, name varchar(50) not null, n int null)\n"
          "go\ncreate index i{0} on t{0}(name)\ngo\ninsert into t{0}(name) values ('a'), ('b')\n"
          "go\n",
          i);
      my_sql += fmt::format(
          "create table t{0}(id int auto_increment primary key, name varchar(50) not null, n int, "
          "key i{0}(name)); insert into t{0}(name) values ('a'), ('b');",
          i);
    }
    if (GetParam() == ServerKind::MsSql) Rig::Get().MsSql().Script(ms_sql, database_);
    if (GetParam() == ServerKind::MySql) Rig::Get().MySql().Query(my_sql, database_);
  }

  Trips Convert(int tables) const {
    const TripCounter ms_sql(Rig::Get().MsSql().Port());
    const TripCounter my_sql(Rig::Get().MySql().Port());
    Job job{.source = GetParam(),
            .source_db = database_,
            .dest_db = database_,
            .tables = {},
            .ms_sql_port = ms_sql.Port(),
            .my_sql_port = my_sql.Port()};
    for (int i = 1; i <= tables; ++i) job.tables.push_back(fmt::format("t{}", i));
    ProgramRun run(job);
    EXPECT_EQ(run.Wait(), 0) << run.Log();
    return {ms_sql.Trips(), my_sql.Trips()};
  }

  std::string database_;
};

TEST_P(TripsTest, ATableCostsFew) {
  constexpr int kMost = 8;         // of a table
  constexpr int kReadingRows = 3;  // described, sent, read
  constexpr int kStoringRows = 4;  // a transaction around a prepared statement
  const Trips few = Convert(kFewTables);
  const Trips many = Convert(kManyTables);
  constexpr int kTables = kManyTables - kFewTables;
  const bool from_ms_sql = GetParam() == ServerKind::MsSql;
  const int rows_of_ms_sql = from_ms_sql ? kReadingRows : kStoringRows;
  const int rows_of_my_sql = from_ms_sql ? kStoringRows : kReadingRows;
  EXPECT_LE(many.ms_sql - few.ms_sql, kTables * (kMost + rows_of_ms_sql));
  EXPECT_LE(many.my_sql - few.my_sql, kTables * (kMost + rows_of_my_sql));
}

INSTANTIATE_TEST_SUITE_P(, TripsTest, testing::Values(ServerKind::MsSql, ServerKind::MySql),
                         [](const auto& kind) {
                           return kind.param == ServerKind::MsSql ? "FromMsSql" : "FromMySql";
                         });

}  // namespace
}  // namespace dorvane::test
