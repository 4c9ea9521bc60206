#include <vector>

#include "tests/platform/ado/mysql/fixture.h"

namespace dorvane::ado {

inline std::ostream& operator<<(std::ostream& out, const FieldInfo& info) {
  return out << fmt::format("{} {} ({}) {},{}", info.name, static_cast<int>(info.type),
                            info.defined_size, info.precision, info.numeric_scale);
}

namespace {

using namespace std::string_literals;

/// A column's declaration and what it is in ADO's terms.
struct TypeCase {
  const char* declaration;
  DataType type;
  std::int64_t defined_size = 0;
  int precision = 0;
  int numeric_scale = 0;
};

constexpr std::int64_t kLongest = 4294967295;

const std::vector<TypeCase> kTypeCases = {
    {"tinyint", DataType::TinyInt, 0, 3},
    {"tinyint(1)", DataType::TinyInt, 0, 3},
    {"tinyint unsigned", DataType::UnsignedTinyInt, 0, 3},
    {"smallint", DataType::SmallInt, 0, 5},
    {"smallint unsigned zerofill", DataType::UnsignedSmallInt, 0, 5},
    {"mediumint", DataType::Integer, 0, 7},
    {"mediumint unsigned", DataType::UnsignedInt, 0, 7},
    {"int", DataType::Integer, 0, 10},
    {"int unsigned", DataType::UnsignedInt, 0, 10},
    {"bigint", DataType::BigInt, 0, 19},
    {"bigint unsigned", DataType::UnsignedBigInt, 0, 20},
    {"float", DataType::Single, 0, 7},
    {"double(9,3) unsigned", DataType::Double, 0, 15},
    {"decimal(30,10)", DataType::Numeric, 0, 30, 10},
    {"decimal(5) unsigned", DataType::Numeric, 0, 5},
    {"year", DataType::SmallInt, 0, 4},
    {"date", DataType::DBDate},
    {"time", DataType::DBTime},
    {"time(2)", DataType::DBTime, 0, 0, 2},
    {"datetime", DataType::DBTimeStamp},
    {"datetime(6)", DataType::DBTimeStamp, 0, 0, 6},
    {"timestamp(3) null", DataType::DBTimeStamp, 0, 0, 3},
    {"bit(1)", DataType::Boolean},
    {"bit(12)", DataType::Binary, 2},
    {"binary(7)", DataType::Binary, 7},
    {"varbinary(300)", DataType::VarBinary, 300},
    {"tinyblob", DataType::LongVarBinary, 255},
    {"blob", DataType::LongVarBinary, 65535},
    {"mediumblob", DataType::LongVarBinary, 16777215},
    {"longblob", DataType::LongVarBinary, kLongest},
    {"point", DataType::LongVarBinary, kLongest},
    {"geometrycollection", DataType::LongVarBinary, kLongest},
    {"enum('a','three','é')", DataType::WChar, 5},
    {"set('x','yz') character set ascii", DataType::Char, 4},
    {"char(10) character set latin1", DataType::Char, 10},
    {"varchar(20) character set cp1251", DataType::VarWChar, 20},
    {"text character set latin2", DataType::LongVarWChar, 65535},
    {"char(10) character set utf8mb3", DataType::WChar, 10},
    {"varchar(20) character set ucs2", DataType::VarWChar, 20},
    {"varchar(20) character set utf16", DataType::VarWChar, 20},
    {"varchar(21) character set sjis", DataType::VarWChar, 21},
    {"mediumtext character set utf32", DataType::LongVarWChar, 4194303},
    {"longtext", DataType::LongVarWChar, kLongest},
    {"json", DataType::LongVarWChar, kLongest},
};

const std::vector<TypeCase> kMariaDbTypeCases = {
    {"uuid", DataType::Char, 36},
    {"inet6", DataType::Char, 39},
};

class MySqlTypesTest : public MySqlTest {
 protected:
  /// The only value of `select <expression>`; its text stays valid in `block_`.
  Value Read(std::string_view expression) {
    return ReadAll(fmt::format("select {}", expression)).at(0);
  }
  std::vector<Value> ReadAll(std::string_view sql) {
    Recordset rows = connection_.Execute(sql);
    EXPECT_TRUE(rows.GetRows(block_));
    const auto row = block_.Row(0);
    return {row.begin(), row.end()};
  }

