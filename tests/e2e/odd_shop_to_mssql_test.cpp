// A shop whose every table is odd in a way of its own. What arrives on SQL Server is compared cell
// by cell, and each difference must have its line: no line without a difference either.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/e2e/rig.h"
#include "tests/endpoint/recorders.h"
#include "tests/support/planned_endpoint.h"

namespace dorvane::test {

namespace {

using testing::UnorderedElementsAreArray;
using namespace std::literals;

struct Specimen {
  std::string table;
  std::string definition;         // what stands in the brackets of MySQL's create table
  std::vector<std::string> rows;  // what stands in those of an insert
  std::vector<std::string> arrived;
  std::vector<std::string> lines{};  // behind "Table <name>: "; those of errors begin with "!"
  bool is_mariadbs = false;
  std::string inserted = {};  // the columns that the rows are for, in brackets; all that one sees
};

const Specimen kShop[] = {
    {"character sets",
     "k int primary key, c varchar(20) character set cp1251, e enum('да','не'), s set('ж'), "
     "g text character set greek, w char(9) character set latin1",
     {"1, 'Привет', 'не', 'ж', 'αβγ', 'café €'"},
     {"<1><Привет><не><ж><αβγ><café €>"}},
    {"keys of letters",
     "k enum('да','не','нет') primary key",
     {"'да'", "'не'", "'нет'"},
     {"<да>", "<не>", "<нет>"}},
    {"nothing",
     "k int primary key, c char(0), v varchar(0), b binary(0)",
     {"1, '', '', ''"},
     {"<1><><><0x00>"}},
    {"zeros",
     "k int primary key, t text character set latin1, n longtext",
     {"1, 'a\\0b', 'ж\\0\\0'", "2, 'c', repeat('\\0', 200)"},
     {"<1><a^b><ж^^>", "<2><c><" + std::string(200, '^') + ">"}},
    {"hidden",
     "k int invisible auto_increment primary key, status varchar(9) not null default "
     "'open', secret int invisible default 7, closed int",
     {"default, 'done', default, null"},
     {"<1><done><7>NULL"},
     {},
     false,
     "(k, status, secret, closed)"},
    {"moments",
     "k int primary key, d date, m datetime(6), t time",
     {"1, '0000-00-00', '2020-02-31', '00:00:01'", "2, '2020-00-00', '1700-01-01', '25:00:00'",
      "3, '2020-02-29', '2020-02-29 10:00:00.5', '-01:00:00'"},
     {"<1><1753-01-01 00:00:00><1753-01-01 00:00:00><1899-12-30 00:00:01>",
      "<2><1753-01-01 00:00:00><1753-01-01 00:00:00><1899-12-31 01:00:00>",
      "<3><2020-02-29 00:00:00><2020-02-29 10:00:00><1899-12-29 23:00:00>"},
     {"3 dates that do not exist became 1753-01-01, 1 dates before 1753-01-01 were raised to it, 1 "
      "times were put on 1899-12-30, 2 times below zero or beyond a day were added to 1899-12-30, "
      "1 fractions of a second were cut"}},
    {"below zero",
     "k int primary key, n tinyint, p tinyint",
     {"1, -128, 127"},
     {"<1><-128><127>"},
     {"column n is smallint: it holds values below zero"}},
    {"child of below zero",
     "k int primary key, n tinyint, constraint below foreign key (n) references `parent below "
     "zero` "
     "(n)",
     {"1, 5"},
     {"<1><5>"},
     {"column n is smallint: it holds values below zero"}},
    {"parent below zero",
     "n tinyint primary key",
     {"-5", "5"},
     {"<-5>", "<5>"},
     {"column n is smallint: it holds values below zero"}},
    {"long numbers",
     "k int primary key, f decimal(65,2), x decimal(65,30) not null default 1.5",
     {"1, 12345678901234567890.50, 12345678901234567890123456789012345.5", "2, -0.01, 0"},
     {"<1><12345678901234567890.50>"
      "<12345678901234567890123456789012345.500000000000000000000000000000>",
      "<2><-0.01><0.000000000000000000000000000000>"},
     {"column f is numeric(38,2): SQL Server has no numeric(65,2)",
      "column x is varchar(67): SQL Server has no numeric(65,30)"}},
    {"counted by halves",
     "k double auto_increment primary key",
     {"1", "2"},
     {"<1>", "<2>"},
     {"column k is no identity: SQL Server has none of type float"},
     true},
    {"unique beginnings",
     "k int primary key, t text, v varchar(100), unique key ut (t(3)), unique key uv (v(3))",
     {"1, 'abc', 'abc'", "2, 'abd', 'abd'"},
     {"<1><abc><abc>", "<2><abd><abd>"},
     {"index ut was not carried: the beginning of a column too long for an index"}},
    {"words",
     "k int primary key, v varchar(100), fulltext key ft (v), key begins (v(9))",
     {"1, 'a'"},
     {"<1><a>"},
     {"index ft was not carried: full text"}},
    {"no mail",
     "k int primary key, mail varchar(50) unique, a int, b int, unique key ab (a, b)",
     {"1, null, 1, null", "2, null, 1, null", "3, 'x', 1, 1"},
     {"<1>NULL<1>NULL", "<2>NULL<1>NULL", "<3><x><1><1>"},
     {"unique index mail leaves out rows with NULL, of which SQL Server takes one only",
      "unique index ab leaves out rows with NULL, of which SQL Server takes one only"}},
    {"one mail",
     "k int primary key, mail varchar(50) unique",
     {"1, null", "2, 'x'"},
     {"<1>NULL", "<2><x>"}},
    {"case",
     "k varchar(9) character set utf8mb4 collate utf8mb4_bin primary key",
     {"'a'", "'A'"},
     {"<A>", "<a>"},
     {"column k has the collation Latin1_General_100_BIN2, since keys differ in case only"}},
    {"na]me`s", "`k]` int primary key, `a``b` int, key `i]` (`a``b`)", {"1, 2"}, {"<1><2>"}},
    {"children",
     "k int primary key, a int, `b b` int, constraint one foreign key (a) references parents (k) "
     "on "
     "delete cascade, constraint two foreign key (`b b`) references parents (k) on delete cascade",
     {"1, 1, 2", "2, 2, null"},
     {"<1><1><2>", "<2><2>NULL"},
     {"relationship [two] has No Action for its rules, since SQL Server takes no cycles and no "
      "second path of them"}},
    {"bytes",
     "k int primary key, d varbinary(9) not null default x'ff00aa', e binary(2) default 'a'",
     {"1, 'x', 'b'"},
     {"<1><0x78><0x6200>"}},
    {"parents", "k int primary key", {"1", "2"}, {"<1>", "<2>"}},
};

// Defaults are seen in a row that SQL Server makes.
const Specimen kDefaults = {
    "defaults",
    "k int primary key, a time default '25:00:00', b date default '2020-00-00', c varchar(9) "
    "default '007', d varbinary(9) not null default x'ff00aa', e text default 'x''y', f "
    "varchar(30) "
    "default current_timestamp(), g varchar(40) default uuid(), h int default 5",
    {"1, null, null, null, 'x', null, null, null, null"},
    {"<1>NULLNULLNULL<0x78>NULLNULLNULLNULL"},
    {"the default of column f was left off: current_timestamp()",
     "the default of column g was left off: uuid()"},
    true};

class OddShop : public testing::TestWithParam<Way> {
 protected:
  OddShop() : database_(Rig::Get().NewDatabases()) {
    for (const Specimen& each : kShop) Add(each);
    Add(kDefaults);
    for (IDatabase* endpoint :
         {static_cast<IDatabase*>(&source_), static_cast<IDatabase*>(&dest_)}) {
      endpoint->SetServer("127.0.0.1");
      endpoint->SetDbName(database_);
    }
    source_.SetPortNo(Rig::Get().MySql().Port());
    source_.SetUserId("root");
    source_.SetPassword("secret");
    dest_.SetPortNo(Rig::Get().MsSql().Port());
    dest_.SetUserId("sa");
    dest_.SetPassword("secret");
    source_.Take(GetParam());
    source_.SetCopyTableContent(true);
    source_.SetConvertRelationships(true);
  }

