// Tables side by side: what can only go wrong there. That the outcome is that of one table after
// the other is the odd shops' business.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/e2e/rig.h"
#include "tests/endpoint/recorders.h"
#include "tests/support/proxy.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kTables = 10;
constexpr int kRows = 3000;
constexpr int kManyRows = 10'000;
constexpr const char* kColumns = "(id int not null primary key, note varchar(200))";

/// Tables of one database on either server, the source's full.
class SideBySide : public testing::TestWithParam<ServerKind> {
 protected:
  SideBySide() : database_(Rig::Get().NewDatabases()) {
    Run("create table digits (d int not null)", true);
    Run("insert into digits values (0), (1), (2), (3), (4), (5), (6), (7), (8), (9)", true);
    for (int i = 1; i <= kTables; ++i) {
      tables_.push_back(fmt::format("t{}", i));
      Fill(tables_.back(), kRows);
    }
  }

  bool FromMsSql() const { return GetParam() == ServerKind::MsSql; }
  std::string Value(const std::string& query, bool of_source) const {
    return FromMsSql() == of_source ? Rig::Get().MsSqlValue(query, database_)
                                    : Rig::Get().MySqlValue(query, database_);
  }
  void Run(const std::string& sql, bool on_source) const {
    if (FromMsSql() == on_source) {
      Rig::Get().MsSql().Script(sql + "\ngo\n", database_);
    } else {
      Rig::Get().MySql().Query(sql, database_);
    }
  }
  /// A table of the source with the ids 1 to `rows`.
  void Fill(const std::string& table, int rows) const {
    Run(fmt::format("create table {} {}", table, kColumns), true);
    Run(fmt::format("insert into {} select 1 + a.d + 10 * b.d + 100 * c.d + 1000 * e.d, '{}' from "
                    "digits a, digits b, digits c, digits e where a.d + 10 * b.d + 100 * c.d + "
                    "1000 * e.d < {}",
                    table, std::string(150, 'x'), rows),
        true);
  }

  void Connect(IDatabase& endpoint, int port) const {
    const bool is_my_sql = endpoint.Kind() == ServerKind::MySql;
    endpoint.SetServer("127.0.0.1");
    endpoint.SetPortNo(port);
    endpoint.SetUserId(is_my_sql ? my_sql_user_ : "sa");
    endpoint.SetPassword("secret");
    endpoint.SetDbName(database_);
  }

  void Convert(std::int16_t mode = convert_mode::kOverwrite) {
    std::unique_ptr<IDatabase> ms_sql = std::make_unique<MsSqlDatabase>(host_);
    std::unique_ptr<IDatabase> my_sql = std::make_unique<MySqlDatabase>(host_);
    Connect(*ms_sql, ms_sql_.Port());
    Connect(*my_sql, my_sql_.Port());
    IDatabase& src = FromMsSql() ? *ms_sql : *my_sql;
    src.SetListener(&events_);
    src.SetOptions({.copy_table_content = true, .convert_mode = mode, .tables_at_once = 4});
    src.TransferToDest(FromMsSql() ? *my_sql : *ms_sql, tables_);
  }

  /// The tables that ended, in that order, each of which was told in one piece. Those that a stop
  /// found in hand have no end.
  NameList Ended() const {
    NameList ended;
    std::string in_hand;
    for (const std::string& event : events_.events) {
      const auto is = [&](std::string_view word) { return event.starts_with(word); };
      if (is("table ")) {
        in_hand = event.substr(6);
      } else if (is("content ")) {
        EXPECT_THAT(event, HasSubstr("content " + in_hand + " "));
      } else if (is("succeeded ")) {
        EXPECT_EQ(event, "succeeded " + in_hand);
        ended.push_back(std::exchange(in_hand, {}));
      }
    }
    return ended;
  }

  NameList IncompleteOf(const NameList& tables) const {
    NameList incomplete;
    for (const std::string& table : tables) {
      const std::string rows = Value("select count(*) from " + table, false);
      if (rows != Value("select count(*) from " + table, true)) incomplete.push_back(table);
    }
    return incomplete;
  }

