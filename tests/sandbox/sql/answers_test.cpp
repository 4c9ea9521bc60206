#include "tests/sandbox/sql/batch.h"

namespace sandbox::testing {

namespace {

// What scripts do not show: a status, the database, names and types of columns.
class AnswersTest : public BatchTest {};

TEST_F(AnswersTest, ProceduresByCall) {
  Must("create table parent (a int not null, b char(2) not null, primary key (a, b))");
  std::vector<Parameter> parameters{
      {"@table_name", {SqlType::NVarChar, 128, 0, 0}, Value(std::string("parent"))}};
  Answer answer;
  session->Call("sp_pkeys", parameters, answer);
  EXPECT_EQ(answer.results.at(0).rows.size(), 2u);
  EXPECT_EQ(answer.status, 0);
  Answer missing;
  session->Call("sp_nosuch", {}, missing);
  EXPECT_EQ(missing.Numbers(), "2812");
}

TEST_F(AnswersTest, NamesOfEveryForm) {
  Must(
      "create table a (id int primary key, name varchar(10)); insert a values (1,'one'), "
      "(2,'two')");
  EXPECT_EQ(Query("select [a].[id] from [db].[dbo].[a] where \"name\" = 'ONE'"), "1");
  EXPECT_EQ(Query("select id from db..A where Name = N'two'"), "2");
  const Answer answer = Run("select id as [my id], 1+1, Name, 5 x, N'q' 'alias' from a");
  EXPECT_THAT(answer.results.at(0).Names(),
              ::testing::ElementsAre("my id", "", "name", "x", "alias"));
  Must("create database [other db]");
  EXPECT_EQ(Run("use [other db]; create table t (v int); insert t values (7)").database,
            "other db");
  EXPECT_EQ(Run("use db").FirstText(), "Changed database context to 'db'.");
}

TEST_F(AnswersTest, StoredValuesComeBackWithTheirTypes) {
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

}  // namespace
}  // namespace sandbox::testing
