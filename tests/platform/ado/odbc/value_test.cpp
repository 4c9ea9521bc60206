#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ado/types.h"
#include "tests/platform/ado/odbc/server_fixture.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;

/// What a column of a declared type is to the catalog and to a result, and a value on its way.
struct TypeCase {
  std::string declaration;
  DataType type;
  std::int64_t defined_size;
  int precision;
  int scale;
  std::string literal;
  std::string text;
};

class ServerType : public ServerTest, public testing::WithParamInterface<TypeCase> {};

void ExpectMeasures(const FieldInfo& field, const TypeCase& c) {
  EXPECT_EQ(field.type, c.type);
  EXPECT_EQ(field.defined_size, c.defined_size);
  EXPECT_TRUE(c.precision == 0 || field.precision == c.precision) << field.precision;
  EXPECT_EQ(field.numeric_scale, c.scale);
}

TEST_P(ServerType, HasItsCodeMeasuresAndValues) {
  const TypeCase& c = GetParam();
  Run("create table typed (id int not null, v " + c.declaration + " null, last int null)");
  Run("insert into typed (id, v, last) values (1, " + c.literal + ", 7)");
  Run("insert into typed (id, v, last) values (2, null, 8)");
  const std::vector<Column> columns = session_->Columns("typed");
  ASSERT_EQ(columns.size(), 3U);
  ExpectMeasures(columns[1], c);
  {
    const auto reader = session_->Execute("select v, last, v as again from typed order by id");
    ExpectMeasures(reader->Fields()[0], c);
    EXPECT_THAT(Rest(*reader),
                ElementsAre(ElementsAre(c.text, "7", c.text), ElementsAre("NULL", "8", "NULL")));
  }
  Run("drop table typed");
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, ServerType,
    testing::Values(TypeCase{"bit", DataType::Boolean, 0, 0, 0, "1", "1"},
                    TypeCase{"tinyint", DataType::UnsignedTinyInt, 0, 3, 0, "255", "255"},
                    TypeCase{"smallint", DataType::SmallInt, 0, 5, 0, "-32768", "-32768"},
                    TypeCase{"int", DataType::Integer, 0, 10, 0, "-2147483648", "-2147483648"},
                    TypeCase{"bigint", DataType::BigInt, 0, 19, 0, "9223372036854775807",
                             "9223372036854775807"},
                    TypeCase{"decimal(38,10)", DataType::Numeric, 0, 38, 10,
                             "-1234567890123456789012345678.0123456789",
                             "-1234567890123456789012345678.0123456789"},
                    TypeCase{"numeric(5,2)", DataType::Numeric, 0, 5, 2, "0.5", "0.50"},
                    TypeCase{"money", DataType::Currency, 0, 19, 4, "922337203685477.5807",
                             "922337203685477.5807"},
                    TypeCase{"smallmoney", DataType::Currency, 0, 0, 4, "-0.0001", "-0.0001"},
                    TypeCase{"real", DataType::Single, 0, 7, 0, "0.1", "0.1"},
                    TypeCase{"float", DataType::Double, 0, 15, 0, "0.1", "0.1"},
                    TypeCase{"float", DataType::Double, 0, 15, 0, "1.7976931348623157e308",
                             "1.7976931348623157e+308"}));

INSTANTIATE_TEST_SUITE_P(
    Times, ServerType,
    testing::Values(
        TypeCase{"datetime", DataType::DBTimeStamp, 0, 0, 3, "'1753-01-01 23:59:59.997'",
                 "1753-01-01 23:59:59.997"},
        TypeCase{"smalldatetime", DataType::DBTimeStamp, 0, 0, 0, "'2079-06-06 12:34:00'",
                 "2079-06-06 12:34:00"},
        TypeCase{"datetime2(7)", DataType::DBTimeStamp, 0, 0, 7, "'0001-01-01 00:00:00.1234567'",
                 "0001-01-01 00:00:00.1234567"},
        TypeCase{"datetime2(3)", DataType::DBTimeStamp, 0, 0, 3, "'9999-12-31 23:59:59.999'",
                 "9999-12-31 23:59:59.999"},
        TypeCase{"datetime2(0)", DataType::DBTimeStamp, 0, 0, 0, "'2020-02-29 01:02:03'",
                 "2020-02-29 01:02:03"},
        TypeCase{"date", DataType::DBDate, 0, 0, 0, "'0001-01-01'", "0001-01-01"},
        TypeCase{"time(7)", DataType::DBTime, 0, 0, 7, "'23:59:59.9999999'", "23:59:59.9999999"},
        TypeCase{"time(0)", DataType::DBTime, 0, 0, 0, "'01:02:03'", "01:02:03"},
        TypeCase{"datetimeoffset(7)", DataType::VarWChar, 34, 0, 0,
                 "'2020-01-02 03:04:05.1234567 +02:00'", "2020-01-02 03:04:05.1234567 +02:00"}));

