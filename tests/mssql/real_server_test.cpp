// Rows of a scripted SQL Server into a real MySQL or MariaDB: what the server makes of the
// definitions, and that rows in blocks end as rows one by one do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "endpoint/literal_text.h"
#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/endpoint/transfer_rig.h"
#include "tests/support/planned_endpoint.h"
#include "tests/support/servers.h"

namespace dorvane {

namespace {

using ado::DataType;
using test::MakeColumn;
using test::TextResult;
using test::WithDefault;
using test::WithDigits;
using test::WithSize;
using testing::ElementsAre;
using testing::IsEmpty;

test::PrivateMySql& Server() {
  static test::PrivateMySql server;
  return server;
}

std::string NewDatabase() {
  static int count = 0;
  const std::string name = fmt::format("db{}", ++count);
  Server().Query("create database " + name + " character set utf8mb4");
  return name;
}

/// A scripted SQL Server with one table "t" and a transfer of it into the real server.
class Copy {
 public:
  Copy() { source_.tables = {{"t", "TABLE"}}; }

  void Columns(std::vector<ado::Column> columns) { source_.columns["t"] = std::move(columns); }
  void Index(ado::Index index) { source_.indexes["t"].push_back(std::move(index)); }
  void Rows(std::vector<std::vector<ado::Value>> rows) {
    test::ScriptedResult result;
    for (const ado::Column& column : source_.columns["t"]) result.fields.push_back(column);
    const std::string_view count = source_.Keep(std::to_string(rows.size()));
    result.rows = std::move(rows);
    source_.Answer("select * from [t]", {std::move(result)});
    source_.Answer("select count(*) as Rows_No from [t]", {TextResult({"Rows_No"}, {{count}})});
  }
  std::string_view Keep(std::string text) { return source_.Keep(std::move(text)); }

  std::vector<std::string> notes;  // of the last transfer
  bool with_relationships = false;
  /// Returns the events.
  std::vector<std::string> Transfer(const std::string& database, CopyStrategy strategy,
                                    std::int16_t mode) {
    test::EventRecorder events;
    test::HostRecorder host;
    test::PlannedEndpoint<MsSqlDatabase> src(host, source_.Lookup());
    MySqlDatabase dest(host);
    src.SetListener(&events);
    src.SetCopyTableContent(true);
    src.SetConvertMode(mode);
    src.SetConvertRelationships(with_relationships);
    src.plan.strategy = strategy;
    dest.SetServer("127.0.0.1");
    dest.SetPortNo(Server().Port());
    dest.SetUserId("root");
    dest.SetPassword(Server().Password());
    dest.SetDbName(database);
    src.TransferToDest(dest, {"t"});
    EXPECT_THAT(host.connection_failures, IsEmpty());
    EXPECT_THAT(host.unclassified, IsEmpty());
    notes = host.notes;
    return events.events;
  }

  /// Runs it both ways on tables made by `setup`; expects the same rows and events, and returns
  /// the events and the number of rows stored.
  std::pair<std::vector<std::string>, std::string> RunBothWays(const std::string& setup,
                                                               std::int16_t mode) {
    std::vector<std::string> events[2];
    std::string content[2];
    std::string count;
    // One name for both, since the server's messages hold it.
    const std::string database = NewDatabase();
    last_database_ = database;
    for (const CopyStrategy strategy : {CopyStrategy::Blocks, CopyStrategy::RowByRow}) {
      const int way = strategy == CopyStrategy::Blocks ? 0 : 1;
      Server().Query("drop database " + database + "; create database " + database);
      if (!setup.empty()) Server().Query(setup, database);
      events[way] = Transfer(database, strategy, mode);
      content[way] = Server().Query("select * from t order by k", database);
      count = Server().Query("select count(*) from t", database);
    }
    EXPECT_EQ(events[0], events[1]);
    EXPECT_TRUE(content[0] == content[1]);
    while (!count.empty() && count.back() == '\n') count.pop_back();
    return {events[0], count};
  }

  /// One value of the tables that RunBothWays left.
  std::string Cell(const std::string& query) const {
    std::string value = Server().Query(query, last_database_);
    if (!value.empty()) value.pop_back();
    return value;
  }