  /// The lines of a conversion, each behind its table's name. A preview foretells them but for
  /// these.
  std::vector<std::string> Convert(std::int16_t mode,
                                   const std::vector<std::string>& unforetold = {}) {
    source_.SetConvertMode(mode);
    NameList tables;
    for (const Specimen& each : shop_) tables.push_back(each.table);
    const std::vector<std::string> foretold =
        LinesOf([&] { source_.RehearseTransfer(dest_, tables, [](std::string_view) {}); });
    std::vector<std::string> lines = LinesOf([&] { source_.TransferToDest(dest_, tables); });
    EXPECT_THAT(Disagreement(foretold, lines), testing::ElementsAreArray(unforetold));
    return lines;
  }

  template <typename Run>
  std::vector<std::string> LinesOf(Run run) {
    EventRecorder events;
    host_.notes.clear();
    source_.SetListener(&events);
    run();
    source_.SetListener(nullptr);
    std::vector<std::string> lines = host_.notes;
    for (const std::string& error : events.Errors()) lines.push_back("!" + error);
    return lines;
  }

  void ExpectLines(const std::vector<std::string>& lines) {
    std::vector<testing::Matcher<std::string>> expected;
    for (const Specimen& each : shop_) {
      for (const std::string& line : each.lines) {
        if (line.starts_with('!')) {
          expected.push_back(testing::HasSubstr("data of table " + MsSqlName(DestName(each)) +
                                                " - " + line.substr(1)));
        } else {
          expected.push_back("Table " + each.table + ": " + line);
        }
      }
    }
    EXPECT_THAT(lines, UnorderedElementsAreArray(expected));
  }

