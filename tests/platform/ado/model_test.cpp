#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cfloat>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/ado/catalog.h"
#include "platform/ado/connection.h"
#include "platform/ado/value_text.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;

ProviderError Failing(std::int32_t native_error) {
  return {hresult::kFail,
          "scripted",
          "it failed",
          {{hresult::kFail, native_error, "it failed", "HY000"}}};
}

/// What a scripted session did, in order, as "session: action".
struct Log {
  std::vector<std::string> actions;
  int sessions = 0;
  int open_readers = 0;
  int open_sessions = 0;
  bool refuse_logon = false;
};

/// Counts from 1 to `rows`, in blocks; throws in place of row `failing_row`.
class CountingReader final : public ResultReader {
 public:
  CountingReader(Log& log, bool& streaming, int rows, int failing_row)
      : log_(log), streaming_(streaming), rows_(rows), failing_row_(failing_row) {
    ++log_.open_readers;
    streaming_ = true;
  }
  ~CountingReader() override {
    --log_.open_readers;
    streaming_ = false;
  }
  const std::vector<FieldInfo>& Fields() const override { return fields_; }
  bool Read(RowBlock& block) override {
    block.Clear(fields_.size());
    while (next_ <= rows_ && !block.IsFull()) {
      if (next_ == failing_row_) throw Failing(1317);
      block.AppendRow()[0] = std::int64_t{next_++};
    }
    if (next_ > rows_) streaming_ = false;
    return block.Rows() > 0;
  }
  bool NextResult() override {
    fields_[0].name = "second";
    next_ = 1;
    return std::exchange(more_results_, false);
  }

 private:
  Log& log_;
  bool& streaming_;
  int rows_;
  int failing_row_;
  int next_ = 1;
  bool more_results_ = true;
  std::vector<FieldInfo> fields_ = {{.name = "n", .type = DataType::BigInt}};
};

class RecordingWriter final : public TableWriter {
 public:
  RecordingWriter(Log& log, int session) : log_(log), session_(session) {}
  void Insert(const RowBlock& rows, std::size_t first, std::size_t count) override {
    std::string text = std::to_string(session_) + ": insert";
    for (std::size_t i = first; i < first + count; ++i) {
      for (const Value& value : rows.Row(i)) {
        const bool is_bytes = std::holds_alternative<Binary>(value);
        text += IsNull(value) ? " NULL" : (is_bytes ? " b:" : " t:") + ToText(value, {});
        if (ToText(value, {}) == "bad") throw Failing(1062);
      }
    }
    log_.actions.push_back(text);
  }

 private:
  Log& log_;
  int session_;
};

class ScriptedSession final : public Session {
 public:
  explicit ScriptedSession(Log& log) : log_(log), number_(++log.sessions) { ++log_.open_sessions; }
  ~ScriptedSession() override { --log_.open_sessions; }

  std::unique_ptr<ResultReader> Execute(std::string_view sql) override {
    Note(std::string(sql));
    if (sql == "fail") throw Failing(1064);
    const int failing_row = sql == "break" ? 5000 : 0;
    return std::make_unique<CountingReader>(log_, streaming_, sql == "few" ? 3 : 10000,
                                            failing_row);
  }
  bool IsStreaming() const override { return streaming_; }
  bool IsAlive() override { return true; }
  bool IsExposed() const override { return false; }
  std::unique_ptr<TableWriter> OpenWriter(std::string_view,
                                          const std::vector<std::string>&) override {
    return std::make_unique<RecordingWriter>(log_, number_);
  }
  void BeginTransaction() override { Note("begin"); }
  void Commit() override { Note("commit"); }
  void Rollback() override { Note("rollback"); }
  std::vector<TableInfo> Tables() override {
    Note("tables");
    return {{"Orders", "TABLE"}, {"ORDERS", "TABLE"}, {"Lines", "TABLE"}};
  }
  std::vector<Column> Columns(const TableName& table) override {
    Note("columns of " + table.Text());
    return {};
  }
  std::vector<Index> Indexes(const TableName&) override { return {}; }
  std::vector<Key> Keys(const TableName&) override { return {}; }

 private:
  void Note(const std::string& action) {
    log_.actions.push_back(std::to_string(number_) + ": " + action);
  }

  Log& log_;
  int number_;
  bool streaming_ = false;
};

