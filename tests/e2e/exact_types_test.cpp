// A table of every type and its extremes in the exact mapping, there and back in both directions.
// The servers' own tools read the cells, none of the program's code does.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using testing::Not;

using Lines = std::vector<std::string>;

constexpr int kRows = 160;  // enough for a bulk load

/// How a server shows a value of a column, which stands for {0}, so that both show the same.
struct Shown {
  std::string ms;
  std::string my;
};
const std::map<std::string, Shown> kShown{
    {"number", {"convert(varchar(80), {0})", "cast({0} as char)"}},
    {"decimal 19,4", {"convert(varchar(80), convert(decimal(19,4), {0}))", "cast({0} as char)"}},
    {"decimal 10,4", {"convert(varchar(80), convert(decimal(10,4), {0}))", "cast({0} as char)"}},
    // As a text MySQL cuts a float's digits.
    {"float", {"convert(varchar(40), convert(float, {0}), 3)", "cast({0} as double)"}},
    {"moment", {"convert(varchar(40), {0}, 121)", "cast({0} as char)"}},
    {"moment 10", {"convert(varchar(10), {0}, 121)", "cast({0} as char)"}},
    {"moment 15", {"convert(varchar(15), {0}, 121)", "cast({0} as char)"}},
    {"moment 19", {"convert(varchar(19), {0}, 121)", "cast({0} as char)"}},
    {"moment 26", {"convert(varchar(26), {0}, 121)", "cast({0} as char)"}},
    {"no date", {"coalesce(convert(varchar(10), {0}, 121), '-')", "'-'"}},
    {"offset", {"replace(convert(varchar(40), {0}, 126), ' ', '')", "{0}"}},
    {"guid", {"convert(varchar(40), {0})", "{0}"}},
    {"bit", {"convert(varchar(80), {0})", "cast({0} + 0 as char)"}},
    {"bits", {"convert(varchar(40), {0}, 2)", "lpad(hex({0}), 4, '0')"}},
    // Long ones by their beginning and their length.
    {"text",
     {"convert(varchar(6000), convert(varbinary(3000), convert(nvarchar(1500), {0})), 2) + ':' + "
      "convert(varchar(12), datalength(convert(nvarchar(max), {0})))",
      "concat(left(hex(convert({0} using utf16le)), 6000), ':', length(convert({0} using "
      "utf16le)))"}},
    {"padded text",
     {"convert(varchar(6000), convert(varbinary(3000), rtrim(convert(nvarchar(1500), {0}))), 2)",
      "hex(convert(rtrim({0}) using utf16le))"}},
    {"bytes",
     {"convert(varchar(6000), convert(varbinary(3000), {0}), 2) + ':' + convert(varchar(12), "
      "datalength({0}))",
      "concat(left(hex({0}), 6000), ':', length({0}))"}}};

/// A column of the source and what becomes of it.
struct Specimen {
  std::string name;
  std::string type;
  std::string there;  // the other server's type
  std::string back;   // the type that it comes back as
  std::string shown;  // of kShown
  Lines values;       // literals of the source
};

std::string Trimmed(const std::string& text) {
  const std::size_t end = text.find_last_not_of(" \r\t");
  return text.substr(0, end == std::string::npos ? 0 : end + 1);
}

std::vector<Specimen> ReadSpecimens(const char* file) {
  constexpr std::string_view kSeparator = " | ";
  std::vector<Specimen> specimens;
  std::ifstream lines(std::string(SPECIMEN_FOLDER) + "/" + file);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("#")) continue;
    Lines fields;
    for (std::size_t at = 0; at != std::string::npos;) {
      const std::size_t end = line.find(kSeparator, at);
      fields.push_back(Trimmed(line.substr(at, end - at)));
      at = end == std::string::npos ? end : end + kSeparator.size();
    }
    specimens.push_back({fmt::format("c{}", specimens.size()),
                         fields.at(0),
                         fields.at(1),
                         fields.at(2),
                         fields.at(3),
                         {fields.begin() + 4, fields.end()}});
  }
  return specimens;
}

/// The table with rows of every specimen's values in turn, the first row all NULL.
std::string TableOf(const std::vector<Specimen>& specimens) {
  std::string script = "create table t(id int not null primary key";
  for (const Specimen& each : specimens)
    script += fmt::format(", {} {} null", each.name, each.type);
  script += ");\n";
  for (std::size_t row = 0; row < kRows; ++row) {
    script += fmt::format("insert into t values ({}", row);
    for (const Specimen& each : specimens) {
      script += ", " + (row == 0 ? "NULL" : each.values[row % each.values.size()]);
    }
    script += ");\n";
  }
  return script;
}

