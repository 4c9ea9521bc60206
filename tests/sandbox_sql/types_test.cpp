#include "sandbox/values/decimal.h"
#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

class TypesTest : public BatchTest {
 protected:
  // The text of an expression's value.
  void Expect(const std::vector<std::pair<const char*, const char*>>& cases) {
    for (const auto& [expression, text] : cases) {
      EXPECT_EQ(Query(std::string("select ") + expression), text) << expression;
    }
  }
};

TEST_F(TypesTest, NumbersAreExact) {
  Expect({{"cast(99999999999999999999999999999999999999 as decimal(38,0)) - 1",
           "99999999999999999999999999999999999998"},
          {"1.10 + 2.2", "3.30"},
          {"cast(1 as decimal(9,2)) / 3", "0.333333"},
          {"10 / 3", "3"},
          {"-7 % 3", "-1"},
          {"cast(2.5 as int)", "2"},
          {"cast($2.5 as int)", "3"},
          {"cast(1.005 as decimal(5,2))", "1.01"},
          {"convert(money, '922337203685477.5807')", "922337203685477.58"},
          {"cast(cast(0.1 as float) as decimal(20,10))", "0.1000000000"},
          {"1e0 / 4", "0.25"},
          {"cast(-2147483648 as int)", "-2147483648"},
          {"sum(x) from (values (1.5), (2), (null)) v(x)", "3.5"},
          {"avg(x) from (values (1), (2)) v(x)", "1"},
          {"max(x) from (values (cast(-1.5 as decimal(9,2))), (-10), (0.1)) v(x)", "0.10"}});
  EXPECT_EQ(Run("select 2147483647 + 1").Numbers(), "8115");
  EXPECT_EQ(Run("select 1 / 0").Numbers(), "8134");
}

TEST_F(TypesTest, DecimalArithmeticKeepsAllDigits) {
  const DecimalValue big = *ParseDecimal("99999999999999999999999999999999999999");
  EXPECT_FALSE(Calculate('+', big, big, 0));
  EXPECT_FALSE(Calculate('*', big, {2, 0}, 0));
  EXPECT_EQ(DecimalText(*Calculate('/', big, {3, 0}, 0)), "33333333333333333333333333333333333333");
  EXPECT_EQ(DecimalText(*Calculate('*', {123456789, 4}, {-987654321, 9}, 6)), "-12193.263111");
  EXPECT_EQ(DecimalText({-5, 3}), "-0.005");
  EXPECT_FALSE(ParseDecimal("1.2.3"));
  EXPECT_FALSE(ParseDecimal("-"));
}

TEST_F(TypesTest, TextAndBytes) {
  Expect({{"'[' + cast('ab' as char(4)) + ']'", "[ab  ]"},
          {"cast(N'aя€' as varchar(9))", "a?€"},
          {"len('ab   ')", "2"},
          {"datalength(N'ab ')", "6"},
          {"datalength('€')", "1"},
          {"len(N'😀')", "2"},
          {"cast(0x41 as varchar(5))", "A"},
          {"convert(varbinary(9), 'A€')", "0x4180"},
          {"cast(0x01 as binary(3))", "0x010000"},
          {"convert(varchar(20), 0x0AFF, 1)", "0x0AFF"},
          {"cast(5 as varchar(1)) + cast(55 as varchar(1))", "5*"},
          {"upper('straße é я')", "STRAßE É ?"},
          {"replace('aXbx', 'x', '-')", "a-b-"},
          {"substring('abcdef', 0, 3)", "ab"},
          {"right('abc', 2) + left('abc', 1)", "bca"},
          {"replicate('ab', 3)", "ababab"},
          {"charindex('B', 'abc')", "2"},
          {"isnull(null, 'x')", "x"},
          {"case when 'A' = 'a ' then 'same' else 'other' end", "same"},
          {"case when 'abc' like 'A_[a-d]%' then 1 else 0 end", "1"},
          {"case when '50%' like '50!%' escape '!' then 1 else 0 end", "1"}});
}