class ScriptedProvider final : public Provider {
 public:
  std::unique_ptr<Session> Connect(const ConnectionSettings& /*settings*/) override {
    if (log.refuse_logon) throw Failing(1045);
    return std::make_unique<ScriptedSession>(log);
  }
  Log log;
};

class ModelTest : public testing::Test {
 protected:
  void SetUp() override { connection_.Open({}); }

  std::int32_t NumberOf(const std::function<void()>& operation) {
    try {
      operation();
    } catch (const RunTimeError& error) {
      return error.Number();
    }
    return 0;
  }

  ScriptedProvider provider_;
  Log& log_ = provider_.log;
  Connection connection_{provider_};
};

TEST_F(ModelTest, ErrorsAreThoseOfTheLatestOperationOnly) {
  EXPECT_EQ(NumberOf([&] { connection_.Execute("fail"); }), hresult::kFail);
  ASSERT_EQ(connection_.Errors().size(), 1U);
  EXPECT_EQ(connection_.Errors()[0].native_error, 1064);
  connection_.Execute("few");
  EXPECT_TRUE(connection_.Errors().empty());

  Recordset rows = connection_.Execute("break");
  EXPECT_EQ(NumberOf([&] {
              for (; !rows.AtEnd();) rows.MoveNext();
            }),
            hresult::kFail);
  EXPECT_EQ(connection_.Errors().at(0).native_error, 1317);
  EXPECT_TRUE(rows.AtEnd());
  // What the layer itself refuses leaves no older failure to be blamed.
  connection_.Close();
  EXPECT_EQ(NumberOf([&] { connection_.Execute("few"); }), kObjectClosed);
  EXPECT_TRUE(connection_.Errors().empty());
}

TEST_F(ModelTest, ARefusedLogonLeavesTheConnectionClosed) {
  log_.refuse_logon = true;
  connection_.Close();
  EXPECT_EQ(NumberOf([&] { connection_.Open({}); }), hresult::kFail);
  EXPECT_EQ(connection_.Errors().at(0).native_error, 1045);
  EXPECT_EQ(connection_.State(), ObjectState::Closed);
  log_.refuse_logon = false;
  connection_.Open({});
  EXPECT_EQ(NumberOf([&] { connection_.Open({}); }), kObjectOpen);
}

TEST_F(ModelTest, StatementsWhileStreamingUseOneFurtherSession) {
  Recordset stream = connection_.Execute("many");
  connection_.Execute("few");
  connection_.Execute("few");
  EXPECT_EQ(log_.sessions, 2);
  // A further session that can't be opened fails that statement, not the stream.
  Recordset second = connection_.Execute("many");
  log_.refuse_logon = true;
  EXPECT_EQ(NumberOf([&] { connection_.Execute("few"); }), hresult::kFail);
  EXPECT_EQ(connection_.Errors().at(0).native_error, 1045);
  int count = 0;
  for (; !stream.AtEnd(); stream.MoveNext()) ++count;
  EXPECT_EQ(count, 10000);
  connection_.Execute("few");
  EXPECT_EQ(log_.actions.back(), "1: few");
}

TEST_F(ModelTest, RowsAndTransactionsShareASession) {
  {
    const Recordset stream = connection_.Execute("many");
    const Recordset table = connection_.OpenTable("t", {"a"});
  }
  Recordset table = connection_.OpenTable("t", {"a"});
  connection_.BeginTrans();
  RowBlock block;
  block.Clear(1);
  block.AppendRow()[0] = std::string_view("x");
  table.InsertRows(block, 0, 1);
  connection_.Execute("few");
  connection_.RollbackTrans();
  EXPECT_THAT(log_.actions,
              ElementsAre("1: many", "2: begin", "2: insert t:x", "2: few", "2: rollback"));
}

TEST_F(ModelTest, AddedRowsHoldWhatTheirFieldsWereGiven) {
  Recordset table = connection_.OpenTable("t", {"a", "b", "c"});
  table.AddNew();
  table.Field("B").SetText("text");
  table.Field("c").AppendChunk("by");
  table.Field("c").AppendChunk("tes");
  table.Update();
  table.AddNew();
  table.Field("a").SetText("bad");
  EXPECT_EQ(NumberOf([&] { table.Update(); }), hresult::kFail);
  table.Field("a").SetText("good");
  table.Field("b").SetText("gone");
  table.Field("b").SetNull();
  table.Update();
  EXPECT_EQ(NumberOf([&] { table.Update(); }), kNoCurrentRecord);
  EXPECT_EQ(NumberOf([&] { table.Field("d"); }), kItemNotFound);
  EXPECT_EQ(NumberOf([&] { table.AtEnd(); }), kObjectClosed);
  EXPECT_THAT(log_.actions,
              ElementsAre("1: insert NULL t:text b:bytes", "1: insert t:good NULL NULL"));
}