  RowBlock block_;
};

TEST_F(MySqlTypesTest, CatalogAndResultDescribeAColumnAlike) {
  std::vector<TypeCase> cases = kTypeCases;
  if (Server().IsMariaDb()) std::ranges::copy(kMariaDbTypeCases, std::back_inserter(cases));
  std::string columns;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    columns += fmt::format("{}c{} {}", i == 0 ? "" : ", ", i, cases[i].declaration);
  }
  Run("create table types(" + columns + ") character set utf8mb4");
  const std::vector<Column> catalog = connection_.Columns("types");
  const Recordset rows = connection_.Execute("select * from types");
  ASSERT_EQ(catalog.size(), cases.size());
  ASSERT_EQ(rows.FieldCount(), cases.size());
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const TypeCase& expected = cases[i];
    const auto matches =
        testing::AllOf(testing::Field(&FieldInfo::name, fmt::format("c{}", i)),
                       testing::Field(&FieldInfo::type, expected.type),
                       testing::Field(&FieldInfo::defined_size, expected.defined_size),
                       testing::Field(&FieldInfo::precision, expected.precision),
                       testing::Field(&FieldInfo::numeric_scale, expected.numeric_scale));
    EXPECT_THAT(catalog[i], matches) << expected.declaration;
    EXPECT_THAT(rows.FieldInfos()[i], matches) << expected.declaration;
  }
}

TEST_F(MySqlTypesTest, DescribesWhatIsNoColumnByItsOwnType) {
  Run("create table t(v varchar(9) character set latin1)");
  const Recordset rows = connection_.Execute(
      "select count(*) as n, 12.50 as d, 'text' as s, x'00ff' as b, now(3) as m, v as other, "
      "concat(v, 'x') as joined from t group by v");
  const auto& infos = rows.FieldInfos();
  EXPECT_EQ(infos[0].type, DataType::BigInt);
  EXPECT_EQ(infos[1].type, DataType::Numeric);
  EXPECT_EQ(infos[1].precision, 4);
  EXPECT_EQ(infos[1].numeric_scale, 2);
  EXPECT_EQ(infos[2].type, DataType::VarWChar);
  EXPECT_EQ(infos[2].defined_size, 4);
  EXPECT_EQ(infos[3].type, DataType::VarBinary);
  EXPECT_EQ(infos[4].type, DataType::DBTimeStamp);
  EXPECT_EQ(infos[4].numeric_scale, 3);
  EXPECT_EQ(infos[5].name, "other");
  EXPECT_EQ(infos[5].type, DataType::VarChar);
  EXPECT_EQ(infos[6].type, DataType::VarWChar);
}

TEST_F(MySqlTypesTest, NumbersKeepEveryDigit) {
  Run("create table n(b bigint, ub bigint unsigned, f float, d double, de decimal(65,30), "
      "y year, b1 bit, b12 bit(12), z int unsigned zerofill, b0 bit)");
  Run("insert into n values (-9223372036854775808, 18446744073709551615, 16777217, "
      "0.1234567890123456, -12345678901234567890123456789012345.123456789012345678901234567891, "
      "2024, 1, b'101000000001', 7, b'0')");
  const std::vector<Value> row = ReadAll("select * from n");
  EXPECT_EQ(std::get<std::int64_t>(row[0]), INT64_MIN);
  EXPECT_EQ(std::get<std::uint64_t>(row[1]), UINT64_MAX);
  EXPECT_EQ(std::get<float>(row[2]), 16777216.0F);
  EXPECT_EQ(std::get<double>(row[3]), 0.1234567890123456);
  EXPECT_EQ(std::get<Decimal>(row[4]).digits,
            "-12345678901234567890123456789012345.123456789012345678901234567891");
  EXPECT_EQ(std::get<std::int64_t>(row[5]), 2024);
  EXPECT_TRUE(std::get<bool>(row[6]));
  EXPECT_EQ(std::get<Binary>(row[7]).bytes, "\x0a\x01");
  EXPECT_EQ(std::get<std::uint64_t>(row[8]), 7U);
  EXPECT_FALSE(std::get<bool>(row[9]));
  // A text result would round a float to six digits.
  Run("delete from n");
  Run("insert into n(f) values (0.123456789)");
  EXPECT_EQ(std::get<float>(ReadAll("select f from n")[0]), 0.123456789F);
  EXPECT_EQ(Ask("select f from n"), "0.12345679");
}

