// Statements, results, transactions and their failures, on either server.
#include <chrono>
#include <functional>
#include <memory>

#include "tests/platform/ado/server_test.h"
#include "tests/support/proxy.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;

class ConnectionTest : public BothServers {
 protected:
  static constexpr int kRows = 20'000;

  /// A table of kRows rows, far more than the buffers between server and client take.
  void MakeRows() {
    Run("create table many(id int not null primary key, note varchar(400) null)");
    Run(fmt::format("insert into many select s.seq, {}('x', 400) from {} s",
                    Either("repeat", "replicate"), Numbers(kRows)));
  }
  std::string SessionId() { return Ask(Either("select connection_id()", "select @@spid")); }
  /// Reads a stream of MakeRows to its end.
  static void ExpectAllRows(Recordset& stream) {
    int next = 1;
    for (; !stream.AtEnd(); stream.MoveNext()) {
      ASSERT_EQ(stream.Field(0).Text(), std::to_string(next++));
    }
    EXPECT_EQ(next, kRows + 1);
  }
};

INSTANTIATE_TEST_SUITE_P(, ConnectionTest, kBothServers, NameOfKind);

TEST_P(ConnectionTest, TellsWhyALogonFailed) {
  const auto with = [this](void (*change)(ConnectionSettings&)) {
    ConnectionSettings settings = settings_;
    change(settings);
    return LogOn(settings);
  };
  using S = ConnectionSettings;
  const Failure not_found{hresult::kFail, Either(2003, 17)};
  EXPECT_EQ(with([](S&) {}), Failure{});
  EXPECT_EQ(with([](S& s) { s.server = "localhost"; }), Failure{});
  EXPECT_EQ(with([](S& s) { s.password = "wrong"; }),
            (Failure{hresult::kFail, Either(1045, 18456)}));
  EXPECT_EQ(with([](S& s) { s.database = "absent"; }),
            (Failure{hresult::kFail, Either(1049, 4060)}));
  EXPECT_EQ(with([](S& s) { s.server = "no-such-host.invalid"; }), not_found);
  EXPECT_EQ(with([](S& s) { s.port = test::FreePort(); }), not_found);
  EXPECT_EQ(with([](S& s) {
              s.server = "localhost";  // a port is meant there too
              s.port = test::FreePort();
            }),
            not_found);
}

TEST_P(ConnectionTest, ARefusedLogonLeavesItClosed) {
  connection_.Close();
  ConnectionSettings wrong = settings_;
  wrong.password = "wrong";
  EXPECT_NE(FailureOf(connection_, [&] { connection_.Open(wrong); }), Failure{});
  EXPECT_EQ(connection_.State(), ObjectState::Closed);
  EXPECT_EQ(FailureOfSql("select 1"), (Failure{kObjectClosed, 0})) << "not the refused logon";
  connection_.Open(settings_);
  EXPECT_EQ(FailureOf(connection_, [&] { connection_.Open(settings_); }),
            (Failure{kObjectOpen, 0}));
}

/// A refused statement and what its failure is on MySQL and on SQL Server; a server's number 0 is
/// any.
struct Refusal {
  const char* sql;
  Failure on_mysql, on_mssql;
};

TEST_P(ConnectionTest, RefusedStatementsHaveTheirClassAndTheServersNumber) {
  using namespace hresult;
  RunAll({"create table parent(id int not null primary key, t tinyint null, w varchar(3) null)",
          "create table child(id int, constraint fk foreign key (id) references parent(id))",
          "insert into parent(id) values (1)"});
  const bool is_mariadb = IsMySql() && MySql().IsMariaDb();
  const Refusal refusals[] = {
      {"selec 1", {kErrorsInCommand, 1064}, {kErrorsInCommand, 0}},
      {"select * from absent", {kErrorsInCommand, 1146}, {kErrorsInCommand, 208}},
      {"create table parent(id int)", {kErrorsInCommand, 1050}, {kErrorsInCommand, 2714}},
      {"insert into parent(id) values (1)", {kErrorsInCommand, 1062}, {kIntegrityViolation, 2627}},
      {"insert into parent(id) values (null)",
       {kErrorsInCommand, 1048},
       {kIntegrityViolation, 515}},
      {"insert into child values (2)", {kErrorsInCommand, 1452}, {kIntegrityViolation, 547}},
      {"insert into parent(id, t) values (2, 256)",
       {kErrorsOccurred, 1264},
       {kErrorsOccurred, 220}},
      {"insert into parent(id, w) values (2, 'long')", {kErrorsOccurred, 1406}, {kDataOverflow, 0}},
      {"alter table child add constraint fa foreign key (id) references absent(id)",
       {kFail, is_mariadb ? 1005 : 1824},
       {kErrorsInCommand, 1767}},
  };
  for (const Refusal& each : refusals) {
    const Failure expected = IsMySql() ? each.on_mysql : each.on_mssql;
    const Failure seen = FailureOfSql(each.sql);
    EXPECT_EQ(seen.number, expected.number) << each.sql;
    EXPECT_TRUE(expected.native_error == 0 || seen == expected) << each.sql << ": " << seen;
    EXPECT_FALSE(connection_.Errors()[0].description.starts_with("[")) << "names no library";
  }
  const char* reason = is_mariadb ? "errno: 150" : "'absent'";
  EXPECT_THAT(connection_.Errors()[0].description, testing::HasSubstr(reason));
  EXPECT_EQ(FailureOfSql("insert into child values (1)"), Failure{});
  EXPECT_TRUE(connection_.Errors().empty());
  EXPECT_EQ(Ask("select count(*) from parent"), "1");
}