TEST_F(ModelTest, RecordsetsEndWithTheirConnection) {
  Recordset rows = connection_.Execute("many");
  Recordset table = connection_.OpenTable("t", {"a"});
  Recordset moved = std::move(rows);
  EXPECT_EQ(moved.Field("n").Text(), "1");
  connection_.Close();
  EXPECT_EQ(log_.open_readers + log_.open_sessions, 0);
  EXPECT_EQ(NumberOf([&] { moved.MoveNext(); }), kObjectClosed);
  EXPECT_EQ(NumberOf([&] { rows.AtEnd(); }), kObjectClosed);
  EXPECT_EQ(NumberOf([&] { table.AddNew(); }), kObjectClosed);
}

TEST_F(ModelTest, StepsThroughResults) {
  Recordset rows = connection_.Execute("few");
  for (; !rows.AtEnd();) rows.MoveNext();
  EXPECT_EQ(NumberOf([&] { rows.MoveNext(); }), kNoCurrentRecord);
  EXPECT_EQ(NumberOf([&] { rows.Field(0).Text(); }), kNoCurrentRecord);
  ASSERT_TRUE(rows.NextRecordset());
  EXPECT_EQ(rows.Field("second").Text(), "1");
  EXPECT_FALSE(rows.NextRecordset());
  EXPECT_EQ(rows.FieldCount(), 0U);
  EXPECT_TRUE(rows.AtEnd());
}

TEST_F(ModelTest, TheCatalogAsksOnce) {
  Catalog catalog(connection_);
  EXPECT_EQ(catalog.TableByName("ORDERS").Name(), "ORDERS");
  catalog.TableByName("ORDERS").Columns();
  catalog.TableByName("ORDERS").Columns();
  EXPECT_EQ(catalog.TableByName("LINES").Name(), "Lines");
  EXPECT_THAT(log_.actions, ElementsAre("1: tables", "1: columns of ORDERS"));
  // It may have been created since.
  EXPECT_EQ(NumberOf([&] { catalog.TableByName("new"); }), kItemNotFound);
  EXPECT_EQ(NumberOf([&] { catalog.TableByName("orders"); }), kItemNotFound) << "which one?";
  EXPECT_EQ(log_.actions.back(), "1: tables");
}

TEST(ValueText, NumbersReadBackEqual) {
  const auto text = [](double value) { return ToText(value, DataType::Double); };
  EXPECT_EQ(text(3.0), "3");
  EXPECT_EQ(text(1e22), "1.0e+22");
  EXPECT_EQ(text(-1.5e-300), "-1.5e-300");
  EXPECT_EQ(text(std::numeric_limits<double>::denorm_min()), "5.0e-324");
  EXPECT_EQ(std::stod(text(DBL_MAX)), DBL_MAX);
  EXPECT_EQ(ToText(0.1F, DataType::Single), "0.1");
  EXPECT_EQ(ToText(std::uint64_t{UINT64_MAX}, DataType::UnsignedBigInt), "18446744073709551615");
  EXPECT_EQ(ToText(Decimal{"-0.10"}, DataType::Numeric), "-0.10");
  EXPECT_EQ(ToText(true, DataType::Boolean), "1");
}

TEST(ValueText, MomentsShowWhatTheirTypeHas) {
  const DateTime moment{2024, 2, 9, 3723, 120000000};
  EXPECT_EQ(ToText(moment, DataType::DBTimeStamp), "2024-02-09 01:02:03.12");
  EXPECT_EQ(ToText(moment, DataType::DBDate), "2024-02-09");
  EXPECT_EQ(ToText(moment, DataType::DBTime), "01:02:03.12");
  EXPECT_EQ(ToText(DateTime{.seconds = -3020399}, DataType::DBTime), "-838:59:59");
}

}  // namespace
}  // namespace dorvane::ado