 private:
  test::ScriptedServer source_;
  std::string last_database_;
};

std::vector<std::string> Errors(const std::vector<std::string>& events) {
  std::vector<std::string> errors;
  for (const std::string& event : events) {
    if (event.starts_with("error")) errors.push_back(event);
  }
  return errors;
}

std::vector<std::vector<ado::Value>> Numbered(std::int64_t count) {
  std::vector<std::vector<ado::Value>> rows;
  for (std::int64_t i = 0; i < count; ++i) rows.push_back({i, std::string_view("text")});
  return rows;
}

struct TwoColumns : testing::Test, Copy {
  TwoColumns() {
    Columns({MakeColumn("k", DataType::Integer, false),
             WithSize(MakeColumn("v", DataType::VarWChar), 40)});
  }
  static constexpr const char* kKeyed =
      "create table t(k int primary key, v varchar(40)) engine=InnoDB;";
};

TEST_F(TwoColumns, DuplicatesAtBlockEdges) {
  Rows(Numbered(3500));
  const std::string setup = std::string(kKeyed) +
                            "insert t values (0,'old'),(999,'old'),(1000,'old'),(1001,'old'),"
                            "(2500,'old'),(3499,'old')";
  const auto [events, count] = RunBothWays(setup, convert_mode::kMerge);
  EXPECT_EQ(count, "3500");
  EXPECT_THAT(notes, ElementsAre("Table t: 6 of 3500 rows were there already and were left out"));
  EXPECT_THAT(events, ElementsAre("started 1 false", "table t", "content t 3500", "rows 3500",
                                  "succeeded t", "ended"));
}

TEST_F(TwoColumns, AMergeIntoItselfAddsNothing) {
  Rows(Numbered(2500));
  const std::string database = NewDatabase();
  Index({"pk", true, true, {"k"}});
  Transfer(database, CopyStrategy::Blocks, convert_mode::kMerge);
  const auto events = Transfer(database, CopyStrategy::Blocks, convert_mode::kMerge);
  EXPECT_THAT(events, ElementsAre("started 1 false", "table t", "content t 2500", "rows 2500",
                                  "succeeded t", "ended"));
  EXPECT_EQ(Server().Query("select count(*) from t", database), "2500\n");
}

TEST_F(TwoColumns, ADuplicateInANewTableIsARefusedRow) {
  auto rows = Numbered(3000);
  rows[1500][0] = std::int64_t{3};
  Rows(std::move(rows));
  Index({"pk", true, true, {"k"}});
  for (const std::int16_t mode : {convert_mode::kOverwrite, convert_mode::kMerge}) {
    const auto [events, count] = RunBothWays("", mode);
    EXPECT_EQ(count, "2999");
    EXPECT_THAT(Errors(events),
                ElementsAre(testing::AllOf(
                    testing::HasSubstr("1 of 3000 rows were not copied; the first: 1062 - "),
                    testing::EndsWith("(row 1501)"))));
  }
}

TEST_F(TwoColumns, RefusedValuesAndConstraints) {
  struct Case {
    const char* setup;
    const char* stored;
    const char* error;  // null: none
  };
  const Case cases[] = {
      {"create table t(k tinyint primary key, v varchar(40)) engine=InnoDB", "128",
       "Out of range value"},
      {"create table t(k int primary key, v varchar(3)) engine=InnoDB", "0", "Data too long"},
      {"create table t(k int primary key, v varchar(40), check (k <> 700)) engine=InnoDB", "1199",
       "(row 701)"},
      {"create table p(k int primary key) engine=InnoDB; insert p values (0),(1),(2);"
       "create table t(k int, v varchar(40), foreign key (k) references p(k)) engine=InnoDB",
       "3", "foreign key constraint fails"},
      {"create table t(k int primary key, v varchar(40)) engine=MyISAM; insert t values (5,'x')",
       "1200", nullptr},
      {"create table t(k int primary key, v varchar(40)) engine=InnoDB; create trigger x before "
       "insert on t for each row set new.v = if(new.k = 900, repeat('x', 41), new.v)",
       "1199", "Data too long"},
      {"create table t(k int primary key, v varchar(40), w int not null) engine=InnoDB", "0",
       "doesn't have a default value"},
      {"create table t(k int primary key) engine=InnoDB", "0", "Unknown column"},
      {"create table t(k int primary key, v enum('text')) engine=InnoDB", "1200", nullptr},
  };
  Rows(Numbered(1200));
  for (const Case& each : cases) {
    const auto [events, count] = RunBothWays(each.setup, convert_mode::kMerge);
    EXPECT_EQ(count, each.stored) << each.setup;
    if (each.error == nullptr) {
      EXPECT_THAT(Errors(events), IsEmpty());
    } else {
      EXPECT_THAT(Errors(events), ElementsAre(testing::HasSubstr(each.error))) << each.setup;
    }
  }
}

TEST_F(TwoColumns, NullsMeetNotNull) {
  auto rows = Numbered(1200);
  rows[600][1] = {};
  Rows(std::move(rows));
  const auto [events, count] =
      RunBothWays("create table t(k int primary key, v varchar(40) not null) engine=InnoDB",
                  convert_mode::kMerge);
  EXPECT_EQ(count, "1199");
  EXPECT_THAT(Errors(events), ElementsAre(testing::HasSubstr("cannot be null")));
}

TEST_F(TwoColumns, ManyRandomRefusals) {
  auto rows = Numbered(3000);
  std::string existing = "insert t values (-1,'')";
  for (int i = 0; i < 3000; i = i * 7 / 6 + 1) existing += fmt::format(",({},'old')", i);
  Rows(std::move(rows));
  const auto [events, count] = RunBothWays(kKeyed + existing, convert_mode::kMerge);
  EXPECT_EQ(count, "3001");
}

TEST_F(TwoColumns, ATableWithoutItsKeyGetsItOrIsReported) {
  struct Case {
    const char* setup;
    bool has_key;
    std::vector<std::string> notes;
    const char* error;  // null: none
  };
  const std::string missing = "Table t: its primary key pk was missing on the destination";
  const std::string double_rows =
      "Table t: no key tells its rows apart, so that every merge adds all of them again";
  const std::string left_out = "Table t: 1 of 2 rows were there already and were left out";
  const Case cases[] = {
      {"create table t(k int not null, v varchar(40)); insert t values (0, 'old')",
       true,
       {missing + " and was added", left_out},
       nullptr},
      {"create table t(k int not null, v varchar(40)); insert t values (0, 'old'), (0, 'old')",
       true,
       {missing, double_rows},
       "Can not create Primary Key constraint pk for table t _ "},
      {"create table t(k int not null, v varchar(40))", false, {double_rows}, nullptr},
      {"create table t(k int not null unique, v varchar(40)); insert t values (0, 'old')",
       true,
       {left_out},
       nullptr},
  };
  for (const Case& each : cases) {
    Copy copy;
    copy.Columns({MakeColumn("k", DataType::Integer, false),
                  WithSize(MakeColumn("v", DataType::VarWChar), 40)});
    if (each.has_key) copy.Index({"pk", true, true, {"k"}});
    copy.Rows(Numbered(2));
    const auto events = copy.RunBothWays(each.setup, convert_mode::kMerge).first;
    EXPECT_EQ(copy.notes, each.notes) << each.setup;
    if (each.error == nullptr) {
      EXPECT_THAT(Errors(events), IsEmpty()) << each.setup;
    } else {
      EXPECT_THAT(Errors(events), ElementsAre(testing::HasSubstr(each.error))) << each.setup;
    }
  }
}

TEST_F(TwoColumns, RowsWithoutAParentAreReportedWhereParentsMayFollow) {
  Rows(Numbered(3));
  with_relationships = true;
  const auto [events, count] = RunBothWays(
      "create table p(k int primary key); insert p values (0), (1); "
      "create table t(k int primary key, v varchar(40), constraint fk foreign key (k) references "
      "p(k))",
      convert_mode::kMerge);
  EXPECT_EQ(count, "3");
  EXPECT_THAT(Errors(events),
              ElementsAre("error 16 [Creating Relationship Error] 1 rows of table t refer to rows "
                          "of table p that are not there (relationship fk)"));
}

struct Images : testing::Test, Copy {
  Images() {
    Columns({MakeColumn("k", DataType::Integer, false), MakeColumn("v", DataType::LongVarBinary)});
  }
};

TEST_F(Images, OfMegabytesArriveWhole) {
  const std::string_view big = Keep(std::string(5 << 20, '\x80'));
  std::vector<std::vector<ado::Value>> rows;
  for (std::int64_t i = 0; i < 6; ++i) rows.push_back({i, ado::Binary{big.substr(i)}});
  rows.push_back({std::int64_t{6}, ado::Binary{""}});
  rows.push_back({std::int64_t{7}, ado::Null()});
  Rows(std::move(rows));
  const std::string database = NewDatabase();
  EXPECT_THAT(Errors(Transfer(database, CopyStrategy::Blocks, convert_mode::kOverwrite)),
              IsEmpty());
  EXPECT_EQ(Server().Query("select sum(length(v)), sum(v is null), sum(v = '') from t", database),
            fmt::format("{}\t1\t1\n", 6 * big.size() - 15));
}

TEST_F(Images, TooLongForTheirColumnAreLeftOutAndReported) {
  const std::string_view big = Keep(std::string(70'000, 'x'));
  std::vector<std::vector<ado::Value>> rows;
  for (std::int64_t i = 0; i < 50; ++i) {
    rows.push_back({i, ado::Binary{i == 20 ? big : std::string_view("small")}});
  }
  Rows(std::move(rows));
  const auto [events, count] =
      RunBothWays("create table t(k int primary key, v blob)", convert_mode::kMerge);
  EXPECT_EQ(count, "49");
  EXPECT_THAT(Errors(events), ElementsAre(testing::EndsWith("(row 21)")));
}

TEST(MsSqlKeys, OnLongColumnsGetTheLengthThatFits) {
  Copy copy;
  copy.Columns({MakeColumn("k", DataType::Guid, false),
                WithSize(MakeColumn("a", DataType::VarWChar, false), 450),
                WithSize(MakeColumn("b", DataType::VarChar), 900),
                WithSize(MakeColumn("d", DataType::VarWChar), 100),
                WithSize(WithDefault(MakeColumn("e", DataType::VarChar), "x"), 300)});
  copy.Index({"whole", false, true, {"k", "a"}});
  copy.Index({"most", false, true, {"d", "b"}});
  copy.Index({"pk", true, true, {"k", "d"}});
  copy.Index({"plain", false, false, {"b"}});
  copy.Rows({});
  const auto events = copy.RunBothWays("", convert_mode::kOverwrite).first;
  EXPECT_THAT(Errors(events), IsEmpty());
  const auto key = [&](const char* name) {
    return copy.Cell(
        fmt::format("select group_concat(column_name, coalesce(sub_part, '') order by "
                    "seq_in_index), ' ', min(non_unique) from "
                    "information_schema.statistics where table_schema = database() "
                    "and index_name = '{}'",
                    name));
  };
  EXPECT_EQ(key("PRIMARY"), "k16,d\t \t0");
  if (Server().IsMariaDb()) return;  // makes other unique keys whole by a hash
  EXPECT_EQ(key("whole"), "k16,a450\t \t0");
  EXPECT_EQ(key("most"), "d,b668\t \t1");
  EXPECT_EQ(key("plain"), "b768\t \t1");
  EXPECT_THAT(copy.notes, ElementsAre("Table t: unique key most became a plain index over the "
                                      "beginnings of its columns",
                                      "Table t: index plain covers the beginnings of its columns "
                                      "only"));
}

struct Texts : testing::Test, Copy {
  Texts() {
    Columns({MakeColumn("k", DataType::Integer, false), MakeColumn("a", DataType::VarWChar),
             MakeColumn("b", DataType::VarWChar), MakeColumn("n", DataType::Integer),
             MakeColumn("x", DataType::LongVarBinary)});
  }
};

// Each row has a text in every column; a NULL, a number or bytes may stand beside them.
TEST_F(Texts, WithCharactersThatTheColumnLacksAreStoredWithoutThem) {
  const std::string_view world = "\u4E16\u754C";
  const std::string_view mixed = "caf\u00E9 \u20AC \U0001F600 '\"\\";
  std::vector<std::vector<ado::Value>> rows;
  for (std::int64_t k = 0; k < 1200; ++k) {
    rows.push_back(
        {k, std::string_view("plain"), std::string_view("caf\u00E9"), k, ado::Binary{"\xE4\xB8"}});
  }
  rows[0][1] = world;
  rows[0][2] = mixed;
  rows[1][1] = ado::Null();
  rows[1][2] = world;
  rows[1000][1] = mixed;
  Rows(std::move(rows));
  const auto [events, count] = RunBothWays(
      "create table t(k int primary key, a varchar(40) character set latin1, "
      "b varchar(40) character set utf8mb3, n int, x blob)",
      convert_mode::kMerge);
  EXPECT_EQ(count, "1200");
  EXPECT_THAT(Errors(events),
              ElementsAre("error 16 [Insertion Error] 3 values of table t hold characters that the "
                          "destination cannot store; they were replaced by '?'"));
  const auto cell = [this](const char* column, int k) {
    return Cell(fmt::format("select hex({}) from t where k = {}", column, k));
  };
  EXPECT_EQ(cell("a", 0), "3F3F");
  EXPECT_EQ(cell("b", 0), HexCode("caf\u00E9 \u20AC ? '\"\\").substr(2));
  EXPECT_EQ(cell("a", 1), "NULL");
  EXPECT_EQ(cell("b", 1), HexCode(world).substr(2));
  EXPECT_EQ(cell("a", 2) + cell("b", 2), "706C61696E636166C3A9");
  EXPECT_EQ(cell("a", 1000), HexCode("caf\xE9 \x80 ? '\"\\").substr(2));
  EXPECT_EQ(Cell("select concat(sum(n = k), ' ', sum(x = 0xE4B8)) from t"), "1200 1200");
}

TEST(MsSqlDefinitions, AreTakenByTheServerAndValuesComeBackEqual) {
  Copy copy;
  const ado::DateTime moment{2020, 2, 29, 86399, 123'456'700};
  struct Cell {
    ado::Column column;
    ado::Value value;
    std::string shown;
  };
  const auto column = [](const char* name, DataType type) { return MakeColumn(name, type, false); };
  // These become BLOBs, for which MySQL takes no default.
  const auto bytes = [&column](const char* name, DataType type, const char* value) {
    const ado::Column plain = column(name, type);
    return Server().IsMariaDb() ? WithDefault(plain, value) : plain;
  };
  const Cell cells[] = {
      {WithDefault(column("small", DataType::SmallInt), "7"), std::int64_t{-32768}, "-32768"},
      {WithDefault(column("r", DataType::Single), "0"), 0.1f, "0.1"},
      {WithDefault(column("d", DataType::Double), "0.5"), 0.12345678901234568,
       "0.12345678901234568"},
      {WithDefault(column("money", DataType::Currency), "1"), ado::Decimal{"-922337203685477.5808"},
       "-922337203685477.5808"},
      {WithDefault(column("flag", DataType::Boolean), "1"), true, "1"},
      {column("big", DataType::BigInt), std::int64_t{-9223372036854775807}, "-9223372036854775807"},
      {column("bytes", DataType::Binary), ado::Binary{"\xAA\xBB"}, "AABB"},
      {bytes("vbytes", DataType::VarBinary, "0x0AFF"), ado::Binary{"\xFF"}, "FF"},
      {bytes("id", DataType::Guid, "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"),
       ado::Guid{"{00112233-4455-6677-8899-AABBCCDDEEFF}"}, "00112233445566778899AABBCCDDEEFF"},
      {WithDefault(WithSize(column("c", DataType::Char), 8), "O'B\\ \""),
       std::string_view("a'b\\\"\n"), "a'b\\\"\n"},
      {WithSize(column("nv", DataType::VarWChar), 300), std::string_view("\U0001F600"),
       "\U0001F600"},
      {WithDigits(column("n", DataType::Numeric), 38, 10),
       ado::Decimal{"1234567890123456789012345678.0123456789"},
       "1234567890123456789012345678.0123456789"},
      {WithDefault(WithDigits(column("dt", DataType::DBTimeStamp), 23, 3), "20200131"), moment,
       "2020-02-29 23:59:59"},
      {WithDigits(column("dt2", DataType::DBTimeStamp), 27, 7), moment,
       "2020-02-29 23:59:59.123456"},
      {WithDefault(column("day", DataType::DBDate), "2020-01-31"), moment, "2020-02-29"},
      {WithDefault(WithDigits(column("clock", DataType::DBTime), 16, 7), "10:20:30"), moment,
       "23:59:59.123456"},
  };
  std::vector<ado::Column> columns;
  std::vector<ado::Value> row;
  for (const Cell& cell : cells) {
    columns.push_back(cell.column);
    row.push_back(cell.value);
  }
  copy.Columns(columns);
  copy.Rows({row});
  for (const CopyStrategy strategy : {CopyStrategy::Blocks, CopyStrategy::RowByRow}) {
    const std::string database = NewDatabase();
    EXPECT_THAT(Errors(copy.Transfer(database, strategy, convert_mode::kOverwrite)), IsEmpty());
    for (const Cell& cell : cells) {
      const std::string name = "`" + cell.column.name + "`";
      const bool is_bytes = std::holds_alternative<ado::Binary>(cell.value) ||
                            std::holds_alternative<ado::Guid>(cell.value);
      // As hexadecimal digits, so that the client's escapes stay out of it.
      const std::string shown =
          Server().Query(is_bytes ? "select hex(hex(" + name + ")) from t"
                                  : "select hex(cast(" + name + " as char)) from t",
                         database);
      EXPECT_EQ(shown, HexCode(cell.shown).substr(2) + "\n") << name;
    }
  }
}

}  // namespace
}  // namespace dorvane
