#include "endpoint/value_text.h"

#include <gtest/gtest.h>

#include <charconv>
#include <random>

#include "platform/run_time_error.h"

namespace dorvane {
namespace {

std::string Number(const ado::Value& value) {
  std::string text(NumberSize(value), '#');
  text.resize(WriteNumber(text.data(), value));
  return text;
}

TEST(NumberText, WritesABlankAndAPoint) {
  EXPECT_EQ(Number(3.0), " 3.0");
  EXPECT_EQ(Number(0.0), " 0.0");
  EXPECT_EQ(Number(-2.5), "-2.5");
  EXPECT_EQ(Number(0.1f), " 0.1");
  EXPECT_EQ(Number(100000.0), " 100000.0");
  EXPECT_EQ(Number(1e22), " 1.0e+22");
  EXPECT_EQ(Number(-5e-324), "-5.0e-324");
  EXPECT_EQ(Number(std::int64_t{-7}), "-7.0");
  EXPECT_EQ(Number(ado::Decimal{"12.50"}), " 12.50");
  EXPECT_EQ(Number(ado::Decimal{"-99999999999999999999999999999999999999"}),
            "-99999999999999999999999999999999999999.0");
}

TEST(NumberText, FloatsReadBackEqualAndLongOnesAreInExponentForm) {
  EXPECT_EQ(Number(0.12345678901234568), " 1.2345678901234568e-01");
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    const double value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    const std::string text = Number(value);
    EXPECT_NE(text.find('.'), std::string::npos) << text;
    double back = 0;
    const char* first = text.data() + (text[0] == ' ' ? 1 : 0);
    std::from_chars(first, text.data() + text.size(), back);
    ASSERT_EQ(back, value) << text;
  }
}

TEST(NumberText, TakesTheNumbersThatPeopleWriteAsDefaults) {
  EXPECT_EQ(NumberText("0"), " 0.0");
  EXPECT_EQ(NumberText(" +1.50 "), " 1.5");
  EXPECT_EQ(NumberText("-.5"), "-0.5");
  EXPECT_EQ(NumberText("007"), " 7.0");
  EXPECT_EQ(NumberText("-0.00"), " 0.0");
  EXPECT_EQ(NumberText("1e3"), " 1000.0");
  EXPECT_EQ(NumberText("12345678901234567890.123456789"), " 12345678901234567890.123456789");
  for (const char* text : {"", "abc", "1 2", "0x10", "getdate()"}) {
    EXPECT_THROW(NumberText(text), RunTimeError) << text;
  }
}

TEST(DateText, ReadsWhatDefaultsLookLike) {
  EXPECT_EQ(DateTimeText(ParseDateTime("2020-02-29")), "2020-02-29 00:00:00");
  EXPECT_EQ(DateTimeText(ParseDateTime("20200229 7:05")), "2020-02-29 07:05:00");
  EXPECT_EQ(DateTimeText(ParseDateTime("2020-02-29T23:59:59.5")), "2020-02-29 23:59:59");
  EXPECT_EQ(ParseDateTime("2020-02-29 00:00:00.5").nanoseconds, 500'000'000);
  EXPECT_EQ(DateTimeText(ParseDateTime("2/29/2020")), "2020-02-29 00:00:00");
  EXPECT_EQ(DateTimeText(ParseDateTime("10:20:30")), "1899-12-30 10:20:30");
  EXPECT_TRUE(IsZeroDate(ParseDateTime("0000-00-00 00:00:00")));
  for (const char* text : {"", "soon", "2021-02-29", "2020-02-29 24:00:00", "2020-02-29 x",
                           "2020-13-01", "2020-02-29 10:20:30.", "99999999999999999999"}) {
    EXPECT_THROW(ParseDateTime(text), RunTimeError) << text;
  }
}

TEST(DateText, TimesOutsideTheDayMoveTheDate) {
  const auto moved = [](std::int32_t seconds, std::int32_t nanoseconds) {
    return DateTimeText(Normalised({1899, 12, 30, seconds, nanoseconds}));
  };
  EXPECT_EQ(moved(3600, 0), "1899-12-30 01:00:00");
  EXPECT_EQ(moved(838 * 3600, 0), "1900-02-02 22:00:00");
  EXPECT_EQ(moved(-1, 0), "1899-12-29 23:59:59");
  EXPECT_EQ(moved(0, -1), "1899-12-29 23:59:59");
  EXPECT_EQ(moved(-86400, 0), "1899-12-29 00:00:00");
}

TEST(DateText, CutsFractionsToMicroseconds) {
  char text[kDateTimeSize];
  const ado::DateTime value{9999, 12, 31, 86399, 999'999'999};
  EXPECT_EQ(std::string(text, WriteDateTime(text, value, true)), "9999-12-31 23:59:59.999999");
  EXPECT_EQ(std::string(text, WriteTime(text, value, false)), "23:59:59");
}

TEST(ByteText, HexCodesAndDefaults) {
  EXPECT_EQ(HexCode(std::string_view("\x0A\xFF\x00", 3)), "0x0AFF00");
  EXPECT_EQ(HexCode(""), "0x");
  EXPECT_EQ(HexCode(BinaryDefaultBytes("0x0aFf")), "0x0AFF");
  EXPECT_EQ(HexCode(BinaryDefaultBytes("0xF")), "0x0F");
  EXPECT_EQ(HexCode(BinaryDefaultBytes("0xyz")), HexCode("0xyz"));
  EXPECT_EQ(HexCode(GuidBytes("{6F9619FF-8B86-D011-B42D-00C04FC964FF}")),
            "0x6F9619FF8B86D011B42D00C04FC964FF");
  EXPECT_EQ(HexCode(GuidBytes("6F9619FF-8B86-D011-B42D-00C04FC964FF")), "0x00");
}

}  // namespace
}  // namespace dorvane
