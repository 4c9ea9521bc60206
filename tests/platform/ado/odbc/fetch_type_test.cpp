#include "platform/ado/odbc/fetch_type.h"

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include <string>

#include "platform/ado/errors.h"
#include "platform/ado/odbc/utf16.h"

namespace dorvane::ado::odbc {

namespace {

TEST(Utf16, CarriesEveryCharacterThereAndBack) {
  for (const std::string text : {"", "plain", "café €", "漢字", "\xF0\x9F\x98\x80 end",
                                 "\xF4\x8F\xBF\xBF", "\xEE\x80\x80", "\x01\x7F\xC2\x80"}) {
    EXPECT_EQ(ToUtf8(ToUtf16(text)), text);
  }
  EXPECT_EQ(ToUtf16("\xF0\x9F\x98\x80"), u"\xD83D\xDE00");
}

TEST(Utf16, ReplacesWhatIsNoText) {
  EXPECT_EQ(ToUtf8(u"a\xD83D"), "a\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(u"\xDE00z"), "\xEF\xBF\xBDz");
  EXPECT_EQ(ToUtf8(u"\xD83D\xD83D\xDE00"), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
  EXPECT_EQ(ToUtf16("a\xFFz"), u"a\xFFFDz");
  EXPECT_EQ(ToUtf16("\xE2\x82"), u"\xFFFD\xFFFD");            // cut off
  EXPECT_EQ(ToUtf16("\xC0\xAF"), u"\xFFFD\xFFFD");            // a longer form than needed
  EXPECT_EQ(ToUtf16("\xED\xA0\x80"), u"\xFFFD\xFFFD\xFFFD");  // a surrogate
}

std::string DecimalOf(const std::string& fetched) {
  Arena storage;
  return std::string(std::get<Decimal>(ToValue(FetchType::Decimal, fetched, storage)).digits);
}

TEST(FetchedDecimal, HasADigitBeforeThePoint) {
  EXPECT_EQ(DecimalOf(".5"), "0.5");
  EXPECT_EQ(DecimalOf("-.0500"), "-0.0500");
  EXPECT_EQ(DecimalOf("12.3400"), "12.3400");
  EXPECT_EQ(DecimalOf("-99999999999999999999999999999999999999"),
            "-99999999999999999999999999999999999999");
}

DateTime TimeOf(const std::string& fetched) {
  Arena storage;
  return std::get<DateTime>(ToValue(FetchType::Time, fetched, storage));
}

TEST(FetchedTime, KeepsAllOfItsFraction) {
  EXPECT_EQ(TimeOf("23:59:59.9999999"), (DateTime{1899, 12, 30, 86399, 999999900}));
  EXPECT_EQ(TimeOf("00:00:00"), DateTime());
  EXPECT_EQ(TimeOf("01:02:03.05"), (DateTime{1899, 12, 30, 3723, 50000000}));
}

TEST(FetchedTime, ThatIsNoneIsAnError) {
  for (const std::string text : {"", "12:3", "ab:cd:ef", "12:30:00.x"}) {
    EXPECT_THROW(TimeOf(text), ProviderError) << text;
  }
}

template <typename T>
std::string BytesOf(const T& value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

TEST(FetchedStructures, BecomeTheirValues) {
  Arena storage;
  const SQL_TIMESTAMP_STRUCT time = {9999, 12, 31, 23, 59, 59, 999999900};
  EXPECT_EQ(std::get<DateTime>(ToValue(FetchType::Timestamp, BytesOf(time), storage)),
            (DateTime{9999, 12, 31, 86399, 999999900}));
  const SQL_DATE_STRUCT date = {1, 2, 3};
  EXPECT_EQ(std::get<DateTime>(ToValue(FetchType::Date, BytesOf(date), storage)),
            (DateTime{1, 2, 3, 0, 0}));
  const SQLGUID guid = {0x6F9619FF, 0x8B86, 0xD011, {0xB4, 0x2D, 0, 0xC0, 0x4F, 0xC9, 0x64, 0x0F}};
  EXPECT_EQ(std::get<Guid>(ToValue(FetchType::Guid, BytesOf(guid), storage)).text,
            "{6F9619FF-8B86-D011-B42D-00C04FC9640F}");
}

}  // namespace
}  // namespace dorvane::ado::odbc