TEST_F(TypesTest, DatesAndTimes) {
  Expect({{"convert(varchar(30), cast('2024-02-29 12:34:56.789' as datetime), 121)",
           "2024-02-29 12:34:56.790"},
          {"convert(varchar(30), cast('2024-01-01 23:59:59.999' as datetime), 121)",
           "2024-01-02 00:00:00.000"},
          {"convert(varchar(30), cast('2024-01-01 10:00:31' as smalldatetime), 120)",
           "2024-01-01 10:01:00"},
          {"cast('0001-01-01' as datetime2(0))", "0001-01-01 00:00:00"},
          {"cast('9999-12-31 23:59:59.9999999' as datetime2)", "9999-12-31 23:59:59.9999999"},
          {"cast('20240131' as date)", "2024-01-31"},
          {"cast('1/31/2024' as date)", "2024-01-31"},
          {"cast('Jan 31 2024  3:04PM' as datetime2(0))", "2024-01-31 15:04:00"},
          {"cast('2024-01-31T15:04:05' as datetime2(0))", "2024-01-31 15:04:05"},
          {"cast('12:34:56.7' as time(3))", "12:34:56.700"},
          {"cast('2024-01-31 15:00:00 +02:00' as datetimeoffset(0))", "2024-01-31 15:00:00 +02:00"},
          {"convert(varchar(10), dateadd(month, 1, '2024-01-31'), 120)", "2024-02-29"},
          {"datediff(day, '2023-12-31 23:00', '2024-01-01 01:00')", "1"},
          {"datediff(year, '2023-12-31', '2024-01-01')", "1"},
          {"datepart(weekday, '2024-02-25'), datename(month, '2024-02-25')", "1|February"},
          {"year(cast('' as datetime))", "1900"}});
  EXPECT_EQ(Run("select cast('2023-02-29' as datetime)").Numbers(), "242");
  EXPECT_EQ(Run("select cast('2023-02-29' as date)").Numbers(), "241");
}

TEST_F(TypesTest, StoredValuesComeBackWithTheirTypes) {
  Must(
      "create table t (a bigint, b decimal(38,10), c smallmoney, d real, e float, f "
      "datetimeoffset(3), g time(7), h nchar(3),"
      " i varchar(max), j varbinary(max), k uniqueidentifier, l sql_variant, m xml, n bit, o "
      "image)");
  Must(
      "insert t values (9223372036854775807, -1234567890123456789012345678.0123456789, "
      "-214748.3648, 3.4e38,"
      " 1.7976931348623157e308, '2024-01-31 15:00:00.125 -05:30', '23:59:59.9999999', N'я', "
      "replicate(cast('x' as varchar(max)), 100000),"
      " 0x00FF, '00112233-4455-6677-8899-AABBCCDDEEFF', cast(1.5 as decimal(5,1)), '<a/>', 'true', "
      "0x)");
  const Answer answer = Run("select * from t");
  EXPECT_EQ(Query("select a, b, f, g, h, len(i), j, k, l, m, n, o from t"),
            "9223372036854775807|-1234567890123456789012345678.0123456789|2024-01-31 15:00:00.125 "
            "-05:30|23:59:59.9999999|"
            "я  |100000|0x00FF|00112233-4455-6677-8899-AABBCCDDEEFF|1.5|<a/>|1|0x");
  const std::vector<ColumnInfo>& columns = answer.results.at(0).columns;
  EXPECT_EQ(columns[1].type.precision, 38);
  EXPECT_EQ(columns[1].type.scale, 10);
  EXPECT_EQ(columns[5].type.type, SqlType::DateTimeOffset);
  EXPECT_EQ(columns[7].type.length, 3);
  EXPECT_EQ(columns[8].type.length, -1);
}

TEST_F(TypesTest, OrderIsTheServersOrder) {
  Must("create table t (d decimal(9,2), g uniqueidentifier, b varbinary(4), n int)");
  Must(
      "insert t values (-1.5, '01000000-0000-0000-0000-000000000002', 0x01, 1), (10, "
      "'02000000-0000-0000-0000-000000000001', 0x0100, 2),"
      " (2, null, null, 3), (null, '00000000-0000-0000-0100-000000000000', 0xFF, 4)");
  EXPECT_EQ(Query("select n from t order by d"), "4;1;3;2");
  EXPECT_EQ(Query("select n from t order by g"), "3;4;2;1");
  EXPECT_EQ(Query("select n from t order by b desc"), "4;2;1;3");
  EXPECT_EQ(Query("select n from t where d > 1.999 and d <= 1e1 order by 1"), "2;3");
  EXPECT_EQ(Query("select x from (values ('b'), ('A'), ('a '), ('B')) v(x) group by x order by x"),
            "A;b");
}

TEST_F(TypesTest, RowsOfOneInsertAgreeOnATypeFirst) {
  Must("create table t (v varchar(20))");
  Must("insert t values (1), ('2')");
  EXPECT_EQ(Run("insert t values (1), ('x')").Numbers(), "245");
  Must("insert t values (1), (2.50)");
  EXPECT_EQ(Query("select v from t"), "1;2;1.00;2.50");
}

TEST_F(TypesTest, RowVersionsRise) {
  Must("create table t (id int primary key, v timestamp); insert t (id) values (1), (2)");
  EXPECT_EQ(Query("select count(distinct v) from t"), "2");
  const std::string before = Query("select v from t where id = 1");
  Must("update t set id = 1 where id = 1");
  EXPECT_LT(before, Query("select v from t where id = 1"));
  EXPECT_EQ(Run("update t set v = 0x01").Numbers(), "272");
}

}  // namespace
}  // namespace sandbox::testing