TEST_F(MySqlTypesTest, DatesKeepWhatOtherClientsRefuse) {
  Run("set session sql_mode = 'ALLOW_INVALID_DATES'");
  Run("create table d(d date, dt datetime(6), t time(6), ts timestamp null)");
  const auto only = [&](std::string_view column, std::string_view text) {
    Run("delete from d");
    Run(fmt::format("insert into d({}) values ('{}')", column, text));
    Recordset rows = connection_.Execute(fmt::format("select {} from d", column));
    return std::pair(std::get<DateTime>(rows.Field(0).Value()), rows.Field(0).Text());
  };
  using Seen = std::pair<DateTime, std::string>;
  EXPECT_EQ(only("d", "2024-02-29"), Seen(DateTime{2024, 2, 29, 0, 0}, "2024-02-29"));
  EXPECT_EQ(only("d", "0000-00-00"), Seen(DateTime{0, 0, 0, 0, 0}, "0000-00-00"));
  EXPECT_EQ(only("dt", "2024-00-00 01:02:03"),
            Seen(DateTime{2024, 0, 0, 3723, 0}, "2024-00-00 01:02:03"));
  EXPECT_EQ(only("dt", "9999-12-31 23:59:59.000001"),
            Seen(DateTime{9999, 12, 31, 86399, 1000}, "9999-12-31 23:59:59.000001"));
  EXPECT_EQ(only("dt", "0000-00-00 00:00:00"),
            Seen(DateTime{0, 0, 0, 0, 0}, "0000-00-00 00:00:00"));
  EXPECT_EQ(only("t", "13:00:00.5"), Seen(DateTime{1899, 12, 30, 46800, 500000000}, "13:00:00.5"));
  EXPECT_EQ(only("t", "-838:59:58.25"),
            Seen(DateTime{1899, 12, 30, -3020398, -250000000}, "-838:59:58.25"));
  EXPECT_EQ(only("t", "-00:00:00.5"), Seen(DateTime{1899, 12, 30, 0, -500000000}, "-00:00:00.5"));
  EXPECT_EQ(only("t", "100:00:00"), Seen(DateTime{1899, 12, 30, 360000, 0}, "100:00:00"));
}

TEST_F(MySqlTypesTest, TextIsUtf8FromEveryCharacterSet) {
  Run("create table s(l varchar(9) character set latin1, u varchar(9) character set utf16, "
      "m text, e enum('ä','b'), j json, nothing varchar(3), b varbinary(9), n text)");
  Run("insert into s values ('Äé€', 'д😀', '漢字', 'ä', '{\"a\": \"ü\"}', '', x'00ff4100', null)");
  const std::vector<Value> row = ReadAll("select * from s");
  EXPECT_EQ(std::get<std::string_view>(row[0]), "Äé€");
  EXPECT_EQ(std::get<std::string_view>(row[1]), "д😀");
  EXPECT_EQ(std::get<std::string_view>(row[2]), "漢字");
  EXPECT_EQ(std::get<std::string_view>(row[3]), "ä");
  EXPECT_EQ(std::get<std::string_view>(row[4]), "{\"a\": \"ü\"}");
  EXPECT_EQ(std::get<std::string_view>(row[5]), "");
  EXPECT_EQ(std::get<Binary>(row[6]).bytes, "\0\xff"s + "A\0"s);
  EXPECT_TRUE(IsNull(row[7]));
}

TEST_F(MySqlTypesTest, ValuesBesidesALongOneAreRight) {
  Run("create table l(id int, a longtext, b longblob, c varchar(9))");
  Run("insert into l values (1, repeat('ab', 2500000), null, 'x'), (2, 'short', "
      "repeat(x'00ff', 2500000), null), (3, '', '', 'z')");
  Recordset rows = connection_.Execute("select * from l order by id");
  const std::string text = rows.Field("a").Text();
  EXPECT_EQ(text.size(), 5000000U);
  EXPECT_EQ(text.substr(0, 3), "aba");
  EXPECT_EQ(rows.Field("c").Text(), "x");
  rows.MoveNext();
  EXPECT_EQ(rows.Field("a").Text(), "short");
  const std::string bytes = rows.Field("b").Text();
  EXPECT_EQ(bytes.size(), 5000000U);
  EXPECT_EQ(bytes.substr(4999998), "\0\xff"s);
  EXPECT_TRUE(rows.Field("c").IsNull());
  rows.MoveNext();
  EXPECT_FALSE(rows.Field("b").IsNull());
  EXPECT_EQ(rows.Field("c").Text(), "z");
  rows.MoveNext();
  EXPECT_TRUE(rows.AtEnd());
}

}  // namespace
}  // namespace dorvane::ado