  std::string DestName(const Specimen& each) const {
    std::string name = each.table;
    if (source_.Options().replace_space_with_underscore) std::ranges::replace(name, ' ', '_');
    return name;
  }

  Specimen& Find(const std::string& table) {
    return *std::ranges::find(shop_, table, &Specimen::table);
  }

  void ExpectArrived() {
    const auto connection = dest_.OpenConnection(true);
    for (const Specimen& each : shop_) {
      EXPECT_EQ(Content(*connection, DestName(each)), each.arrived) << each.table;
    }
  }

  static std::vector<std::string> Content(ado::Connection& connection, const std::string& table) {
    std::vector<std::string> lines;
    ado::Recordset rows = connection.Execute("select * from " + MsSqlName(table) + " order by 1");
    for (; !rows.AtEnd(); rows.MoveNext()) {
      std::string line;
      for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
        ado::Field& field = rows.Field(i);
        const auto* bytes = std::get_if<ado::Binary>(&field.Value());
        std::string text = bytes != nullptr ? HexCode(bytes->bytes) : field.Text();
        std::ranges::replace(text, '\0', '^');
        line += field.IsNull() ? "NULL" : "<" + text + ">";
      }
      lines.push_back(std::move(line));
    }
    return lines;
  }

  void Add(const Specimen& each) {
    if (each.is_mariadbs && !Rig::Get().MySql().IsMariaDb()) return;
    std::string script = "set sql_mode = 'ALLOW_INVALID_DATES', foreign_key_checks = 0;";
    script += fmt::format("create table {} ({});", MySqlName(each.table), each.definition);
    const std::string target = MySqlName(each.table) + each.inserted;
    for (const std::string& row : each.rows) {
      script += fmt::format("insert into {} values ({});", target, row);
    }
    Rig::Get().MySql().Query(script, database_);
    shop_.push_back(each);
  }

