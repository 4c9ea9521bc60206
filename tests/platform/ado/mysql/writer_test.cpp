#include <array>
#include <vector>

#include "tests/platform/ado/mysql/fixture.h"

namespace dorvane::ado {

namespace {

using namespace std::string_literals;
using mysql::RowTransport;

/// Adds a row of two columns.
void Add(RowBlock& block, const Value& first, const Value& second) {
  const std::span<Value> row = block.AppendRow();
  row[0] = first;
  row[1] = second;
}

/// Every test runs in each way that rows are sent. MySQL has no bulk protocol: there the fastest
/// way is a load.
class MySqlWriterTest : public MySqlTest, public testing::WithParamInterface<RowTransport> {
 protected:
  MySqlWriterTest() : provider_(GetParam()), writing_(provider_) { writing_.Open(settings_); }

  /// Fills the block with rows of texts; a null pointer is NULL.
  void Fill(const std::vector<std::vector<const char*>>& rows) {
    block_.Clear(rows.at(0).size());
    for (const auto& row : rows) {
      std::ranges::transform(row, block_.AppendRow().begin(), [](const char* text) {
        return text == nullptr ? Value(Null{}) : Value(std::string_view(text));
      });
    }
  }

  void FillNumbers(int from, int count) {
    block_.Clear(2);
    for (int i = from; i < from + count; ++i) {
      Add(block_, block_.Storage().Store(fmt::to_string(i)),
          block_.Storage().Store(fmt::format("note {}", i)));
    }
  }

  Failure InsertAll(Recordset& table) {
    return FailureOf(writing_, [&] { table.InsertRows(block_, 0, block_.Rows()); });
  }

  std::string Dump(std::string_view sql) {
    return MySql().Query(std::string(sql), settings_.database);
  }

