// A table of every type and its extremes in the exact mapping, there and back in both directions.
// The servers' own tools read the cells, none of the program's code does.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <sstream>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using testing::Not;

using Lines = std::vector<std::string>;

/// How a server shows a value of a column, which stands for {}, so that both show the same.
struct Shown {
  std::string ms;
  std::string my;
};
const Shown kNumber{"convert(varchar(80), {})", "cast({} as char)"};
/// Long ones by their beginning and their length.
const Shown kText{
    "convert(varchar(6000), convert(varbinary(3000), convert(nvarchar(1500), {0})), 2) + ':' + "
    "convert(varchar(12), datalength(convert(nvarchar(max), {0})))",
    "concat(left(hex(convert({0} using utf16le)), 6000), ':', length(convert({0} using utf16le)))"};
const Shown kPaddedText{
    "convert(varchar(6000), convert(varbinary(3000), rtrim(convert(nvarchar(1500), {}))), 2) + ':'",
    "concat(hex(convert(rtrim({}) using utf16le)), ':')"};
const Shown kBytes{
    "convert(varchar(6000), convert(varbinary(3000), {0}), 2) + ':' + convert(varchar(12), "
    "datalength({0}))",
    "concat(left(hex({0}), 6000), ':', length({0}))"};
const Shown kMoment{"convert(varchar(40), {}, 121)", "cast({} as char)"};
const Shown kGuid{"convert(varchar(40), {})", "{}"};
const Shown kFloat{"convert(varchar(40), convert(float, {}), 3)", "cast({} as double)"};
const Shown kOffset{"replace(convert(varchar(40), {}, 126), ' ', '')", "{}"};

/// A column of the source and what becomes of it.
struct Specimen {
  std::string type;
  Lines values;  // literals of the source
  Shown shown;
  std::string there;      // the other server's type
  std::string back = {};  // the type that it comes back as; empty: the first one
  Shown back_shown = {};  // empty: as it was
};

std::string Column(std::size_t i) {
  return fmt::format("c{}", i);
}

std::string Digits(int count) {
  return std::string(static_cast<std::size_t>(count), '9');
}

/// Rows of every specimen's values in turn, the first row all NULL. Enough of them for a bulk load.
constexpr int kRows = 160;

std::string Rows(const std::vector<Specimen>& specimens) {
  std::string script;
  for (int row = 0; row < kRows; ++row) {
    script += fmt::format("insert into t values ({}", row);
    for (const Specimen& each : specimens) {
      script += ", " + (row == 0 ? "NULL" : each.values[row % each.values.size()]);
    }
    script += ");\n";
  }
  return script;
}

std::string TableOf(const std::vector<Specimen>& specimens) {
  std::string script = "create table t(id int not null primary key";
  for (std::size_t i = 0; i < specimens.size(); ++i) {
    script += fmt::format(", {} {} null", Column(i), specimens[i].type);
  }
  return script + ");\n";
}

Lines LinesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    const auto end = line.find_last_not_of(" \r\t");
    lines.push_back(line.substr(0, end == std::string::npos ? 0 : end + 1));
  }
  return lines;
}

/// Floats by their value, whatever digits a tool shows.
Lines Normalised(Lines cells, bool is_float) {
  if (!is_float) return cells;
  for (std::string& cell : cells) {
    if (cell != "NULL" && !cell.empty())
      cell = fmt::format("{:a}", std::strtod(cell.c_str(), nullptr));
  }
  return cells;
}