  std::string database_;
  NameList tables_;
  std::string my_sql_user_ = "root";
  HostRecorder host_;
  EventRecorder events_;
  Proxy ms_sql_{Rig::Get().MsSql().Port(), ServerKind::MsSql};
  Proxy my_sql_{Rig::Get().MySql().Port(), ServerKind::MySql};
};

TEST_P(SideBySide, EachTableIsToldInOnePieceAndHowFarTheyAreMeanwhile) {
  std::size_t most_in_hand = 0;
  std::int64_t rows = 0;
  host_.on_progress = [&](const TablesInHand& tables) {
    most_in_hand = std::max(most_in_hand, tables.names.size());
    EXPECT_GE(tables.rows, rows);
    EXPECT_GE(tables.announced, tables.rows);
    rows = tables.rows;
  };
  Convert();
  EXPECT_THAT(Ended(), testing::UnorderedElementsAreArray(tables_));
  EXPECT_THAT(IncompleteOf(tables_), IsEmpty());
  EXPECT_THAT(events_.Errors(), IsEmpty());
  EXPECT_EQ(events_.Of(fmt::format("rows {}", kRows)).size(), tables_.size());
  EXPECT_GT(most_in_hand, 1U);
  EXPECT_GT(rows, 0);
}

TEST_P(SideBySide, ALostConnectionCostsOneTable) {
  // Of 10 * 3000 * 150 bytes.
  const Strike in_the_middle{.fault = Fault::Cut, .on_answers = true, .after = 2'000'000};
  (FromMsSql() ? ms_sql_ : my_sql_).Arm(in_the_middle);
  Convert();
  EXPECT_THAT(events_.Errors(), SizeIs(1));
  EXPECT_THAT(IncompleteOf(tables_), SizeIs(1));
  EXPECT_THAT(Ended(), SizeIs(kTables));
  EXPECT_EQ(events_.events.back(), "ended");
}

TEST_P(SideBySide, StopsWithTheBlocksInHand) {
  host_.on_progress = [&](const TablesInHand& tables) {
    if (tables.rows > 0) host_.polls_until_stop = 0;
  };
  Convert();
  const NameList ended = Ended();
  EXPECT_LT(ended.size(), tables_.size());
  EXPECT_THAT(IncompleteOf(ended), IsEmpty());
  EXPECT_THAT(events_.Errors(), IsEmpty());
  EXPECT_EQ(events_.events.back(), "ended");
}

TEST_P(SideBySide, ChildrenOfAMergeComeBehindTheirParents) {
  Fill("parent", kManyRows);
  Fill("child", 20);
  tables_.insert(tables_.begin(), {"parent", "child"});
  Run(fmt::format("create table parent {}", kColumns), false);
  Run(fmt::format("create table child {}", kColumns), false);
  Run("alter table child add foreign key (id) references parent (id)", false);
  Convert(convert_mode::kMerge);
  EXPECT_THAT(events_.Errors(), IsEmpty());
  EXPECT_THAT(host_.notes, IsEmpty());
  EXPECT_THAT(IncompleteOf(tables_), IsEmpty());
}

TEST_P(SideBySide, FewerWhereAServerGivesNoMoreConnections) {
  if (!FromMsSql()) GTEST_SKIP() << "a source needs two for each table";
  Rig::Get().MySql().Query(
      "create user if not exists few identified by 'secret' with max_user_connections 3; "
      "grant all on *.* to few");
  my_sql_user_ = "few";
  Convert();
  EXPECT_THAT(host_.notes, testing::ElementsAre(HasSubstr("Tables at once: 3 instead of 4, since "
                                                          "no further connection could be "
                                                          "opened: ")));
  EXPECT_THAT(events_.Errors(), IsEmpty());
  EXPECT_THAT(IncompleteOf(tables_), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, SideBySide, testing::Values(ServerKind::MsSql, ServerKind::MySql),
                         [](const auto& kind) {
                           return kind.param == ServerKind::MsSql ? "FromMsSql" : "FromMySql";
                         });

}  // namespace
}  // namespace dorvane::test
