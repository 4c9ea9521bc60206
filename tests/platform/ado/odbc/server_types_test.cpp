#include "platform/ado/odbc/server_types.h"

#include <gtest/gtest.h>
#include <sqlext.h>

namespace dorvane::ado::odbc {

namespace {

FieldInfo Describe(std::string_view name, SQLSMALLINT code, DeclaredSize declared = {}) {
  return DescribeField(FindServerType(name, code), declared);
}

TEST(ServerTypes, AreFoundByNameBeforeCode) {
  EXPECT_EQ(Describe("numeric() identity", SQL_NUMERIC).type, DataType::Numeric);
  EXPECT_EQ(Describe("Timestamp", SQL_BINARY, {8}).type, DataType::Binary);
  // A user's alias has a name of its own.
  EXPECT_EQ(Describe("PhoneNumber", SQL_WVARCHAR, {20}).type, DataType::VarWChar);
  EXPECT_EQ(Describe("Flag", SQL_BIT).type, DataType::Boolean);
  EXPECT_EQ(Describe("hierarchyid", -151).type, DataType::LongVarBinary);
  EXPECT_EQ(Describe("some_future_type", 12345).type, DataType::LongVarWChar);
}

// Drivers tell the same size or fraction in several ways; those of FreeTDS meet a server elsewhere.
TEST(ServerTypes, HaveTheSizeThatAnyDriverMeans) {
  for (const std::int64_t size : {std::int64_t{0}, std::int64_t{2147483647}}) {
    EXPECT_EQ(Describe("varchar", SQL_VARCHAR, {size}).defined_size, 2147483647);
    EXPECT_EQ(Describe("nvarchar", SQL_WVARCHAR, {size}).defined_size, 1073741823);
    EXPECT_EQ(Describe("varbinary", SQL_VARBINARY, {size}).type, DataType::LongVarBinary);
  }
  EXPECT_EQ(Describe("varbinary", SQL_VARBINARY, {8000}).type, DataType::VarBinary);
  EXPECT_EQ(Describe("text", SQL_LONGVARCHAR, {16}).defined_size, 2147483647);
  EXPECT_EQ(Describe("smallmoney", SQL_DECIMAL, {10, 4}).precision, 10);
  EXPECT_EQ(Describe("time", -154, {16, 7}).numeric_scale, 7);
  EXPECT_EQ(Describe("datetime2", SQL_WVARCHAR, {27}).numeric_scale, 7);
  EXPECT_EQ(Describe("datetime2", SQL_WVARCHAR, {21}).numeric_scale, 1);
  EXPECT_EQ(Describe("datetime2", SQL_WVARCHAR, {19}).numeric_scale, 0);
  EXPECT_EQ(Describe("time", SQL_WVARCHAR, {8}).numeric_scale, 0);
}

}  // namespace
}  // namespace dorvane::ado::odbc
