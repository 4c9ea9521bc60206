#include "endpoint/number_literal.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <random>

#include "platform/run_time_error.h"

namespace dorvane {

namespace {

std::string Number(const ado::Value& value) {
  std::string text(NumberSize(value), '#');
  text.resize(WriteNumber(text.data(), value));
  return text;
}

TEST(NumberLiteral, WritesABlankAndAPoint) {
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

TEST(NumberLiteral, FloatsReadBackEqualAndLongOnesAreInExponentForm) {
  EXPECT_EQ(Number(0.123456789012345), " 0.123456789012345");
  EXPECT_EQ(Number(0.1234567890123456), " 1.234567890123456e-01");
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

TEST(NumberLiteral, TakesTheNumbersThatPeopleWriteAsDefaults) {
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

}  // namespace
}  // namespace dorvane
