// Rows in blocks must end as rows one by one do: the same tables, events and messages, on rows
// chosen to be refused in every way, between real servers in both directions.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>

#include "endpoint/literal_text.h"
#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/e2e/rig.h"
#include "tests/endpoint/recorders.h"
#include "tests/support/planned_endpoint.h"

namespace dorvane::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The cases have several of these, and refusals at their edges.
constexpr ado::BlockLimits kShortBlock{.rows = 1000, .bytes = 1 << 20};

using Script = std::vector<std::string>;  // statements, each executed by itself

struct Case {
  std::string name;
  Script source;                      // makes the source's tables
  Script dest;                        // makes what is there before the conversion
  std::vector<int> rows;              // in each table in the end
  std::vector<std::string> errors{};  // a part of each message
  NameList tables{"t"};
  std::int16_t mode = convert_mode::kMerge;
  TypeMapping types = TypeMapping::Classic;
};

/// One line a row; long values by their length and hash.
std::vector<std::string> Content(ado::Connection& connection, const std::string& table) {
  std::vector<std::string> lines;
  ado::Recordset rows = connection.Execute("select * from " + table);
  for (; !rows.AtEnd(); rows.MoveNext()) {
    std::string line;
    for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
      ado::Field& field = rows.Field(i);
      const auto* bytes = std::get_if<ado::Binary>(&field.Value());
      const std::string shown = bytes != nullptr ? HexCode(bytes->bytes) : field.Text();
      const std::string text = field.IsNull() ? "NULL" : "<" + shown + ">";
      line += text.size() <= 200
                  ? text
                  : fmt::format("<{} bytes, {}>", text.size(), std::hash<std::string>()(text));
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

/// The settings of one endpoint on the rig's servers.
template <typename Endpoint>
Endpoint Connected(IRunHost& host, const std::string& database) {
  constexpr bool kIsMySql = std::is_base_of_v<MySqlDatabase, Endpoint>;
  Endpoint endpoint(host);
  endpoint.SetServer("127.0.0.1");
  endpoint.SetPortNo(kIsMySql ? Rig::Get().MySql().Port() : Rig::Get().MsSql().Port());
  endpoint.SetUserId(kIsMySql ? "root" : "sa");
  endpoint.SetPassword(kIsMySql ? Rig::Get().MySql().Password() : Rig::Get().MsSql().Password());
  endpoint.SetDbName(database);
  return endpoint;
}

void Execute(IDatabase& endpoint, bool with_db_name, const Script& script) {
  const auto connection = endpoint.OpenConnection(with_db_name);
  for (const std::string& statement : script) {
    try {
      connection->Execute(statement);
    } catch (const RunTimeError& error) {
      FAIL() << statement.substr(0, 300) << "\n" << error.Description();
    }
  }
}

/// A server may take a moment to let go of the connections that were closed last.
void Recreate(IDatabase& endpoint, const std::string& name) {
  const auto connection = endpoint.OpenConnection(false);
  for (int tries = 0;; ++tries) {
    try {
      connection->Execute("drop database " + name);
      break;
    } catch (const RunTimeError&) {
      if (tries == 200) throw;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }
  const bool is_my_sql = endpoint.Kind() == ServerKind::MySql;
  connection->Execute("create database " + name + (is_my_sql ? " character set utf8mb4" : ""));
}

/// What a conversion leaves behind.
struct Outcome {
  std::vector<std::string> events;
  std::vector<std::string> errors;
  std::vector<std::string> unclassified;
  std::vector<std::vector<std::string>> tables;
};

template <typename Source, typename Dest>
class Differential {
 public:
  /// Runs the case row by row and in blocks; expects equal outcomes and what the case says. Returns
  /// the outcome.
  Outcome Run(const Case& each) {
    SCOPED_TRACE(each.name);
    const std::string name = Rig::Get().NewDatabases();
    auto src = Connected<PlannedEndpoint<Source>>(host_, name);
    Dest dest = Connected<Dest>(host_, name);
    Execute(src, true, each.source);
    src.plan.strategy = CopyStrategy::RowByRow;
    Outcome rows = Convert(src, dest, each);
    ExpectWhatTheCaseSays(each, rows);
    const CopyPlan plans[] = {{CopyStrategy::Statements, kShortBlock},
                              {CopyStrategy::Statements, kTravellingBlock},
                              {CopyStrategy::Blocks, kShortBlock},
                              {CopyStrategy::Blocks, kTravellingBlock}};
    for (const CopyPlan& plan : plans) {
      SCOPED_TRACE(
          fmt::format("strategy {}, {} rows", static_cast<int>(plan.strategy), plan.limits.rows));
      // One name for all, since the servers' messages hold it.
      Recreate(dest, name);
      src.plan = plan;
      const Outcome blocks = Convert(src, dest, each);
      EXPECT_EQ(blocks.events, rows.events);
      EXPECT_EQ(blocks.unclassified, rows.unclassified);
      ExpectSameTables(each, blocks.tables, rows.tables);
    }
    return rows;
  }

 private:
  Outcome Convert(Source& src, Dest& dest, const Case& each) {
    Execute(dest, true, each.dest);
    EventRecorder events;
    host_.unclassified.clear();
    src.SetListener(&events);
    ConversionOptions options;
    options.types = each.types;
    src.SetOptions(options);
    src.SetCopyTableContent(true);
    src.SetConvertMode(each.mode);
    src.TransferToDest(dest, each.tables);
    src.SetListener(nullptr);
    EXPECT_THAT(host_.connection_failures, IsEmpty());

    Outcome outcome{events.events, events.Errors(), host_.unclassified, {}};
    const auto connection = dest.OpenConnection(true);
    for (const std::string& table : each.tables)
      outcome.tables.push_back(Content(*connection, table));
    return outcome;
  }

  /// In any order: what is not loaded follows what is.
  static void ExpectSameTables(const Case& each, std::vector<std::vector<std::string>> blocks,
                               std::vector<std::vector<std::string>> rows) {
    for (std::size_t i = 0; i < each.tables.size(); ++i) {
      std::ranges::sort(blocks[i]);
      std::ranges::sort(rows[i]);
      if (blocks[i] == rows[i]) continue;
      const auto [in_blocks, in_rows] = std::ranges::mismatch(blocks[i], rows[i]);
      ADD_FAILURE() << each.tables[i] << " differs, rows " << blocks[i].size() << " and "
                    << rows[i].size() << ", first\n"
                    << (in_blocks == blocks[i].end() ? "(end)" : *in_blocks) << "\n"
                    << (in_rows == rows[i].end() ? "(end)" : *in_rows);
    }
  }

  static void ExpectWhatTheCaseSays(const Case& each, const Outcome& outcome) {
    std::vector<testing::Matcher<std::string>> errors;
    for (const std::string& error : each.errors) errors.push_back(HasSubstr(error));
    EXPECT_THAT(outcome.errors, testing::ElementsAreArray(errors));
    std::vector<int> rows;
    for (const auto& table : outcome.tables) rows.push_back(static_cast<int>(table.size()));
    EXPECT_EQ(rows, each.rows);
  }

  HostRecorder host_;
};

using ToMsSql = Differential<MySqlDatabase, MsSqlDatabase>;
using ToMySql = Differential<MsSqlDatabase, MySqlDatabase>;

// Rows k = 1, 2, ... of a MySQL table.
Script Numbered(int count, const std::string& value = "'text'") {
  return {"create table t(k int not null, v varchar(60))",
          fmt::format("insert into t select seq, {} from {} s", value, Sequence(1, count))};
}

TEST(BlocksToMsSql, RefusedRowsOfAMerge) {
  const std::string keyed = "create table t(k bigint not null primary key, v nvarchar(60) null)";
  const std::string edges =
      "insert into t values (1,'old'),(2,'old'),(999,'old'),(1000,'old'),(1001,'old'),"
      "(3999,'old'),(4000,'old'),(4001,'old'),(4100,'old'),(9999,'mine')";
  std::string all = "insert into t values (0,'old')";
  for (int i = 1; i < 900; ++i) all += fmt::format(",({},'old')", i);
  const Case cases[] = {
      {"duplicates at the edges of blocks", Numbered(4100), {keyed, edges}, {4101}},
      {"duplicates of everything", Numbered(899), {keyed, all}, {900}},
      {"a value too long",
       Numbered(2100, "if(seq = 1501, repeat('x', 31), 'short')"),
       {"create table t(k int, v varchar(30))"},
       {2099},
       {"while transfering data of table [t] - 1 of 2100 rows were not copied; the first: 2628"}},
      {"a number out of range",
       Numbered(1100),
       {"create table t(k tinyint, v varchar(60))"},
       {255},
       {"Arithmetic overflow error"}},
      {"a text that is no number",
       Numbered(1100, "if(seq = 1001, '12a', seq)"),
       {"create table t(k int, v int)"},
       {1099},
       {"'12a'"}},
      {"rows against a check",
       Numbered(2100),
       {"create table t(k int, v varchar(60), constraint odd check (k % 500 <> 3 or k > 2000))"},
       {2096},
       {"4 of 2100 rows were not copied; the first: 547"}},
      {"rows against a foreign key",
       Numbered(1100),
       {"create table p(k int primary key)", "insert into p values (1), (700), (1001)",
        "create table t(k int references p(k), v varchar(60))"},
       {3},
       {"1097 of 1100 rows were not copied; the first: 547"}},
      {"NULLs, with a default and without",
       Numbered(1100, "if(seq % 400 = 0, null, 'text')"),
       {"create table t(k int, v varchar(60) not null default 'd')"},
       {1098},
       {"2 of 1100 rows were not copied; the first: 515"}},
      {"a column that is not there",
       Numbered(1100),
       {"create table t(k int)"},
       {0},
       {"Invalid column name 'v'"}},
      {"parents that come after their children",
       {"create table t(k int not null, p int)",
        "insert into t select seq, if(seq % 300 = 0, seq - 2, seq + 1) from " + Sequence(1, 1100) +
            " s"},
       {"create table t(k int primary key, p int references t(k))",
        "insert into t values (1101, null)"},
       {1101 - 900},
       {"900 of 1100 rows were not copied; the first: 547"}},
      {"no identity where the source has one",
       {"create table t(k int auto_increment primary key)",
        "insert into t select seq from " + Sequence(1, 20) + " s"},
       {"create table t(k int)"},
       {20},
       {"PRIMARY KEY constraint on nullable column"}},
  };
  ToMsSql differential;
  for (const Case& each : cases) differential.Run(each);
}

TEST(BlocksToMsSql, KeysThatDifferInCaseAllArriveInANewTable) {
  ToMsSql differential;
  differential.Run({"keys that differ in case",
                    {"create table t(k varchar(20) character set utf8mb4 collate utf8mb4_bin "
                     "primary key, n int)",
                     "insert into t select concat('k', seq), seq from " + Sequence(1, 1500) + " s",
                     "insert into t values ('K1501', 1), ('k1501', 2), ('k1502', 3)"},
                    {},
                    {1503},
                    {},
                    {"t"},
                    convert_mode::kOverwrite});
}

// A session has the switch for one table only, and a batch that ends early leaves it on.
TEST(BlocksToMsSql, IdentityTablesAfterRefusedBlocks) {
  const auto identity = [](const std::string& name) {
    return Script{
        "set sql_mode = 'NO_AUTO_VALUE_ON_ZERO'",
        "create table " + name + "(id int auto_increment primary key, v varchar(60) not null)",
        "insert into " + name + " select seq - 20, if(seq = 1050, 'seven', 'text') from " +
            Sequence(1, 1100) + " s"};
  };
  Script both = identity("t");
  for (std::string& statement : identity("u")) both.push_back(std::move(statement));
  const auto table = [](const std::string& name, const std::string& value) {
    return "create table " + name + "(id int identity primary key, v " + value + ")";
  };
  const Case cases[] = {
      {"new tables", both, {}, {1100, 1100}, {}, {"t", "u"}, convert_mode::kOverwrite},
      {"a check refuses rows",
       both,
       {table("t", "varchar(60) check (v <> 'seven')"), table("u", "varchar(60)")},
       {1099, 1100},
       {"1 of 1100 rows were not copied"},
       {"t", "u"}},
      {"a value too long",
       both,
       {table("t", "varchar(4)"), table("u", "varchar(60)")},
       {1099, 1100},
       {"table [t]"},
       {"t", "u"}},
      {"a batch that ends at once",
       both,
       {table("t", "int"), table("u", "varchar(60)")},
       {0, 1100},
       {"Conversion failed"},
       {"t", "u"}},
  };
  ToMsSql differential;
  for (const Case& each : cases) differential.Run(each);
  const Outcome zero = differential.Run(cases[0]);
  EXPECT_EQ(zero.tables[0][18], "<-1><text>");
  EXPECT_EQ(zero.tables[0][19], "<0><text>");
}

// Several rows of one statement are brought to one type before the table is looked at.
TEST(BlocksToMsSql, LiteralsOfOneStatementDoNotChangeEachOther) {
  const Script values = {
      "create table t(k int, d double, f float, n decimal(38,10), b bigint, u bigint unsigned, "
      "s varchar(40), x varbinary(20))",
      "insert into t values (1, 0.5, 0.5, 1.5, 1, 18446744073709551615, '1', 0x01),"
      "(2, 0.25, 0.1, -1234567890123456789012345678.0123456789, 3000000000, 0, '1e5', null),"
      "(3, 1e300, 1e30, 0, -9223372036854775808, 1, '01', ''),"
      "(4, null, null, null, null, null, null, 0x000000),"
      "(5, 1e-300, 1e-30, 99.0000000001, 9223372036854775807, 5, '\u4E16', 0xFF),"
      "(6, 123456789.125, 16777216, 7, 7, 7, '\u20AC caf\u00E9', 0x00),"
      "(7, 0.1234567890123456, 3.14159, 7, 7, 7, ' 1.50 ', 0x0000000000)"};
  const auto into = [&values](const std::string& type) {
    return Case{"into " + type,
                values,
                {fmt::format("create table t(k int, d {0}, f {0}, n {0}, b {0}, u {0}, s {0}, "
                             "x varbinary(20))",
                             type)},
                {7}};
  };
  ToMsSql differential;
  differential.Run(into("varchar(60)"));
  differential.Run(into("nvarchar(max)"));
  const Case fresh{"new table", values, {}, {7}, {}, {"t"}, convert_mode::kOverwrite};
  EXPECT_THAT(
      differential.Run(fresh).tables[0],
      ElementsAre(
          "<1><0.5><0.5><1.5000000000><1><18446744073709551615><1><0x01>",
          "<2><0.25><0.1><-1234567890123456789012345678.0123456789><3000000000><0><1e5>NULL",
          "<3><1.0e+300><1.0e+30><0.0000000000><-9223372036854775808><1><01><0x>",
          "<4>NULLNULLNULLNULLNULLNULL<0x000000>",
          "<5><1.0e-300><1.0e-30><99.0000000001><9223372036854775807><5><\u4E16><0xFF>",
          "<6><123456789.125><16777216><7.0000000000><7><7><\u20AC caf\u00E9><0x00>",
          "<7><0.1234567890123456><3.14159><7.0000000000><7><7>< 1.50 ><0x0000000000>"));
}

TEST(BlocksToMsSql, EveryKindOfColumnRowAfterRow) {
  ToMsSql differential;
  const Outcome outcome = differential.Run(
      {"all types",
       {"set sql_mode = ''",
        "create table t(k int primary key, day date, moment datetime(6), clock time, flag bit(1), "
        "byte bit(8), pick enum('a','b c') , picks set('x','y'), doc json, "
        "twice int as (k * 2) stored, c char(3) not null default 'd', y year)",
        "insert into t(k, day, moment, clock, flag, byte, pick, picks, doc, c, y) values "
        "(1, '1752-12-31', '0000-00-00', '838:59:59', 1, b'10000001', 'b c', 'x,y', '{\"a\": 1}', "
        "'x', 2020),"
        "(2, '0000-00-00', '1753-01-01 00:00:00', '-00:00:01', 0, 0, 'a', '', '[]', '', 1901),"
        "(3, '9999-12-31', '2020-02-29 23:59:59.999999', '00:00:00', null, null, null, null, null,"
        " 'abc', null)",
        "insert into t(k, c) select seq, char(65 + seq % 26) from " + Sequence(4, 1200) + " s"},
       {},
       {1200},
       {},
       {"t"},
       convert_mode::kOverwrite});
  EXPECT_EQ(outcome.tables[0][0],
            "<1><1753-01-01 00:00:00><1753-01-01 00:00:00><1900-02-02 22:59:59>"
            "<1><0x81><b c><x,y><{\"a\": 1}><2><x><2020>");
  EXPECT_EQ(outcome.tables[0][1],
            "<2><1753-01-01 00:00:00><1753-01-01 00:00:00><1899-12-29 23:59:59>"
            "<0><0x00><a><><[]><4><><1901>");
  EXPECT_EQ(outcome.tables[0][2].substr(0, 48), "<3><9999-12-31 00:00:00><2020-02-29 23:59:59><18");
}

// A bulk load carries most of these rows; the others take another way into the same block.
TEST(BlocksToMsSql, RowsThatAreNotLoadedAmongRowsThatAre) {
  const Script rows = {
      "create table t(k int primary key, a varchar(60) character set latin1, b varchar(60) "
      "character set utf8mb4, c text character set utf8mb4, d longblob, e decimal(38,10), "
      "f decimal(9,2), g double, h float, i time(3), j datetime, l bigint unsigned, m binary(6), "
      "n decimal(65,0), o tinyint, p char(4), q varchar(3000) character set utf8mb4)",
      "insert into t select seq, "
      "elt(1 + seq % 5, null, '', 'plain ', 'caf\u00E9', convert(0x81C3 using latin1)), "
      "elt(1 + seq % 7, '', null, 'it''s', '\u4E16\u754C', concat('a', char(0), 'b'), '  ', if(seq "
      "% 91 = 6, "
      "'\U0001F600', '\uFFFF')), "
      "if(seq % 131 = 5, repeat('\u4E16', 2049), repeat('\u4E16', seq)), "
      "if(seq % 97 = 3, repeat(0xFF, 4097), repeat(char(seq using binary), seq % 50)), "
      "(seq - 600) * 1234567890123456.0123456789 * if(seq % 2, 1, 100000), (seq - 600) * 12.34, "
      "(seq - 600) / 7e0, -(seq - 600) / 3, sec_to_time((seq - 600) * 1000.5), "
      "if(seq % 300 = 0, null, '1700-12-31' + interval seq day), 18446744073709551615 - seq, "
      "char(seq using binary), pow(10, seq % 20), seq % 128 - 64, seq % 100, "
      "if(seq % 2, repeat('q', 3000), null) from " +
          Sequence(1, 1200) + " s"};
  const std::string columns =
      "k int primary key, a varchar(60), b nvarchar(60), c nvarchar(max), d image, "
      "e numeric(38,10), f numeric(9,2), g float, h real, i datetime, j datetime, "
      "l numeric(20,0), m binary(6), n numeric(38,0), o smallint, p varchar(4), q nvarchar(3000)";
  ToMsSql differential;
  differential.Run({"new", rows, {}, {1200}, {}, {"t"}, convert_mode::kOverwrite});
  differential.Run({"duplicates among them",
                    rows,
                    {"create table t(" + columns + ")", "insert into t(k) values (3), (700)"},
                    {1200}});
  differential.Run({"a column more",
                    rows,
                    {"create table t(" + columns + ", x int not null default 5)"},
                    {1200}});
  differential.Run({"other types",
                    rows,
                    {"create table t(k bigint primary key, a nvarchar(60), b ntext, c ntext, "
                     "d varbinary(max), e numeric(38,9), f float, g real, h float, i datetime, "
                     "j datetime, l numeric(38,5), m varbinary(60), n numeric(38,0), o smallint, "
                     "p varchar(max), q varchar(3000))"},
                    {1200}});
}

TEST(BlocksToMsSql, ExactTypesInNewAndInOldTables) {
  const Script rows = {
      "set sql_mode = 'ALLOW_INVALID_DATES'",
      "create table t(k int primary key, a tinyint(1), b date not null, c datetime(6), d time(3), "
      "e time(6), f decimal(65,2), g float, h char(3), i enum('x','y'), j decimal(38,0))",
      "insert into t select seq, seq % 2, elt(1 + seq % 4, '0000-00-00', '0001-01-01', "
      "'1752-01-01', "
      "'2020-02-02'), '1600-01-01 00:00:00.000001' + interval seq * 99 day, "
      "sec_to_time(seq * 40.125), sec_to_time((seq - 600) * 4000.5), if(seq % 2, repeat('9', 63), "
      "seq / 4), seq / 7, elt(1 + seq % 3, 'a', '', 'xyz'), 1 + seq % 2, repeat('9', seq % 38 + 1) "
      "from " +
          Sequence(1, 1200) + " s"};
  ToMsSql differential;
  const Outcome outcome = differential.Run(
      {"new", rows, {}, {1200}, {}, {"t"}, convert_mode::kOverwrite, TypeMapping::Exact});
  EXPECT_THAT(
      outcome.tables[0],
      testing::Contains(testing::StartsWith("<3><1><2020-02-02><1600-10-24 00:00:00.000001>")));
  differential.Run({"classic tables",
                    rows,
                    {"create table t(k int primary key, a Tinyint, b datetime, c datetime, d "
                     "datetime, e datetime, f varchar(70), g real, h varchar(3), i nvarchar(1), "
                     "j numeric(38,0))"},
                    {1200},
                    {},
                    {"t"},
                    convert_mode::kMerge,
                    TypeMapping::Exact});
}

TEST(BlocksToMsSql, RowsOfMegabytes) {
  const Script big = {
      "create table t(k int auto_increment primary key, b longblob, v longtext character set "
      "utf8mb4)",
      "insert into t select seq, repeat(char(128 + seq using binary), 5 << 20), 'small' from " +
          Sequence(1, 3) + " s",
      // Characters that lie across the ends of any piece.
      "insert into t values (4, 0x3F, concat('?a''', repeat('\U0001F600\u4E16', 5 << 17))), "
      "(5, '', ''), (6, 0x00, null)",
      "insert into t select seq, 0xFF, 'x' from " + Sequence(7, 300) + " s"};
  ToMsSql differential;
  const Outcome outcome =
      differential.Run({"new", big, {}, {300}, {}, {"t"}, convert_mode::kOverwrite});
  EXPECT_THAT(outcome.tables[0][0], HasSubstr("<10485764 bytes, "));
  EXPECT_EQ(outcome.tables[0][4], "<5><0x><>");
  differential.Run({"among refused rows",
                    big,
                    {"create table t(k int primary key, b image, v nvarchar(max))",
                     "insert into t(k) values (2), (5), (300)"},
                    {300}});
  differential.Run(
      {"refused themselves",
       big,
       {"create table t(k int identity primary key, b varbinary(8000), v nvarchar(4000))"},
       {296},
       {"4 of 300 rows"}});
}

// Rows k = 1, 2, ... of a SQL Server table.
Script NumberedInMsSql(const std::string& columns, int count,
                       const std::function<std::string(int)>& value) {
  Script script{"create table t(k int not null, " + columns + ")"};
  for (int k = 1; k <= count; ++k) {
    script.size() == 1 || k % 500 == 1 ? script.emplace_back("insert into t values ")
                                       : script.back() += ',';
    script.back() += fmt::format("({},{})", k, value(k));
  }
  return script;
}

TEST(BlocksToMySql, RefusedRowsOfAMerge) {
  const auto text = [](int /*k*/) { return std::string("N'text'"); };
  const Script plain = NumberedInMsSql("v nvarchar(60) null", 4100, text);
  const Script few = NumberedInMsSql("v nvarchar(60) null", 1100, [](int k) {
    return k % 400 == 0 ? std::string("NULL") : k == 1001 ? "N'\u4E16 too long'" : "N'text'";
  });
  const Case cases[] = {
      {"duplicates at the edges of blocks",
       plain,
       {"create table t(k int primary key, v varchar(60))",
        "insert into t values (1,'old'),(2,'old'),(999,'old'),(1000,'old'),(1001,'old'),"
        "(3999,'old'),(4000,'old'),(4001,'old'),(4100,'old'),(9999,'mine')"},
       {4101}},
      {"a value too long",
       few,
       {"create table t(k int primary key, v varchar(5))"},
       {1099},
       {"1 of 1100 rows were not copied; the first: 1406 - "}},
      {"a number out of range",
       few,
       {"create table t(k tinyint primary key, v varchar(60))"},
       {127},
       {"Out of range"}},
      {"NULLs",
       few,
       {"create table t(k int, v varchar(60) not null default 'd')"},
       {1098},
       {"cannot be null"}},
      {"characters that the column has not",
       few,
       {"create table t(k int, v varchar(60) character set latin1)"},
       {1100},
       {"1 values of table t hold characters"}},
      {"a check",
       few,
       {"create table t(k int, v varchar(60), check (k <> 1050))"},
       {1099},
       {"(row 1050)"}},
      {"a table without transactions",
       few,
       {"create table t(k int primary key, v varchar(60)) engine=MyISAM",
        "insert into t values (1000, 'old')"},
       {1100}},
      {"a trigger that counts",
       few,
       {"create table n(rows_seen int)", "insert into n values (0)",
        "create table t(k int primary key, v varchar(60))", "insert into t values (700, 'old')",
        "create trigger x before insert on t for each row update n set rows_seen = rows_seen + 1"},
       {1100}},
      {"a parent that comes after its child",
       NumberedInMsSql("p int null", 1100,
                       [](int k) { return fmt::to_string(k == 600 ? 601 : k - 1); }),
       {"create table t(k int primary key, p int, foreign key (p) references t(k))",
        "insert into t values (0, null)"},
       {600},
       {"foreign key constraint fails"}},
  };
  ToMySql differential;
  for (const Case& each : cases) differential.Run(each);
}

TEST(BlocksToMySql, IdentityAndTypedValues) {
  ToMySql differential;
  const Outcome outcome = differential.Run(
      {"new tables",
       {"create table t(id int identity primary key, m money null, f float null, n decimal(38,10), "
        "d datetime2(7) null, g uniqueidentifier null, x varbinary(max) null)",
        "set identity_insert t on; insert into t(id, m, f, n, d, g, x) values "
        "(-1, 1.5, 1.0e300, -1.5, '0001-01-01 00:00:00.0000001', "
        "'00112233-4455-6677-8899-AABBCCDDEEFF', 0x), (0, null, null, 0, null, null, null), "
        "(5, -922337203685477.5808, 0.1, 1234567890123456789012345678.0123456789, '9999-12-31', "
        "null, 0x00); set identity_insert t off",
        "create table u(id int identity primary key, v nvarchar(max) null)",
        "insert into u(v) values (replicate(cast(N'\u4E16' as nvarchar(max)), 20000)), (N''), "
        "(N'x')"},
       {},
       {3, 3},
       {},
       {"t", "u"},
       convert_mode::kOverwrite});
  EXPECT_THAT(outcome.tables[0][0], testing::StartsWith("<-1><1.5000><1.0e+300><-1.5000000000>"));
  EXPECT_EQ(outcome.tables[0][1], "<0>NULLNULL<0.0000000000>NULLNULLNULL");
}

TEST(BlocksToMySql, ExactTypes) {
  ToMySql differential;
  const Outcome outcome = differential.Run(
      {"new tables",
       {"create table t(k int primary key, a datetime2(7) null, b time(7) null, c uniqueidentifier "
        "null, d datetimeoffset(3) null, e sql_variant null, f real null, g nchar(3) null, "
        "h rowversion)",
        "insert into t(k, a, b, c, d, e, f, g) values (1, '0001-01-01 00:00:00.0000001', "
        "'10:20:30.1234567', '00112233-4455-6677-8899-aabbccddeeff', '0020-01-02 03:04:05.125 "
        "-03:30', N'\u4E16', 3.4028234e38, N'a'), (2, null, null, null, null, null, null, null)"},
       {},
       {2},
       {},
       {"t"},
       convert_mode::kOverwrite,
       TypeMapping::Exact});
  EXPECT_THAT(outcome.tables[0][0],
              testing::StartsWith("<1><0001-01-01 00:00:00.0000001><10:20:30.1234567>"
                                  "<00112233-4455-6677-8899-AABBCCDDEEFF>"
                                  "<0020-01-02T03:04:05.125-03:30><\u4E16>"));
}

TEST(BlocksToMySql, ARefusedValueInARowOfBytesIsLeftOut) {
  ToMySql differential;
  differential.Run({"image too long for its column",
                    NumberedInMsSql("v image null", 300,
                                    [](int k) {
                                      return k == 120 ? "0x" + std::string(140'000, 'A')
                                                      : std::string("0xFF");
                                    }),
                    {"create table t(k int primary key, v blob)", "insert into t values (7, null)"},
                    {299},
                    {"(row 120)"}});
}

}  // namespace
}  // namespace dorvane::test
