#include "platform/ado/value_text.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <limits>

namespace dorvane::ado {

namespace {

TEST(ValueText, NumbersReadBackEqual) {
  const auto text = [](double value) { return ToText(value, DataType::Double); };
  EXPECT_EQ(text(3.0), "3");
  EXPECT_EQ(text(1e22), "1.0e+22");
  EXPECT_EQ(text(-1.5e-300), "-1.5e-300");
  EXPECT_EQ(text(std::numeric_limits<double>::denorm_min()), "5.0e-324");
  EXPECT_EQ(std::stod(text(DBL_MAX)), DBL_MAX);
  EXPECT_EQ(ToText(0.1F, DataType::Single), "0.1");
  EXPECT_EQ(ToText(std::uint64_t{UINT64_MAX}, DataType::UnsignedBigInt), "18446744073709551615");
  EXPECT_EQ(ToText(Decimal{"-0.10"}, DataType::Numeric), "-0.10");
  EXPECT_EQ(ToText(true, DataType::Boolean), "1");
}

TEST(ValueText, MomentsShowWhatTheirTypeHas) {
  const DateTime moment{2024, 2, 9, 3723, 120000000};
  EXPECT_EQ(ToText(moment, DataType::DBTimeStamp), "2024-02-09 01:02:03.12");
  EXPECT_EQ(ToText(moment, DataType::DBDate), "2024-02-09");
  EXPECT_EQ(ToText(moment, DataType::DBTime), "01:02:03.12");
  EXPECT_EQ(ToText(DateTime{.seconds = -3020399}, DataType::DBTime), "-838:59:59");
}

}  // namespace
}  // namespace dorvane::ado