class Servers {
 public:
  Lines Ms(const std::string& database, std::size_t i, const Shown& shown) const {
    const bool is_float = shown.ms == kFloat.ms;
    const std::string expression = fmt::format(fmt::runtime(shown.ms), Column(i));
    const std::string query =
        fmt::format("select coalesce({}, 'NULL') from t order by id", expression);
    return Normalised(LinesOf(rig_.MsSql().Script(query + "\ngo\n", database)), is_float);
  }
  Lines My(const std::string& database, std::size_t i, const Shown& shown) const {
    const bool is_float = shown.my == kFloat.my;
    const std::string expression = fmt::format(fmt::runtime(shown.my), Column(i));
    // As a text MySQL cuts a float's digits.
    const std::string query =
        fmt::format(fmt::runtime(is_float ? "select {} from t order by id"
                                          : "select coalesce({}, 'NULL') from t order by id"),
                    expression);
    return Normalised(LinesOf(rig_.MySql().Query(query, database)), is_float);
  }
  std::string MsType(const std::string& database, std::size_t i) const {
    return rig_.MsSqlValue(
        fmt::format("select data_type + case when character_maximum_length is not null then '(' + "
                    "convert(varchar(10), character_maximum_length) + ')' when data_type = "
                    "'decimal' then '(' + convert(varchar(10), numeric_precision) + ',' + "
                    "convert(varchar(10), numeric_scale) + ')' when data_type in ('time', "
                    "'datetime2') then '(' + convert(varchar(10), datetime_precision) + ')' else "
                    "'' end from information_schema.columns where column_name = '{}'",
                    Column(i)),
        database);
  }
  std::string MyType(const std::string& database, std::size_t i) const {
    return rig_.MySqlValue(fmt::format("select column_type from information_schema.columns where "
                                       "table_schema = database() and column_name = '{}'",
                                       Column(i)),
                           database);
  }
  /// The log of an exact conversion of table t, which must succeed.
  std::string Convert(ServerKind source, const std::string& from, const std::string& to) const {
    ProgramRun run({.source = source,
                    .source_db = from,
                    .dest_db = to,
                    .tables = {"t"},
                    .types = TypeMapping::Exact});
    EXPECT_EQ(run.Wait(), 0) << run.Log() << run.Output();
    return run.Log();
  }

  Rig& rig_ = Rig::Get();
};

/// "tinyint unsigned" of "tinyint(3) unsigned": MariaDB shows widths that MySQL has given up.
std::string WithoutWidth(std::string type) {
  for (const char* word : {"tinyint", "smallint", "int", "bigint"}) {
    if (!type.starts_with(std::string(word) + "(") || type.starts_with("tinyint(1)")) continue;
    type.erase(type.find('('), type.find(')') - type.find('(') + 1);
  }
  return type;
}

