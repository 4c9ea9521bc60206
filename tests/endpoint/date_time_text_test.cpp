#include "endpoint/date_time_text.h"

#include <gtest/gtest.h>

#include "platform/run_time_error.h"

namespace dorvane {

namespace {

TEST(DateTimeText, ReadsWhatDefaultsLookLike) {
  EXPECT_EQ(DateTimeText(ParseDateTime("2020-02-29")), "2020-02-29 00:00:00");
  EXPECT_EQ(DateTimeText(ParseDateTime("20200229 7:05")), "2020-02-29 07:05:00");
  EXPECT_EQ(DateTimeText(ParseDateTime("2020-02-29T23:59:59.5")), "2020-02-29 23:59:59");
  EXPECT_EQ(ParseDateTime("2020-02-29 00:00:00.5").nanoseconds, 500'000'000);
  EXPECT_EQ(DateTimeText(ParseDateTime("2/29/2020")), "2020-02-29 00:00:00");
  EXPECT_EQ(DateTimeText(ParseDateTime("10:20:30")), "1899-12-30 10:20:30");
  EXPECT_EQ(DateTimeText(ParseDateTime("0000-00-00 0:00")), "0000-00-00 00:00:00");
  for (const char* text :
       {"", "soon", "2021-02-29", "2020-13-01", "2020-02-", "2020-02-29 24:00:00", "2020-02-29 x",
        "2020-02-29 10:20:30.", "12/31", "12/31/", "1/2/20", "10:", "10:20:", "10:60", "0000-00-01",
        "99999999999999999999"}) {
    try {
      ADD_FAILURE() << text << " is read as " << DateTimeText(ParseDateTime(text));
    } catch (const RunTimeError& error) {
      EXPECT_EQ(error.Number(), run_time::kTypeMismatch) << text;
    }
  }
}

TEST(DateTimeText, TimesOutsideTheDayMoveTheDate) {
  const auto moved = [](std::int32_t seconds, std::int32_t nanoseconds) {
    return DateTimeText(Normalised({1899, 12, 30, seconds, nanoseconds}));
  };
  EXPECT_EQ(moved(3600, 0), "1899-12-30 01:00:00");
  EXPECT_EQ(moved(838 * 3600, 0), "1900-02-02 22:00:00");
  EXPECT_EQ(moved(-1, 0), "1899-12-29 23:59:59");
  EXPECT_EQ(moved(0, -1), "1899-12-29 23:59:59");
  EXPECT_EQ(moved(-86400, 0), "1899-12-29 00:00:00");
}

TEST(DateTimeText, CutsFractionsToMicroseconds) {
  char text[kDateTimeSize];
  const ado::DateTime value{9999, 12, 31, 86399, 999'999'999};
  EXPECT_EQ(std::string(text, WriteDateTime(text, value, 6)), "9999-12-31 23:59:59.999999");
  EXPECT_EQ(std::string(text, WriteTime(text, value, 0)), "23:59:59");
}

}  // namespace
}  // namespace dorvane