  HostRecorder host_;
  std::string database_;
  std::vector<Specimen> shop_;
  PlannedEndpoint<MySqlDatabase> source_{host_};
  MsSqlDatabase dest_{host_};
};

TEST_P(OddShop, OverwritesNightAfterNight) {
  for (int night = 0; night < 2; ++night) {
    ExpectLines(Convert(convert_mode::kOverwrite));
    ExpectArrived();
  }
  const auto connection = dest_.OpenConnection(true);
  connection->Execute("delete from bytes; insert into bytes(k) values (2)");
  EXPECT_THAT(Content(*connection, "bytes"), testing::ElementsAre("<2><0xFF00AA><0x6100>"));
  if (!Rig::Get().MySql().IsMariaDb()) return;
  connection->Execute("delete from defaults; insert into defaults(k) values (2)");
  EXPECT_THAT(Content(*connection, "defaults"),
              testing::ElementsAre("<2><1899-12-31 01:00:00><1753-01-01 00:00:00><007><0xFF00AA>"
                                   "<x'y>NULLNULL<5>"));
}

TEST_P(OddShop, MergesNightAfterNight) {
  // A table that is there compares as it does.
  dest_.OpenConnection(true)->Execute("create table [case] (k varchar(9) not null primary key)");
  Find("case").arrived = {"<A>"};
  Find("case").lines = {"!1 of 2 rows were not copied; the first: 2627 - "};
  ExpectLines(Convert(convert_mode::kMerge));
  ExpectArrived();
  for (Specimen& each : shop_) {
    const std::size_t rows = each.rows.size();
    each.lines = {fmt::format("{0} of {0} rows were there already and were left out", rows)};
  }
  // 'A' is there, 'a' is not.
  Find("case").lines = {"!1 of 2 rows were not copied; the first: 2627 - ",
                        "1 of 2 rows were there already and were left out"};
  ExpectLines(Convert(convert_mode::kMerge));
  ExpectArrived();

  // Children wait for the parents that are listed behind them.
  dest_.OpenConnection(true)->Execute("delete from children; delete from parents");
  Find("children").lines = {"2 of 2 rows wait for the rows that they refer to"};
  Find("parents").lines.clear();
  ExpectLines(Convert(convert_mode::kMerge,
                      {"+Table children: 2 of 2 rows wait for the rows that they refer to"}));
  ExpectArrived();
}

TEST_P(OddShop, UnderscoresReachEveryName) {
  source_.SetReplaceSpaceWithUnderscore(true);
  ExpectLines(Convert(convert_mode::kMerge));
  ExpectArrived();
}

TEST_P(OddShop, AKeyFromElsewhereKeepsItsTable) {
  Convert(convert_mode::kOverwrite);
  dest_.OpenConnection(true)->Execute("create table outside (k bigint references parents (k))");
  Rig::Get().MySql().Query("insert into parents values (3)", database_);
  std::vector<std::string> lines = Convert(convert_mode::kOverwrite);
  const auto kept = std::ranges::find_if(lines, [](const std::string& line) {
    return line.ends_with(
        "Could not drop table 'parents' due to relationship(s) with other table(s)");
  });
  ASSERT_NE(kept, lines.end());
  lines.erase(kept);
  ExpectLines(lines);
  ExpectArrived();
}

TEST_P(OddShop, ATableWithoutItsKeyGetsIt) {
  dest_.OpenConnection(true)->Execute("create table parents (k bigint not null)");
  Find("parents").lines = {"it was there without its primary key, which was added"};
  ExpectLines(Convert(convert_mode::kMerge));
  ExpectArrived();
}

TEST_P(OddShop, RulesAreNoFailureAndARefusedRowIsOne) {
  Job job{.source = ServerKind::MySql,
          .source_db = database_,
          .dest_db = database_,
          .tables = {"moments", "words", "no mail", "below zero"}};
  ProgramRun good(job);
  EXPECT_EQ(good.Wait(), 0) << good.Log();
  EXPECT_THAT(good.Log(), testing::HasSubstr("Note - Table words: index ft was not carried"));
  dest_.OpenConnection(true)->Execute("create table [case] (k varchar(9) not null primary key)");
  job.tables = {"case"};
  job.mode = convert_mode::kMerge;
  ProgramRun bad(job);
  EXPECT_EQ(bad.Wait(), 1);
  EXPECT_THAT(bad.Log(), testing::HasSubstr("\nDone, with errors.\n"));
}

class ExactOddShop : public OddShop {};

TEST_P(ExactOddShop, IsForetoldInBothModes) {
  ConversionOptions options = source_.Options();
  options.types = TypeMapping::Exact;
  source_.SetOptions(options);
  for (const std::int16_t mode :
       {convert_mode::kOverwrite, convert_mode::kOverwrite, convert_mode::kMerge}) {
    EXPECT_FALSE(Convert(mode).empty());
  }
}

INSTANTIATE_TEST_SUITE_P(Ways, ExactOddShop, testing::Values(Way{"InBlocks"}),
                         [](const auto& each) { return std::string(each.param.name); });
INSTANTIATE_TEST_SUITE_P(Ways, OddShop,
                         testing::Values(Way{"InBlocks"}, Way{"RowByRow", CopyStrategy::RowByRow},
                                         Way{"FourTablesAtOnce", CopyStrategy::Blocks, 4}),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace dorvane::test
