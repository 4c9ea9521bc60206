// What a column of each type is to the catalog and to a result, and its values on their way. The
// types of a server are the lines of a file.
#include <map>

#include "tests/platform/ado/server_test.h"
#include "tests/support/table.h"

namespace dorvane::ado {

inline std::ostream& operator<<(std::ostream& out, const FieldInfo& info) {
  return out << fmt::format("{} ({}) {},{}", static_cast<int>(info.type), info.defined_size,
                            info.precision, info.numeric_scale);
}

namespace {

using testing::ElementsAre;
using testing::Field;
using enum DataType;

constexpr int kAny = -1;  // a precision

/// A line of the file.
struct TypeCase {
  std::string declaration;
  FieldInfo field;
  std::string value;  // an expression
  std::string text;   // of the value
};

const std::map<std::string, DataType> kTypes{{"SmallInt", SmallInt},
                                             {"Integer", Integer},
                                             {"Single", Single},
                                             {"Double", Double},
                                             {"Currency", Currency},
                                             {"Boolean", Boolean},
                                             {"Variant", Variant},
                                             {"TinyInt", TinyInt},
                                             {"UnsignedTinyInt", UnsignedTinyInt},
                                             {"UnsignedSmallInt", UnsignedSmallInt},
                                             {"UnsignedInt", UnsignedInt},
                                             {"BigInt", BigInt},
                                             {"UnsignedBigInt", UnsignedBigInt},
                                             {"Guid", Guid},
                                             {"Binary", Binary},
                                             {"Char", Char},
                                             {"WChar", WChar},
                                             {"Numeric", Numeric},
                                             {"DBDate", DBDate},
                                             {"DBTime", DBTime},
                                             {"DBTimeStamp", DBTimeStamp},
                                             {"VarChar", VarChar},
                                             {"LongVarChar", LongVarChar},
                                             {"VarWChar", VarWChar},
                                             {"LongVarWChar", LongVarWChar},
                                             {"VarBinary", VarBinary},
                                             {"LongVarBinary", LongVarBinary}};

/// "text*3" three times, "0x41FF" as its bytes.
std::string Expanded(std::string text) {
  const std::size_t star = std::min(text.rfind('*'), text.size());
  const int times = star == text.size() ? 1 : std::stoi(text.substr(star + 1));
  text.resize(star);
  if (text.starts_with("0x")) {
    std::string bytes;
    for (std::size_t i = 2; i < text.size(); i += 2) {
      bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
    }
    text = bytes;
  }
  std::string repeated;
  for (int i = 0; i < times; ++i) repeated += text;
  return repeated;
}

std::vector<TypeCase> ReadCases(const std::string& file) {
  std::vector<TypeCase> cases;
  for (const std::vector<std::string>& cells : test::ReadTable("platform/ado/" + file)) {
    cases.push_back({cells.at(0),
                     {.name = {},
                      .type = kTypes.at(cells.at(1)),
                      .defined_size = std::stoll(cells.at(2)),
                      .precision = cells.at(3) == "-" ? kAny : std::stoi(cells.at(3)),
                      .numeric_scale = std::stoi(cells.at(4))},
                     cells.at(5),
                     Expanded(cells.at(6))});
  }
  return cases;
}

auto HasMeasures(const FieldInfo& expected) {
  const testing::Matcher<int> precision =
      expected.precision == kAny ? testing::_ : testing::Matcher<int>(expected.precision);
  return testing::AllOf(Field(&FieldInfo::type, expected.type),
                        Field(&FieldInfo::defined_size, expected.defined_size),
                        Field(&FieldInfo::precision, precision),
                        Field(&FieldInfo::numeric_scale, expected.numeric_scale));
}

class TypesTest : public BothServers {
 protected:
  void ExpectTypes(const char* file) {
    for (const TypeCase& each : ReadCases(file)) {
      SCOPED_TRACE(each.declaration + " " + each.value.substr(0, 60));
      RunAll({"create table typed(id int not null, v " + each.declaration + " null, last int)",
              "insert into typed values (1, " + each.value + ", 7)",
              "insert into typed values (2, null, 8)"});
      EXPECT_THAT(connection_.Columns("typed").at(1), HasMeasures(each.field));
      Recordset rows = connection_.Execute("select v, last, v as again from typed order by id");
      EXPECT_THAT(rows.FieldInfos().at(0), HasMeasures(each.field));
      const Rows expected{{each.text, "7", each.text}, {"NULL", "8", "NULL"}};
      EXPECT_TRUE(RowsOf(std::move(rows)) == expected);
      Run("drop table typed");
    }
  }
};

INSTANTIATE_TEST_SUITE_P(, TypesTest, kBothServers, NameOfKind);

TEST_P(TypesTest, HaveTheirCodesMeasuresAndValues) {
  if (IsMySql()) Run("set session sql_mode = 'ALLOW_INVALID_DATES'");
  ExpectTypes(Either("mysql_types.txt", "mssql_types.txt"));
  if (IsMySql() && MySql().IsMariaDb()) ExpectTypes("mariadb_types.txt");
}

TEST_P(TypesTest, ALongValueBesideOthersArrivesWhole) {
  const std::string ffee = Expanded("0xFFEE*1700000"), e = Expanded("é*1000000");
  RunAll({fmt::format("create table big(id int not null, bytes {} null, note {} null)",
                      Either("longblob", "image"), Either("longtext", "nvarchar(max)")),
          fmt::format("insert into big values (1, {}, {}'{}')", "0x" + Expanded("FFEE*1700000"),
                      Either("", "N"), e),
          "insert into big values (2, null, 'short')", "insert into big values (3, 0x01, '')"});
  const Rows expected{{"1", ffee, e}, {"2", "NULL", "short"}, {"3", "\x01", ""}};
  EXPECT_TRUE(RowsOf(connection_.Execute("select * from big order by id")) == expected);
}

TEST_P(TypesTest, WhatIsNoPlainColumnHasItsOwnType) {
  Run(Either("create table t(id int, v varchar(9) character set latin1)",
             "create table t(id int, v timestamp)"));
  Run("insert into t(id) values (1)");
  struct Case {
    const char* expression;
    FieldInfo field;
  };
  const std::vector<Case> on_mysql{{"count(*)", {"", BigInt, 0, 19, 0}},
                                   {"12.50", {"", Numeric, 0, 4, 2}},
                                   {"'text'", {"", VarWChar, 4, 0, 0}},
                                   {"x'00ff'", {"", VarBinary, 2, 0, 0}},
                                   {"now(3)", {"", DBTimeStamp, 0, 0, 3}},
                                   {"max(v)", {"", VarWChar, 9, 0, 0}},
                                   {"concat('x', max(v))", {"", VarWChar, 10, 0, 0}}};
  const std::vector<Case> on_mssql{{"max(id) + 1", {"", Integer, 0, 10, 0}},
                                   {"max(v)", {"", DataType::Binary, 8, 0, 0}}};
  for (const auto& [expression, field] : Either(on_mysql, on_mssql)) {
    const Recordset rows = connection_.Execute(fmt::format("select {} as own from t", expression));
    EXPECT_EQ(rows.FieldInfos().at(0).name, "own");
    EXPECT_THAT(rows.FieldInfos().at(0), HasMeasures(field)) << expression;
  }
}

}  // namespace
}  // namespace dorvane::ado
