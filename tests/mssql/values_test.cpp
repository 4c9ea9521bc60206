#include <gtest/gtest.h>

#include "endpoint/literal_text.h"
#include "mssql/to_mysql/literals.h"

namespace dorvane::to_mysql {

namespace {

using ado::DataType;

/// The value as text, NULL as "NULL", bytes in hexadecimal.
std::string Assigned(const ado::Value& value, DataType type, const ColumnFacts& facts = {}) {
  ado::Arena storage;
  ado::FieldInfo field;
  field.type = type;
  const ado::Value result = DataValue(value, field, facts, storage);
  if (const auto* text = std::get_if<std::string_view>(&result)) return std::string(*text);
  if (const auto* binary = std::get_if<ado::Binary>(&result)) return HexCode(binary->bytes);
  return "NULL";
}

TEST(MsSqlDataValue, GivesEachTypeItsText) {
  EXPECT_EQ(Assigned(std::int64_t{-5}, DataType::BigInt), "-5");
  EXPECT_EQ(Assigned(std::uint64_t{18446744073709551615u}, DataType::UnsignedBigInt),
            "18446744073709551615");
  EXPECT_EQ(Assigned(true, DataType::Boolean), "1");
  EXPECT_EQ(Assigned(false, DataType::Boolean), "0");
  EXPECT_EQ(Assigned(3.0, DataType::Double), " 3.0");
  EXPECT_EQ(Assigned(ado::Decimal{"922337203685477.5807"}, DataType::Currency),
            " 922337203685477.5807");
  EXPECT_EQ(Assigned(std::string_view("a'b\\c"), DataType::VarWChar), "a'b\\c");
  EXPECT_EQ(Assigned(ado::Binary{"\x01\xFF"}, DataType::VarBinary), "0x01FF");
  EXPECT_EQ(Assigned(ado::Guid{"{6F9619FF-8B86-D011-B42D-00C04FC964FF}"}, DataType::Guid),
            "0x6F9619FF8B86D011B42D00C04FC964FF");
}

TEST(MsSqlDataValue, KeepsAndCountsFractionsAsTheColumnDoes) {
  const ado::DateTime moment{2020, 2, 29, 86399, 999'999'900};
  struct Row {
    DataType type;
    int digits;
    std::string text;
  };
  const Row rows[] = {
      {DataType::DBTimeStamp, 0, "2020-02-29 23:59:59"},
      {DataType::DBTimeStamp, 3, "2020-02-29 23:59:59.999"},
      {DataType::DBTimeStamp, 6, "2020-02-29 23:59:59.999999"},
      {DataType::DBDate, 0, "2020-02-29"},
      {DataType::DBTime, 0, "23:59:59"},
      {DataType::DBTime, 6, "23:59:59.999999"},
      {DataType::Date, 0, "2020-02-29 23:59:59"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Assigned(moment, row.type, {"", true, row.digits}), row.text);
    EXPECT_TRUE(LosesFraction(moment, {"", true, row.digits}));
  }
  EXPECT_FALSE(LosesFraction({2020, 1, 1, 0, 999'000'000}, {"", true, 3}));
  EXPECT_FALSE(LosesFraction({2020, 1, 1, 0, 0}, {"", true, 0}));
}

TEST(MsSqlDataValue, NullsFollowTheColumnsFacts) {
  EXPECT_EQ(Assigned({}, DataType::VarChar, {"x", true}), "NULL");
  EXPECT_EQ(Assigned({}, DataType::VarChar, {"x", false}), "x");
  EXPECT_EQ(Assigned({}, DataType::VarChar, {"", false}), "");
  EXPECT_EQ(Assigned(std::string_view("Null"), DataType::VarChar), "Null");
}

TEST(MsSqlQuote, EscapesInOrder) {
  EXPECT_EQ(Quote("a'b\\c"), "a''b\\\\c");
  EXPECT_EQ(Quote("say \"hi\""), "say \\\"hi\\\"");
  EXPECT_EQ(HexCodeGUID("{6F9619FF-8B86-D011-B42D-00C04FC964FF}"),
            "0x6F9619FF8B86D011B42D00C04FC964FF");
  EXPECT_EQ(HexCodeGUID("short"), "0x00");
}

}  // namespace
}  // namespace dorvane::to_mysql