/// The cells of a column; floats by their value, whatever digits a tool shows.
Lines CellsOf(ServerKind server, const std::string& database, const Specimen& specimen) {
  Rig& rig = Rig::Get();
  const bool is_float = specimen.shown == "float";
  const Shown& shown = kShown.at(specimen.shown);
  const bool is_ms_sql = server == ServerKind::MsSql;
  const std::string cell =
      fmt::format(fmt::runtime(is_ms_sql ? shown.ms : shown.my), specimen.name);
  const std::string query =
      fmt::format(fmt::runtime(is_float && !is_ms_sql ? "select {} from t order by id"
                                                      : "select coalesce({}, 'NULL') from t order "
                                                        "by id"),
                  cell);
  std::istringstream text(is_ms_sql ? rig.MsSql().Script(query + "\ngo\n", database)
                                    : rig.MySql().Query(query, database));
  Lines cells;
  for (std::string line; std::getline(text, line);) {
    line = Trimmed(line);
    const bool is_number = is_float && line != "NULL" && !line.empty();
    cells.push_back(is_number ? fmt::format("{:a}", std::strtod(line.c_str(), nullptr)) : line);
  }
  return cells;
}

std::string TypeOf(ServerKind server, const std::string& database, const std::string& column) {
  if (server == ServerKind::MsSql) {
    return Rig::Get().MsSqlValue(
        fmt::format("select data_type + case when character_maximum_length = -1 then '(max)' when "
                    "character_maximum_length is not null then '(' + convert(varchar(10), "
                    "character_maximum_length) + ')' when data_type = 'decimal' then '(' + "
                    "convert(varchar(10), numeric_precision) + ',' + convert(varchar(10), "
                    "numeric_scale) + ')' when data_type in ('time', 'datetime2') then '(' + "
                    "convert(varchar(10), datetime_precision) + ')' else '' end from "
                    "information_schema.columns where column_name = '{}'",
                    column),
        database);
  }
  std::string type =
      Rig::Get().MySqlValue(fmt::format("select column_type from information_schema.columns where "
                                        "table_schema = database() and column_name = '{}'",
                                        column),
                            database);
  // MariaDB shows widths that MySQL has given up: "tinyint(3) unsigned".
  for (const char* word : {"tinyint", "smallint", "int", "bigint"}) {
    if (!type.starts_with(std::string(word) + "(") || type.starts_with("tinyint(1)")) continue;
    type.erase(type.find('('), type.find(')') - type.find('(') + 1);
  }
  return type;
}

/// The log of an exact conversion of table t, which must succeed.
std::string Convert(ServerKind source, const std::string& from, const std::string& to) {
  ProgramRun run({.source = source,
                  .source_db = from,
                  .dest_db = to,
                  .tables = {"t"},
                  .types = TypeMapping::Exact});
  EXPECT_EQ(run.Wait(), 0) << run.Log() << run.Output();
  return run.Log();
}

void ExpectThereAndBack(ServerKind source, const std::vector<Specimen>& specimens,
                        const std::string& first, const std::string& last) {
  const ServerKind other = source == ServerKind::MsSql ? ServerKind::MySql : ServerKind::MsSql;
  ASSERT_GT(specimens.size(), 30U);
  for (const Specimen& each : specimens) {
    SCOPED_TRACE(each.name + ", " + each.type + " as " + each.there);
    const Lines cells = CellsOf(source, first, each);
    EXPECT_EQ(cells.size(), kRows);
    EXPECT_EQ(TypeOf(other, first, each.name), each.there);
    EXPECT_EQ(CellsOf(other, first, each), cells);
    EXPECT_EQ(TypeOf(source, last, each.name), each.back);
    EXPECT_EQ(CellsOf(source, last, each), cells);
  }
}

TEST(ExactTypes, SqlServerToMySqlAndBack) {
  const std::vector<Specimen> specimens = ReadSpecimens("exact_types_of_mssql.txt");
  const std::string first = Rig::Get().NewDatabases();
  const std::string last = Rig::Get().NewMsSqlDatabase();
  Rig::Get().MsSql().Script(TableOf(specimens) + "\ngo\n", first);
  const std::string log = Convert(ServerKind::MsSql, first, first);
  EXPECT_THAT(log, HasSubstr("became CHAR(27), since MySQL keeps six digits of a second"));
  EXPECT_THAT(log, HasSubstr("became CHAR(16), since MySQL keeps six digits of a second"));
  EXPECT_THAT(log, HasSubstr("became LONGTEXT with the text of its values"));
  EXPECT_THAT(Convert(ServerKind::MySql, first, last), Not(HasSubstr("Note - Table")));
  ExpectThereAndBack(ServerKind::MsSql, specimens, first, last);
}

TEST(ExactTypes, MySqlToSqlServerAndBack) {
  const std::vector<Specimen> specimens = ReadSpecimens("exact_types_of_mysql.txt");
  const std::string first = Rig::Get().NewDatabases();
  const std::string last = Rig::Get().NewDatabases();
  Rig::Get().MySql().Query(
      "set sql_mode = 'ALLOW_INVALID_DATES,NO_AUTO_VALUE_ON_ZERO';\n" + TableOf(specimens), first);
  const std::string log = Convert(ServerKind::MySql, first, first);
  for (const char* note : {"c14 is varchar(67)", "c13 is decimal(38,30)", "became varchar(17)",
                           "159 dates that do not exist became NULL", "became nvarchar(4)",
                           "became varbinary(max) with the bytes"}) {
    EXPECT_THAT(log, HasSubstr(note));
  }
  Convert(ServerKind::MsSql, first, last);
  ExpectThereAndBack(ServerKind::MySql, specimens, first, last);
}

}  // namespace
}  // namespace dorvane::test