std::string Repeated(const std::string& piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

INSTANTIATE_TEST_SUITE_P(
    TextAndBytes, ServerType,
    testing::Values(
        TypeCase{"char(6)", DataType::Char, 6, 0, 0, "'café'", "café  "},
        TypeCase{"varchar(20)", DataType::VarChar, 20, 0, 0, "'€ it''s œ'", "€ it's œ"},
        TypeCase{"varchar(8000)", DataType::VarChar, 8000, 0, 0, "'" + Repeated("é", 8000) + "'",
                 Repeated("é", 8000)},
        TypeCase{"nchar(3)", DataType::WChar, 3, 0, 0, "N'漢字'", "漢字 "},
        TypeCase{"nvarchar(4)", DataType::VarWChar, 4, 0, 0, "N'😀字é'", "😀字é"},
        TypeCase{"nvarchar(4000)", DataType::VarWChar, 4000, 0, 0,
                 "N'" + Repeated("漢", 4000) + "'", Repeated("漢", 4000)},
        TypeCase{"varchar(max)", DataType::VarChar, 2147483647, 0, 0,
                 "'" + Repeated("ab€", 40000) + "'", Repeated("ab€", 40000)},
        TypeCase{"nvarchar(max)", DataType::VarWChar, 1073741823, 0, 0,
                 "N'" + Repeated("x😀", 30000) + "'", Repeated("x😀", 30000)},
        TypeCase{"text", DataType::LongVarChar, 2147483647, 0, 0, "''", ""},
        TypeCase{"ntext", DataType::LongVarWChar, 1073741823, 0, 0, "N'длинный'", "длинный"},
        TypeCase{"xml", DataType::LongVarWChar, 1073741823, 0, 0, "N'<a>é</a>'", "<a>é</a>"},
        TypeCase{"binary(4)", DataType::Binary, 4, 0, 0, "0x4142", std::string("AB\0\0", 4)},
        TypeCase{"varbinary(10)", DataType::VarBinary, 10, 0, 0, "0x4100FF",
                 std::string("A\0\xFF", 3)},
        TypeCase{"varbinary(max)", DataType::LongVarBinary, 2147483647, 0, 0,
                 "0x" + Repeated("00FE", 50000), Repeated(std::string("\0\xFE", 2), 50000)},
        TypeCase{"image", DataType::LongVarBinary, 2147483647, 0, 0, "0x", ""},
        TypeCase{"uniqueidentifier", DataType::Guid, 16, 0, 0,
                 "'6f9619ff-8b86-d011-b42d-00c04fc964ff'",
                 "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"},
        TypeCase{"sql_variant", DataType::Variant, 8000, 0, 0, "N'é'", "é"},
        TypeCase{"sql_variant", DataType::Variant, 8000, 0, 0, "42", "42"}));

TEST_F(ServerTest, ATimestampColumnHasEightBytes) {
  Run("create table stamped (id int not null, ts timestamp)");
  Run("insert into stamped (id) values (1)");
  const auto reader = session_->Execute("select ts from stamped");
  EXPECT_EQ(reader->Fields()[0].type, DataType::Binary);
  EXPECT_EQ(reader->Fields()[0].defined_size, 8);
  EXPECT_EQ(Rest(*reader).at(0).at(0).size(), 8U);
}

TEST_F(ServerTest, AValueOfMegabytesArrivesWhole) {
  Run("create table big (id int not null, picture image null, note nvarchar(max) null)");
  Run("insert into big values (1, 0x" + Repeated("C0FFEE", 1700000) + ", N'" +
      Repeated("é", 1000000) + "')");
  Run("insert into big values (2, 0x01, N'small')");
  const auto rows = Rows("select * from big order by id");
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_TRUE(rows[0][1] == Repeated("\xC0\xFF\xEE", 1700000));
  EXPECT_TRUE(rows[0][2] == Repeated("é", 1000000));
  EXPECT_THAT(rows[1], ElementsAre("2", "\x01", "small"));
}

}  // namespace
}  // namespace dorvane::ado