/// Every value from the first to the last of a type.
std::vector<Specimen> MsSpecimens() {
  const std::string emoji = "N'a\U0001F600\u4E16'";
  return {
      {"tinyint", {"0", "255", "128"}, kNumber, "tinyint unsigned"},
      {"bit", {"0", "1"}, kNumber, "tinyint(1)"},
      {"smallint", {"-32768", "32767"}, kNumber, "smallint"},
      {"int", {"-2147483648", "2147483647"}, kNumber, "int"},
      {"bigint", {"-9223372036854775808", "9223372036854775807"}, kNumber, "bigint"},
      {"decimal(38,0)", {"-99999999999999999999999999999999999999", "1"}, kNumber, "decimal(38,0)"},
      {"numeric(38,30)",
       {"12345678.123456789012345678901234567890", "-0.5"},
       kNumber,
       "decimal(38,30)",
       "decimal(38,30)"},
      {"money",
       {"-922337203685477.5808", "922337203685477.5807"},
       {"convert(varchar(80), convert(decimal(19,4), {}))", "cast({} as char)"},
       "decimal(19,4)",
       "decimal(19,4)"},
      {"smallmoney",
       {"-214748.3648", "214748.3647"},
       {"convert(varchar(80), convert(decimal(10,4), {}))", "cast({} as char)"},
       "decimal(10,4)",
       "decimal(10,4)"},
      {"real", {"3.4028234e38", "-1.1754944e-38", "0.1", "16777217"}, kFloat, "float"},
      {"float",
       {"1.7976931348623157e308", "-2.2250738585072014e-308", "0.1", "9007199254740993", "1e22",
        "123456789.12345679"},
       kFloat,
       "double"},
      {"date",
       {"'0001-01-01'", "'9999-12-31'"},
       {"convert(varchar(10), {}, 121)", "cast({} as char)"},
       "date"},
      {"time(0)", {"'00:00:00'", "'23:59:59'"}, kMoment, "time", "time(0)"},
      {"time(6)", {"'00:00:00.000001'", "'23:59:59.999999'"}, kMoment, "time(6)"},
      {"time(7)",
       {"'00:00:00.123456'", "'23:59:59.9999990'"},
       {"convert(varchar(15), {}, 121)", "cast({} as char)"},
       "time(6)",
       "time(6)"},
      {"time(7)", {"'00:00:00.0000001'", "'23:59:59.9999999'"}, kMoment, "char(16)", "nchar(16)"},
      {"datetime",
       {"'1753-01-01 00:00:00.003'", "'9999-12-31 23:59:59.997'", "'2020-01-02 03:04:05.007'"},
       kMoment,
       "datetime(3)",
       "datetime2(3)"},
      {"datetime2(0)",
       {"'0001-01-01 00:00:00'", "'9999-12-31 23:59:59'"},
       kMoment,
       "datetime",
       "datetime2(0)"},
      {"datetime2(5)", {"'2020-02-29 23:59:59.99999'"}, kMoment, "datetime(5)"},
      {"datetime2(7)",
       {"'0001-01-01 00:00:00.123456'", "'9999-12-31 23:59:59.999999'"},
       {"convert(varchar(26), {}, 121)", "cast({} as char)"},
       "datetime(6)",
       "datetime2(6)"},
      {"datetime2(7)",
       {"'0001-01-01 00:00:00.0000001'", "'9999-12-31 23:59:59.9999999'"},
       kMoment,
       "char(27)",
       "nchar(27)"},
      {"smalldatetime",
       {"'1900-01-01 00:00'", "'2079-06-06 23:59'"},
       {"convert(varchar(19), {}, 121)", "cast({} as char)"},
       "datetime",
       "datetime2(0)"},
      {"datetimeoffset(7)",
       {"'0001-01-01 00:00:00.0000001 +00:00'", "'9999-12-31 00:00:00.9999999 -14:00'",
        "'2020-01-02 03:04:05.5 +05:30'"},
       kOffset,
       "varchar(34)",
       "nvarchar(34)",
       {"{}", "{}"}},
      {"char(5)", {"'ab'", "'caf\u00E9'", "''"}, kPaddedText, "char(5)", "nchar(5)"},
      {"char(300)", {"'ab'"}, kPaddedText, "varchar(300)", "nvarchar(300)"},
      {"varchar(300)", {"'a''b\\'", "''", "' x '"}, kText, "varchar(300)", "nvarchar(300)"},
      {"nchar(5)", {"N'\u4E16\u754C'"}, kPaddedText, "char(5)"},
      {"nvarchar(60)", {emoji, "N' trailing '", "N''"}, kText, "varchar(60)"},
      {"varchar(max)",
       {"replicate(convert(varchar(max), 'x'), 70000)", "''", "'x'", "'y'"},
       kText,
       "longtext",
       "nvarchar(-1)"},
      {"nvarchar(max)",
       {"replicate(convert(nvarchar(max), N'\u4E16'), 70000)", "N'\u4E16'", "N''", "N'x'"},
       kText,
       "longtext"},
      {"text", {"'old'"}, kText, "longtext", "nvarchar(-1)"},
      {"ntext", {"N'old\u4E16'"}, kText, "longtext", "nvarchar(-1)"},
      {"xml", {"'<a>\u00E9</a>'"}, kText, "longtext", "nvarchar(-1)"},
      {"binary(5)", {"0x0102", "0xFFFFFFFFFF", "0x2020202020"}, kBytes, "binary(5)"},
      {"binary(300)", {"0x0102"}, kBytes, "varbinary(300)", "varbinary(300)"},
      {"varbinary(300)", {"0x", "0x00", "0x0102"}, kBytes, "varbinary(300)"},
      {"varbinary(max)",
       {"convert(varbinary(max), replicate(convert(varchar(max), 'x'), 70000))", "0x", "0x00",
        "0x01"},
       kBytes,
       "longblob"},
      {"image", {"0x00FF"}, kBytes, "longblob", "varbinary(-1)"},
      {"uniqueidentifier",
       {"'00112233-4455-6677-8899-aabbccddeeff'"},
       kGuid,
       "char(36)",
       "nchar(36)"},
      {"sql_variant", {"N'text\u4E16'", "'x'"}, kText, "longtext", "nvarchar(-1)"},
  };
}