TEST_P(ConnectionTest, AFailureAmongRowsIsNotLost) {
  RunAll({"create table among(id int not null primary key)",
          "insert into among values (1), (2), (3)"});
  Recordset rows = connection_.Execute(
      Either("select if(id < 3, id, (select a.id from among a)) from among order by id",
             "select 6 / (3 - id) from among order by id"));
  const Failure failure = FailureOf(connection_, [&] {
    for (; !rows.AtEnd();) rows.MoveNext();
  });
  EXPECT_EQ(failure.native_error, Either(1242, 8134));
  EXPECT_TRUE(rows.AtEnd()) << "a failed result has no more rows";
  EXPECT_EQ(Ask("select count(*) from among"), "3");
}

TEST_P(ConnectionTest, AStatementWhileStreamingRunsOnOneFurtherSession) {
  test::Proxy proxy(settings_.port, GetParam());
  if (IsMySql()) {
    RunAll({"create user 'two'@'127.0.0.1' identified by 'secret' with max_user_connections 2",
            "grant all on *.* to 'two'@'127.0.0.1'"});
    settings_.user_id = "two";
  } else {
    settings_.port = proxy.Port();
  }
  connection_.Close();
  connection_.Open(settings_);
  MakeRows();
  Recordset stream = connection_.Execute("select id, note from many order by id");
  EXPECT_FALSE(stream.AtEnd());
  const std::string further = SessionId();
  EXPECT_EQ(SessionId(), further) << "it was kept";
  // One that can't be opened fails that statement, not the stream.
  Recordset second = connection_.Execute("select id, note from many order by id");
  EXPECT_FALSE(second.AtEnd());
  proxy.Arm({});
  EXPECT_EQ(FailureOfSql("select 1").number, hresult::kFail);
  ExpectAllRows(stream);
  EXPECT_NE(SessionId(), further) << "the first session is idle again";
  ExpectAllRows(second);
}

TEST_P(ConnectionTest, ASmallResultFreesItsSessionWithItsFirstBlock) {
  const std::string id = SessionId();
  Recordset rows = connection_.Execute("select '?' as a, '{d x}' as b, 1 as n -- ? {");
  EXPECT_EQ(rows.Field("A").Text() + rows.Field("b").Text(), "?{d x}");
  EXPECT_EQ(SessionId(), id);
  EXPECT_EQ(rows.Field("n").Text(), "1");
}

