#include <gtest/gtest.h>

#include "mysql/to_mssql/literal_shape.h"
#include "mysql/to_mssql/literals.h"

namespace dorvane::to_mssql {

namespace {

using ado::DataType;
using namespace std::literals;

std::string Literal(const ado::Value& value, const ColumnFacts& facts = {}) {
  std::string out;
  AppendDataValue(out, value, facts);
  return out;
}

TEST(MySqlDataValue, WritesEachTypeAsALiteral) {
  EXPECT_EQ(Literal(std::int64_t{-5}), "-5");
  EXPECT_EQ(Literal(std::uint64_t{18446744073709551615u}), "18446744073709551615");
  EXPECT_EQ(Literal(true), "1");
  EXPECT_EQ(Literal(2.0), " 2.0");
  EXPECT_EQ(Literal(ado::Decimal{"-0.010"}), "-0.010");
  EXPECT_EQ(Literal(ado::Binary{"\x0A\xFF"}), "0x0AFF");
  EXPECT_EQ(Literal(ado::Binary{""}), "0x");
  EXPECT_EQ(Literal(std::string_view("It's a\\b''")), "'It''s a\\b'''''");
  EXPECT_EQ(Literal(std::string_view("")), "''");
  EXPECT_EQ(Literal(std::string_view("caf\u00E9")), "N'caf\u00E9'");
  EXPECT_EQ(Literal(std::string_view("\u4E16'")), "N'\u4E16'''");
}

// Drivers cut a statement at U+0000, and the server a long concatenation.
TEST(MySqlDataValue, TextWithZerosNeedsNone) {
  EXPECT_EQ(Literal("O'\0\u00E9\0"sv), "N'O'''+nchar(0)+N'\u00E9'+nchar(0)+N''");
  const std::string literal = Literal(std::string(4000, 'x') + "\0\U0001F600"s);
  EXPECT_TRUE(literal.starts_with("cast(0x78007800")) << literal.substr(0, 20);
  EXPECT_TRUE(literal.ends_with("780000003DD800DE as nvarchar(max))")) << literal.substr(16000);
}

TEST(MySqlDataValue, RaisesEarlyDatesAndAddsTimesToTheirDay) {
  EXPECT_EQ(Literal(ado::DateTime{2020, 2, 29, 3661, 999'999'999}), "'2020-02-29 01:01:01'");
  EXPECT_EQ(Literal(ado::DateTime{1700, 5, 5, 0, 0}), "'1753-01-01 00:00:00'");
  EXPECT_EQ(Literal(ado::DateTime{0, 0, 0, 0, 0}), "'1753-01-01 00:00:00'");
  EXPECT_EQ(Literal(ado::DateTime{2020, 0, 0, 0, 0}), "'1753-01-01 00:00:00'");
  EXPECT_EQ(Literal(ado::DateTime{2020, 2, 31, 0, 0}), "'1753-01-01 00:00:00'");
  EXPECT_EQ(Literal(ado::DateTime{1753, 1, 1, 0, 0}), "'1753-01-01 00:00:00'");
  EXPECT_EQ(Literal(ado::DateTime{1899, 12, 30, 36000, 0}), "'1899-12-30 10:00:00'");
  EXPECT_EQ(Literal(ado::DateTime{1899, 12, 30, 90000, 0}), "'1899-12-31 01:00:00'");
  EXPECT_EQ(Literal(ado::DateTime{1899, 12, 30, -3600, 0}), "'1899-12-29 23:00:00'");
}

TEST(MySqlDataValue, NullsFollowTheColumnsFacts) {
  EXPECT_EQ(Literal({}, {"5", true}), "NULL");
  EXPECT_EQ(Literal({}, {"5", false}), "5");
  EXPECT_EQ(Literal({}, {"", false}), "NULL");
}

bool Joins(std::string_view first, std::string_view second, DataType type) {
  LiteralShape shape = ShapeOf(first);
  return Join(shape, ShapeOf(second), type);
}

TEST(LiteralShape, JoinsWhatTheServerTypesAlike) {
  EXPECT_TRUE(Joins("NULL", "'a'", DataType::VarChar));
  EXPECT_TRUE(Joins("0x01", "NULL", DataType::VarBinary));
  EXPECT_TRUE(Joins("1", "-30000000000", DataType::BigInt));
  EXPECT_TRUE(Joins(" 1.25", "-10.0", DataType::Numeric));
  EXPECT_TRUE(Joins("'a'", "N'\u4E16'", DataType::VarWChar));
  EXPECT_TRUE(Joins("'a'", "'" + std::string(4000, 'b') + "'", DataType::VarChar));
  EXPECT_TRUE(Joins(" 1.5", " 1.0e+22", DataType::Double));
}

TEST(LiteralShape, KeepsApartWhatWouldChange) {
  EXPECT_FALSE(Joins("N'\u4E16'", "'" + std::string(4000, 'b') + "'", DataType::VarWChar));
  EXPECT_FALSE(Joins("cast(0x00 as nvarchar(max))", "'a'", DataType::VarWChar));
  EXPECT_FALSE(Joins("'a'", "10", DataType::VarChar));  // a default that looks like a number
  EXPECT_FALSE(Joins("'2020'", "getdate()", DataType::DBTimeStamp));
  EXPECT_FALSE(Joins("getdate()", "getdate()", DataType::DBTimeStamp));
  EXPECT_FALSE(Joins(" 1.5", " 1.0e+22", DataType::Single));
  EXPECT_FALSE(Joins(" 12345678901.0", " 0.00001", DataType::Double));
  EXPECT_FALSE(Joins(" 12345678901234567890123456789012345678.0", " 0.5", DataType::Numeric));
}

TEST(LiteralShape, KeepsNumbersApartThatTextOrBytesWouldShow) {
  EXPECT_FALSE(Joins(" 0.5", " 0.25", DataType::VarChar));
  EXPECT_FALSE(Joins("1", "3000000000", DataType::VarBinary));
  EXPECT_FALSE(Joins("1", "2", DataType::Empty));
  EXPECT_TRUE(Joins("NULL", " 0.5", DataType::VarChar));
  EXPECT_TRUE(Joins("'a'", "'bb'", DataType::Empty));
}

TEST(LiteralShape, WidensOverManyRows) {
  LiteralShape shape = ShapeOf(" 1.0");
  ASSERT_TRUE(Join(shape, ShapeOf(" 1234567890.0"), DataType::Double));
  ASSERT_TRUE(Join(shape, ShapeOf(" 0.12345"), DataType::Double));
  EXPECT_FALSE(Join(shape, ShapeOf(" 0.123456"), DataType::Double));
}

}  // namespace
}  // namespace dorvane::to_mssql