std::vector<Specimen> MySpecimens() {
  const std::string emoji = "'a\U0001F600\u4E16'";
  const Shown date{"convert(varchar(10), {}, 121)", kMoment.my};
  return {
      {"tinyint", {"-128", "127"}, kNumber, "smallint", "smallint"},
      {"tinyint unsigned", {"0", "255"}, kNumber, "tinyint"},
      {"tinyint(1)", {"0", "1"}, kNumber, "bit"},
      {"tinyint(1)", {"0", "1", "2"}, kNumber, "smallint", "smallint"},
      {"smallint unsigned", {"0", "65535"}, kNumber, "int", "int"},
      {"mediumint", {"-8388608", "8388607"}, kNumber, "int", "int"},
      {"mediumint unsigned", {"16777215"}, kNumber, "int", "int"},
      {"int", {"-2147483648", "2147483647"}, kNumber, "int"},
      {"int unsigned", {"4294967295"}, kNumber, "bigint", "bigint"},
      {"bigint", {"-9223372036854775808", "9223372036854775807"}, kNumber, "bigint"},
      {"bigint unsigned", {"18446744073709551615", "0"}, kNumber, "decimal(20,0)", "decimal(20,0)"},
      {"decimal(38,10)",
       {"-9999999999999999999999999999.9999999999", "0"},
       kNumber,
       "decimal(38,10)"},
      {"decimal(38,0)", {"-99999999999999999999999999999999999999", "7"}, kNumber, "decimal(38,0)"},
      {"decimal(65,30)",
       {"-12345678.123456789012345678901234567891"},
       kNumber,
       "decimal(38,30)",
       "decimal(38,30)"},
      {"decimal(65,0)", {Digits(65), "-" + Digits(65), "5"}, kNumber, "varchar(67)", "varchar(67)"},
      {"float",
       {"3.4028234663852886e38", "-1.1754943508222875e-38", "0.1", "16777216"},
       kFloat,
       "real"},
      {"double",
       {"1.7976931348623157e308", "-2.2250738585072014e-308", "0.1", "9007199254740993",
        "123456789.12345679"},
       kFloat,
       "float"},
      {"bit(1)", {"b'0'", "b'1'"}, {kNumber.ms, "cast({} + 0 as char)"}, "bit", "tinyint(1)"},
      {"bit(12)",
       {"b'111111111111'", "b'1'"},
       {"convert(varchar(40), {}, 2)", "lpad(hex({}), 4, '0')"},
       "binary(2)",
       "binary(2)"},
      {"date", {"'0001-01-01'", "'9999-12-31'"}, date, "date"},
      {"date",
       {"'0000-00-00'", "'2020-02-31'", "'2020-00-00'"},
       {"coalesce(convert(varchar(10), {}, 121), '-')", "'-'"},
       "date"},
      {"datetime", {"'0001-01-01 00:00:00'", "'9999-12-31 23:59:59'"}, kMoment, "datetime2(0)"},
      {"datetime(3)", {"'2020-01-02 03:04:05.007'"}, kMoment, "datetime2(3)"},
      {"datetime(6)",
       {"'0001-01-01 00:00:00.000001'", "'9999-12-31 23:59:59.999999'"},
       kMoment,
       "datetime2(6)"},
      {"timestamp(6)",
       {"'1970-01-02 00:00:01.000001'", "'2038-01-18 03:14:07.999999'"},
       kMoment,
       "datetime2(6)",
       "datetime(6)"},
      {"time", {"'00:00:00'", "'23:59:59'"}, kMoment, "time(0)"},
      {"time(6)", {"'00:00:00.000001'", "'23:59:59.999999'"}, kMoment, "time(6)"},
      {"time(6)",
       {"'-838:59:59.000000'", "'838:59:58.999999'", "'-00:00:00.000001'", "'24:00:00'",
        "'10:20:30.5'"},
       {"convert(varchar(40), {})", kMoment.my},
       "varchar(17)",
       "varchar(17)"},
      {"year", {"1901", "2155"}, kNumber, "smallint", "smallint"},
      {"char(5)", {"'ab'", "''", "'\u4E16'"}, kPaddedText, "nchar(5)"},
      {"char(3)", {emoji}, kText, "nvarchar(4)", "varchar(4)"},
      {"varchar(300)", {"'a''b'", "''", "' x '", emoji}, kText, "nvarchar(300)"},
      {"varchar(300) character set latin1", {"'caf\u00E9'"}, kText, "nvarchar(300)"},
      {"varchar(5000)", {emoji, "repeat('x', 5000)"}, kText, "nvarchar(-1)", "longtext"},
      {"tinytext", {emoji}, kText, "nvarchar(-1)", "longtext"},
      {"text", {emoji}, kText, "nvarchar(-1)", "longtext"},
      {"mediumtext",
       {"repeat('\u4E16', 70000)", "'x'", "''", "'y'"},
       kText,
       "nvarchar(-1)",
       "longtext"},
      {"longtext", {emoji}, kText, "nvarchar(-1)"},
      {"enum('a','it''s','\u4E16','with\\\\slash')",
       {"'it''s'", "'\u4E16'", "4"},
       kText,
       "nvarchar(10)",
       "varchar(10)"},
      {"enum('a','b')", {"'a'", "''"}, kText, "nvarchar(1)", "varchar(1)"},
      {"set('a','b')", {"'a,b'", "''"}, kText, "nvarchar(3)", "varchar(3)"},
      {"json", {"'{\"a\": [1, 2]}'", "'[]'"}, kText, "nvarchar(-1)", "longtext"},
      {"json", {"'{}'", "'5'"}, kText, "nvarchar(-1)", "longtext"},
      {"binary(5)", {"0x0102", "0xFFFFFFFFFF"}, kBytes, "binary(5)"},
      {"varbinary(300)", {"x''", "0x00", "0x0102"}, kBytes, "varbinary(300)"},
      {"varbinary(9000)", {"0x00FF"}, kBytes, "varbinary(-1)", "longblob"},
      {"tinyblob", {"0x00FF"}, kBytes, "varbinary(-1)", "longblob"},
      {"blob", {"0x00FF"}, kBytes, "varbinary(-1)", "longblob"},
      {"mediumblob",
       {"repeat(0xFF, 70000)", "x''", "0x01", "0x00"},
       kBytes,
       "varbinary(-1)",
       "longblob"},
      {"longblob", {"0x00FF"}, kBytes, "varbinary(-1)"},
      {"point", {"st_geomfromtext('POINT(1 2)')"}, kBytes, "varbinary(-1)", "longblob"},
  };
}