  mysql::ClientProvider provider_;
  Connection writing_;
  RowBlock block_;
};

std::string NameOf(const testing::TestParamInfo<RowTransport>& way) {
  constexpr std::array kNames{"Fastest", "Loads", "Statements"};
  return kNames.at(static_cast<std::size_t>(way.param));
}

INSTANTIATE_TEST_SUITE_P(Ways, MySqlWriterTest,
                         testing::Values(RowTransport::Fastest, RowTransport::Loads,
                                         RowTransport::Statements),
                         NameOf);

TEST_P(MySqlWriterTest, BytesStayBytesBesideTexts) {
  Run("create table b(id int primary key, data blob)");
  Recordset table = writing_.OpenTable("`b`", {"id", "data"});
  Fill({{"1", "text é"}, {"2", nullptr}, {"3", nullptr}, {"4", ""}, {"5", "text"}});
  // Both kinds in one column, the change in the middle of the block.
  const std::string bytes = "\0\xff\xe9"s;
  block_.DropLastRow();
  for (const std::string_view id : {"5", "6"}) Add(block_, id, Binary{bytes});
  EXPECT_EQ(InsertAll(table), Failure{});
  EXPECT_EQ(Dump("select id, hex(data) from b order by id"),
            "1\t7465787420C3A9\n2\tNULL\n3\tNULL\n4\t\n5\t00FFE9\n6\t00FFE9\n");
}

TEST_P(MySqlWriterTest, ABlockTakesFewRoundTrips) {
  Run("create table t(id int primary key, note varchar(20))");
  Recordset table = writing_.OpenTable("t", {"id", "note"});
  const auto executions = [&] {
    Recordset status = writing_.Execute("show session status like 'Com_stmt_execute'");
    return std::stoi(status.Field("Value").Text());
  };
  const int before = executions();
  FillNumbers(1, 1000);
  EXPECT_EQ(InsertAll(table), Failure{});
  const int asking = 1;
  const bool in_bulk = GetParam() == RowTransport::Fastest && IsMariaDb();
  EXPECT_LE(executions() - before - asking, in_bulk ? 1 : 6);
}

TEST_P(MySqlWriterTest, WideRowsStayBelowTheParameterLimit) {
  std::string definition;
  std::vector<std::string> names;
  for (int i = 0; i < 700; ++i) {
    names.push_back(fmt::format("c{}", i));
    definition += fmt::format("{}c{} tinyint", i == 0 ? "" : ",", i);
  }
  Run("create table wide(" + definition + ")");
  Recordset table = writing_.OpenTable("wide", names);
  Fill(std::vector(300, std::vector<const char*>(700, "1")));
  EXPECT_EQ(InsertAll(table), Failure{});
  EXPECT_EQ(Dump("select count(*), sum(c0 + c699) from wide"), "300\t600\n");
}

TEST_P(MySqlWriterTest, RequestsStayBelowThePacketLimit) {
  Run("create table big(id int primary key, data longblob)");
  Recordset table = writing_.OpenTable("big", {"id", "data"});
  const std::string five_megabytes(5'000'000, '\xfe');
  block_.Clear(2);
  for (const std::string_view id : {"1", "2", "3", "4", "5", "6", "7"}) {
    Add(block_, id, Binary{five_megabytes});
  }
  EXPECT_EQ(InsertAll(table), Failure{});
  EXPECT_EQ(Dump("select count(*), sum(data = repeat(x'fe', 5000000)) from big"), "7\t7\n");

  std::string too_big;
  too_big.resize(17'000'000, 'x');
  block_.Clear(2);
  Add(block_, std::string_view("8"), Binary{too_big});
  EXPECT_EQ(InsertAll(table), (Failure{hresult::kFail, 1153}));
  FillNumbers(9, 2);
  EXPECT_EQ(InsertAll(table), Failure{}) << "the session was lost";
}

TEST_P(MySqlWriterTest, ARefusedRowRollsItsBlockBackAndTheRestGoesRowByRow) {
  Run("create table t(id int primary key, note varchar(9)) engine = innodb");
  Run("insert into t values (500, 'there')");
  Recordset table = writing_.OpenTable("t", {"id", "note"});
  FillNumbers(1, 999);
  writing_.BeginTrans();
  EXPECT_EQ(InsertAll(table), (Failure{hresult::kErrorsInCommand, 1062}));
  writing_.RollbackTrans();
  EXPECT_EQ(Dump("select count(*) from t"), "1\n");
  std::vector<Failure> failures;
  for (std::size_t i = 0; i < block_.Rows(); ++i) {
    const Failure failure = FailureOf(writing_, [&] { table.InsertRows(block_, i, 1); });
    if (failure != Failure{}) failures.push_back(failure);
  }
  EXPECT_THAT(failures, testing::ElementsAre(Failure{hresult::kErrorsInCommand, 1062}));
  EXPECT_EQ(Dump("select count(*), sum(note = 'there') from t"), "999\t1\n");

  FillNumbers(2000, 500);
  writing_.BeginTrans();
  EXPECT_EQ(InsertAll(table), Failure{});
  writing_.CommitTrans();
  EXPECT_EQ(Dump("select count(*) from t"), "1499\n");
}

TEST_P(MySqlWriterTest, TellsRefusedValuesFromRefusedRows) {
  Run("create table v(n tinyint not null, t varchar(3), c char(1) character set latin1, "
      "check (n <> 42))");
  Recordset table = writing_.OpenTable("v", {"n", "t", "c"});
  const auto insert = [&](const std::vector<const char*>& row) {
    Fill({{"1", "ok", "o"}, row, {"2", "ok", "o"}});
    writing_.BeginTrans();
    const Failure failure = InsertAll(table);
    writing_.RollbackTrans();
    return failure;
  };
  EXPECT_EQ(insert({"300", "ok", "o"}), (Failure{hresult::kErrorsOccurred, 1264}));
  EXPECT_EQ(insert({"word", "ok", "o"}), (Failure{hresult::kErrorsOccurred, 1366}));
  EXPECT_EQ(insert({"1", "long text", "o"}), (Failure{hresult::kErrorsOccurred, 1406}));
  EXPECT_EQ(insert({"1", "ok", "д"}),
            (Failure{hresult::kErrorsOccurred, IsMariaDb() ? 1366 : 3988}));
  EXPECT_EQ(insert({"1 apple", "ok", "o"}), (Failure{hresult::kErrorsOccurred, 1265}));
  EXPECT_EQ(insert({nullptr, "ok", "o"}), (Failure{hresult::kErrorsInCommand, 1048}));
  EXPECT_EQ(insert({"42", "ok", "o"}),
            (Failure{hresult::kErrorsInCommand, IsMariaDb() ? 4025 : 3819}));
  EXPECT_EQ(Dump("select count(*) from v"), "0\n");
}

TEST_P(MySqlWriterTest, FieldByFieldRowsCanBeMendedAndTriedAgain) {
  Run("create table f(id int primary key, note varchar(5), data blob)");
  Recordset table = writing_.OpenTable("`f`", {"id", "note", "data"});
  table.AddNew();
  table.Field("ID").SetText("1");
  table.Field("note").SetText("too long");
  table.Field("data").AppendChunk("\0a"s);
  table.Field("data").AppendChunk("\xff");
  EXPECT_EQ(FailureOf(writing_, [&] { table.Update(); }),
            (Failure{hresult::kErrorsOccurred, 1406}));
  table.Field("note").SetText("fits");
  EXPECT_EQ(FailureOf(writing_, [&] { table.Update(); }), Failure{});
  EXPECT_TRUE(writing_.Errors().empty());
  table.AddNew();
  table.Field("id").SetText("2");
  table.CancelUpdate();
  EXPECT_EQ(FailureOf(writing_, [&] { table.Update(); }).number, kNoCurrentRecord);
  EXPECT_EQ(FailureOf(writing_, [&] { table.AtEnd(); }).number, kObjectClosed);
  table.AddNew();  // nothing of the row before is left
  EXPECT_EQ(FailureOf(writing_, [&] { table.Field("absent"); }).number, kItemNotFound);
  table.Field("id").SetText("3");
  table.Field("note").SetText("gone");
  table.Field("note").SetNull();
  table.Update();
  EXPECT_EQ(Dump("select id, note, hex(data) from f order by id"),
            "1\tfits\t0061FF\n3\tNULL\tNULL\n");
}

TEST_P(MySqlWriterTest, AKilledSessionIsAnError) {
  Run("create table t(id int primary key, note varchar(20))");
  Recordset table = writing_.OpenTable("t", {"id", "note"});
  FillNumbers(1, 10);
  writing_.BeginTrans();
  EXPECT_EQ(InsertAll(table), Failure{});
  MySql().Query("kill " + Ask(writing_, "select connection_id()"));
  FillNumbers(11, 10);
  EXPECT_EQ(InsertAll(table).number, hresult::kFail);
  EXPECT_EQ(FailureOf(writing_, [&] { writing_.RollbackTrans(); }), Failure{});
  EXPECT_EQ(InsertAll(table).number, hresult::kFail);
  EXPECT_NE(FailureOf(writing_, [&] { writing_.CommitTrans(); }), Failure{});
  EXPECT_EQ(Dump("select count(*) from t"), "0\n");
}

TEST_P(MySqlWriterTest, RefusesAParameterCountThatIsNotItsOwn) {
  Run("create table t(id int, note varchar(20))");
  for (const char* target : {"t(id) values (?) -- ", "t(id) values (?), (?), (?), (?), (?) -- "}) {
    Recordset table = writing_.OpenTable(target, {"id", "note"});
    FillNumbers(1, 2);
    EXPECT_EQ(InsertAll(table), (Failure{hresult::kFail, 2027})) << target;
    // Who counts otherwise than the server is out of step with it.
    EXPECT_FALSE(writing_.IsAlive());
    writing_.Close();
    writing_.Reopen();
  }
}

TEST_P(MySqlWriterTest, KeepsWritingAfterAResultWasLeftUnread) {
  Run("create table t(id int primary key, note varchar(20))");
  Recordset table = writing_.OpenTable("t", {"id", "note"});
  FillNumbers(1, 3);
  EXPECT_EQ(InsertAll(table), Failure{});
  const std::string long_result =
      "select repeat('x', 1000) from " + test::Sequence(1, 1000000) + " s";
  EXPECT_FALSE(writing_.Execute(long_result).AtEnd());
  FillNumbers(4, 3);
  EXPECT_EQ(InsertAll(table), Failure{});
  EXPECT_EQ(Dump("select count(*) from t"), "6\n");
}

/// Rows that are loaded, beside the same rows in statements.
class MySqlLoadTest : public MySqlTest {
 protected:
  MySqlLoadTest() {
    loading_.Open(settings_);
    inserting_.Open(settings_);
  }

