#include "platform/ado/odbc/server_types.h"

#include <gtest/gtest.h>
#include <sqlext.h>

namespace dorvane::ado::odbc {

namespace {

FieldInfo Describe(std::string_view name, SQLSMALLINT code, DeclaredSize declared = {}) {
  return DescribeField(FindServerType(name, code), declared);
}

TEST(ServerTypes, AreFoundByNameBeforeCode) {
  EXPECT_EQ(Describe("money", SQL_DECIMAL).type, DataType::Currency);
  EXPECT_EQ(Describe("int identity", SQL_INTEGER).type, DataType::Integer);
  EXPECT_EQ(Describe("numeric() identity", SQL_NUMERIC).type, DataType::Numeric);
  EXPECT_EQ(Describe("Timestamp", SQL_BINARY, {8}).type, DataType::Binary);
  // A user's alias has a name of its own.
  EXPECT_EQ(Describe("PhoneNumber", SQL_WVARCHAR, {20}).type, DataType::VarWChar);
  EXPECT_EQ(Describe("Flag", SQL_BIT).type, DataType::Boolean);
  EXPECT_EQ(Describe("hierarchyid", -151).type, DataType::LongVarBinary);
  EXPECT_EQ(Describe("some_future_type", 12345).type, DataType::LongVarWChar);
}

TEST(ServerTypes, WithoutADeclaredSizeHaveTheLargest) {
  for (const std::int64_t size : {std::int64_t{0}, std::int64_t{2147483647}}) {
    EXPECT_EQ(Describe("varchar", SQL_VARCHAR, {size}).defined_size, 2147483647);
    EXPECT_EQ(Describe("nvarchar", SQL_WVARCHAR, {size}).defined_size, 1073741823);
  }
  EXPECT_EQ(Describe("varchar", SQL_VARCHAR, {8000}).defined_size, 8000);
  EXPECT_EQ(Describe("nvarchar", SQL_WVARCHAR, {4000}).defined_size, 4000);
  EXPECT_EQ(Describe("text", SQL_LONGVARCHAR, {16}).defined_size, 2147483647);
}

TEST(ServerTypes, TellLongBinariesFromSizedOnes) {
  EXPECT_EQ(Describe("varbinary", SQL_VARBINARY, {8000}).type, DataType::VarBinary);
  EXPECT_EQ(Describe("varbinary", SQL_VARBINARY, {0}).type, DataType::LongVarBinary);
  EXPECT_EQ(Describe("image", SQL_LONGVARBINARY, {2147483647}).type, DataType::LongVarBinary);
}

TEST(ServerTypes, KeepPrecisionAndFraction) {
  const FieldInfo decimal = Describe("decimal", SQL_DECIMAL, {38, 10});
  EXPECT_EQ(decimal.precision, 38);
  EXPECT_EQ(decimal.numeric_scale, 10);
  const FieldInfo money = Describe("smallmoney", SQL_DECIMAL, {10, 4});
  EXPECT_EQ(money.precision, 10);
  EXPECT_EQ(money.numeric_scale, 4);
  EXPECT_EQ(Describe("datetime", SQL_TYPE_TIMESTAMP, {23, 3}).numeric_scale, 3);
  EXPECT_EQ(Describe("smalldatetime", SQL_TYPE_TIMESTAMP, {16, 0}).numeric_scale, 0);
  EXPECT_EQ(Describe("time", -154, {16, 7}).numeric_scale, 7);
}

TEST(ServerTypes, FindTheFractionInTheSizeWhereTheCatalogGivesNoScale) {
  EXPECT_EQ(Describe("datetime2", SQL_WVARCHAR, {27}).numeric_scale, 7);
  EXPECT_EQ(Describe("datetime2", SQL_WVARCHAR, {21}).numeric_scale, 1);
  EXPECT_EQ(Describe("datetime2", SQL_WVARCHAR, {19}).numeric_scale, 0);
  EXPECT_EQ(Describe("time", SQL_WVARCHAR, {16}).numeric_scale, 7);
  EXPECT_EQ(Describe("time", SQL_WVARCHAR, {8}).numeric_scale, 0);
  EXPECT_EQ(Describe("date", SQL_WVARCHAR, {10}).type, DataType::DBDate);
}

}  // namespace
}  // namespace dorvane::ado::odbc