TEST(ExactTypes, SqlServerToMySqlAndBack) {
  const std::vector<Specimen> specimens = MsSpecimens();
  const Servers servers;
  const std::string first = Rig::Get().NewDatabases();
  const std::string last = Rig::Get().NewMsSqlDatabase();
  Rig::Get().MsSql().Script(TableOf(specimens) + Rows(specimens) + "\ngo\n", first);
  const std::string log = servers.Convert(ServerKind::MsSql, first, first);
  EXPECT_THAT(log, HasSubstr("became CHAR(27), since MySQL keeps six digits of a second"));
  EXPECT_THAT(log, HasSubstr("became CHAR(16), since MySQL keeps six digits of a second"));
  EXPECT_THAT(log, HasSubstr("became LONGTEXT with the text of its values"));
  const std::string log_back = servers.Convert(ServerKind::MySql, first, last);
  EXPECT_THAT(log_back, Not(HasSubstr("Note - Table")));
  for (std::size_t i = 0; i < specimens.size(); ++i) {
    const Specimen& each = specimens[i];
    SCOPED_TRACE(each.type + " as " + each.there);
    const Lines cells = servers.Ms(first, i, each.shown);
    EXPECT_EQ(cells.size(), kRows);
    EXPECT_EQ(WithoutWidth(servers.MyType(first, i)), each.there);
    EXPECT_EQ(servers.My(first, i, each.shown), cells);
    EXPECT_EQ(servers.MsType(last, i), each.back.empty()
                                           ? each.type == "varbinary(max)"  ? "varbinary(-1)"
                                             : each.type == "nvarchar(max)" ? "nvarchar(-1)"
                                                                            : each.type
                                           : each.back);
    EXPECT_EQ(servers.Ms(last, i, each.back_shown.ms.empty() ? each.shown : each.back_shown),
              cells);
  }
}

TEST(ExactTypes, MySqlToSqlServerAndBack) {
  const std::vector<Specimen> specimens = MySpecimens();
  const Servers servers;
  const std::string first = Rig::Get().NewDatabases();
  const std::string last = Rig::Get().NewDatabases();
  Rig::Get().MySql().Query("set sql_mode = 'ALLOW_INVALID_DATES,NO_AUTO_VALUE_ON_ZERO';\n" +
                               TableOf(specimens) + Rows(specimens),
                           first);
  const std::string log = servers.Convert(ServerKind::MySql, first, first);
  for (const char* note : {"c14 is varchar(67)", "c13 is decimal(38,30)", "became varchar(17)",
                           "159 dates that do not exist became NULL", "became nvarchar(4)",
                           "became varbinary(max) with the bytes"}) {
    EXPECT_THAT(log, HasSubstr(note));
  }
  servers.Convert(ServerKind::MsSql, first, last);
  for (std::size_t i = 0; i < specimens.size(); ++i) {
    const Specimen& each = specimens[i];
    SCOPED_TRACE(Column(i) + " " + each.type + " as " + each.there);
    const Lines cells = servers.My(first, i, each.shown);
    EXPECT_EQ(cells.size(), kRows);
    EXPECT_EQ(servers.MsType(first, i), each.there);
    EXPECT_EQ(servers.Ms(first, i, each.shown), cells);
    EXPECT_EQ(WithoutWidth(servers.MyType(last, i)),
              each.back.empty() ? each.type.substr(0, each.type.find(" character")) : each.back);
    EXPECT_EQ(servers.My(last, i, each.back_shown.my.empty() ? each.shown : each.back_shown),
              cells);
  }
}

}  // namespace
}  // namespace dorvane::test