  int Loads() {
    Recordset status = loading_.Execute("show session status like 'Com_load'");
    return std::stoi(status.Field("Value").Text());
  }

  /// 900 rows of two columns, the first 0 to 899, with one other row among them.
  void FillAround(const Value& id, const Value& text) {
    block_.Clear(2);
    for (int i = 0; i < 900; ++i) {
      const bool is_other = i == 800;
      Add(block_, is_other ? id : block_.Storage().Store(fmt::to_string(i)),
          is_other ? text : std::string_view("x"));
    }
  }

  /// What comes of inserting the block into an empty table, and the table behind it, rolled back.
  std::pair<Failure, std::string> OutcomeOf(Connection& connection) {
    Recordset table = connection.OpenTable("t", {"id", "v"});
    connection.BeginTrans();
    const Failure failure =
        FailureOf(connection, [&] { table.InsertRows(block_, 0, block_.Rows()); });
    std::string rows =
        Ask(connection, "select concat(count(*), ' ', coalesce(sum(crc32(hex(v))), 0)) from t");
    connection.RollbackTrans();
    return {failure, rows};
  }

  mysql::ClientProvider loads_{mysql::RowTransport::Loads};
  mysql::ClientProvider statements_{mysql::RowTransport::Statements};
  Connection loading_{loads_};
  Connection inserting_{statements_};
  RowBlock block_;
};

TEST_F(MySqlLoadTest, EveryTextArrivesAsItIs) {
  const std::vector<std::string> texts{
      "",     "\\N", "N",          "\\",   "\t",  "a\tb\nc\r\n", "\0zero\0"s,
      "'\"`", "д😀",  "  blanks  ", "\x1a", "\\0", "%_\\%",       "\x7f\b"};
  Run("create table l(id int primary key, v varchar(40) character set utf8mb4, n decimal(9,3), "
      "d datetime(3))");
  Run("create table i like l");
  block_.Clear(4);
  for (int id = 0; id < 1000; ++id) {
    const std::span<Value> row = block_.AppendRow();
    row[0] = block_.Storage().Store(fmt::to_string(id));
    row[1] = id % 15 == 14 ? Value(Null{}) : Value(std::string_view(texts[id % 15 % 14]));
    row[2] = id % 7 == 0 ? Value(Null{}) : block_.Storage().Store(fmt::format("-{}.125", id));
    row[3] = std::string_view("2026-02-28 12:34:56.789");
  }
  for (auto [connection, name] : {std::pair{&loading_, "l"}, {&inserting_, "i"}}) {
    Recordset table = connection->OpenTable(name, {"id", "v", "n", "d"});
    connection->BeginTrans();
    table.InsertRows(block_, 0, block_.Rows());
    connection->CommitTrans();
  }
  EXPECT_EQ(Loads(), 1);
  EXPECT_EQ(Ask(inserting_,
                "select count(*) from l join i on l.id = i.id and binary l.v <=> binary "
                "i.v and l.n <=> i.n and l.d = i.d"),
            "1000");
}

TEST_F(MySqlLoadTest, WhatALoadWouldChangeOrSkipIsRefusedAsByStatements) {
  struct Case {
    const char* definition;
    Value id;
    Value text;
  };
  const std::string_view forty = "forty characters, which is far too many.";
  for (const Case& one : {
           Case{"id int primary key, v varchar(9)", std::string_view("7"), std::string_view("x")},
           Case{"id smallint, v varchar(9)", std::string_view("40000"), std::string_view("x")},
           Case{"id int, v varchar(9)", std::string_view("1"), forty},
           Case{"id int, v varchar(9)", std::string_view("1"),
                std::string_view("blanks          ")},
           Case{"id int, v varchar(9) character set latin1", std::string_view("1"),
                std::string_view("д")},
           Case{"id int not null, v varchar(9)", Null{}, std::string_view("x")},
           Case{"id int, v varchar(9), check (id <> 42)", std::string_view("42"),
                std::string_view("x")},
           Case{"id int, v varchar(9), other int not null", std::string_view("1"),
                std::string_view("x")},
           Case{"id int, v enum('x', 'y')", std::string_view("1"), std::string_view("z")},
           Case{"id decimal(9,1), v varchar(9)", std::string_view("1.55"), std::string_view("x")},
       }) {
    Run("drop table if exists t");
    Run(fmt::format("create table t({})", one.definition));
    FillAround(one.id, one.text);
    EXPECT_EQ(OutcomeOf(loading_), OutcomeOf(inserting_)) << one.definition;
  }
}

TEST_F(MySqlLoadTest, OnlyATransactionAndManyRowsAreLoaded) {
  Run("create table t(id int, v varchar(9))");
  Recordset table = loading_.OpenTable("t", {"id", "v"});
  FillAround(std::string_view("1"), std::string_view("x"));
  table.InsertRows(block_, 0, 900);
  loading_.BeginTrans();
  table.InsertRows(block_, 0, 3);
  EXPECT_EQ(Loads(), 0);
  table.InsertRows(block_, 0, 900);
  EXPECT_EQ(Loads(), 1);
  loading_.CommitTrans();
  EXPECT_EQ(Ask(loading_, "select count(*) from t"), "1803");
}

TEST_F(MySqlLoadTest, TheServerGetsNoFileOfThisMachine) {
  Run("create table t(id int, v text)");
  const Failure refused = FailureOf(loading_, [&] {
    loading_.Execute("load data local infile '/etc/hostname' into table t (v)");
  });
  EXPECT_EQ(refused.number, hresult::kFail);
  EXPECT_EQ(Ask(inserting_, "select count(*) from t"), "0");
}

}  // namespace
}  // namespace dorvane::ado