TEST_P(ConnectionTest, BlocksKeepTheirLimits) {
  MakeRows();
  struct {
    BlockLimits limits;
    std::size_t rows;  // that a block then has at most
  } const cases[] = {{{.rows = 777, .bytes = 1 << 20}, 777}, {{.rows = 5000, .bytes = 8'000}, 21}};
  for (const auto& [limits, at_most] : cases) {
    Recordset rows = connection_.Execute("select id, note from many order by id");
    RowBlock block(limits);
    int next = 1;
    while (rows.GetRows(block)) {
      ASSERT_LE(block.Rows(), at_most);
      for (std::size_t i = 0; i < block.Rows(); ++i) {
        ASSERT_EQ(std::get<std::int64_t>(block.Row(i)[0]), next++);
      }
    }
    EXPECT_EQ(next, kRows + 1);
    EXPECT_EQ(block.Rows(), 0U);
    EXPECT_FALSE(rows.GetRows(block));
  }
}

TEST_P(ConnectionTest, AResultLeftEarlyIsNotReadToItsEnd) {
  MakeRows();
  const auto start = std::chrono::steady_clock::now();
  {
    const Recordset endless =
        connection_.Execute("select a.id, b.note from many a cross join many b");
    EXPECT_FALSE(endless.AtEnd());
  }
  EXPECT_EQ(Ask("select 'goes on'"), "goes on");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_P(ConnectionTest, StepsThroughResults) {
  if (IsMySql()) {
    Run("create procedure steps() begin select 1 as a; do 0; select 'x' as b, 'y' as c; end");
  }
  Recordset rows = connection_.Execute(
      Either("call steps()", "select 1 as a; declare @n int; select 'x' as b, 'y' as c"));
  EXPECT_EQ(rows.Field("a").Text(), "1");
  rows.MoveNext();
  EXPECT_EQ(FailureOf(connection_, [&] { rows.MoveNext(); }).number, kNoCurrentRecord);
  EXPECT_EQ(FailureOf(connection_, [&] { rows.Field(0).Text(); }).number, kNoCurrentRecord);
  EXPECT_EQ(Ask("select 3"), "3") << "while another result waits";
  ASSERT_TRUE(rows.NextRecordset());
  EXPECT_EQ(rows.FieldCount(), 2U);
  EXPECT_EQ(rows.Field("B").Text(), "x");
  EXPECT_EQ(FailureOf(connection_, [&] { rows.Field("a"); }).number, kItemNotFound);
  EXPECT_FALSE(rows.NextRecordset());
  EXPECT_EQ(rows.FieldCount(), 0U);
  EXPECT_TRUE(rows.AtEnd());
}

TEST_P(ConnectionTest, RowsAndStatementsAreKeptOrTakenBackTogether) {
  Run("create table kept(id int not null primary key)");
  RowBlock block;
  block.Clear(1);
  block.AppendRow()[0] = Either(Value(std::string_view("1")), Value(std::int64_t{1}));
  {
    // Whatever session the rows of another table went over.
    const Recordset stream = connection_.Execute("select 1");
    const Recordset other = connection_.OpenTable("kept", {"id"});
  }
  const auto fill = [&] {
    Recordset table = connection_.OpenTable("kept", {"id"});
    connection_.BeginTrans();
    table.InsertRows(block, 0, 1);
    Run("insert into kept values (2)");
  };
  fill();
  connection_.RollbackTrans();
  EXPECT_EQ(Ask("select count(*) from kept"), "0");
  fill();
  connection_.CommitTrans();
  EXPECT_EQ(Ask("select count(*) from kept"), "2");
}

TEST_P(ConnectionTest, RecordsetsEndWithTheirConnection) {
  MakeRows();
  Recordset rows = connection_.Execute("select id, note from many order by id");
  Recordset table = connection_.OpenTable("many", {"id", "note"});
  Recordset moved = std::move(rows);
  EXPECT_EQ(moved.Field("id").Text(), "1");
  connection_.Close();
  const std::function<void()> operations[] = {[&] { moved.MoveNext(); }, [&] { rows.AtEnd(); },
                                              [&] { table.AddNew(); }, [&] { Run("select 1"); }};
  for (const auto& operation : operations) {
    EXPECT_EQ(FailureOf(connection_, operation), (Failure{kObjectClosed, 0}));
  }
}

TEST_P(ConnectionTest, ALostServerFailsStatementsButNotTheRollback) {
  const auto mysql = IsMySql() ? std::make_unique<test::PrivateMySql>() : nullptr;
  const auto mssql =
      IsMySql() ? nullptr : std::make_unique<test::SandboxServer>(std::vector<std::string>{"shop"});
  connection_.Close();
  settings_.port = IsMySql() ? mysql->Port() : mssql->Port();
  settings_.database = "";
  connection_.Open(settings_);
  connection_.BeginTrans();
  IsMySql() ? mysql->Kill() : mssql->Kill();
  EXPECT_EQ(FailureOf(connection_, [&] { connection_.RollbackTrans(); }), Failure{});
  EXPECT_EQ(FailureOfSql("select 1").number, hresult::kFail);
  EXPECT_FALSE(connection_.IsAlive());
}

}  // namespace
}  // namespace dorvane::ado
