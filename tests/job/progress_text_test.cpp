#include "job/progress_text.h"

#include <gtest/gtest.h>

namespace dorvane {

namespace {

using std::chrono::duration;

TEST(ProgressText, TellsRateAndTimeLeftOnceTheyMeanSomething) {
  EXPECT_EQ(ProgressText(0, 500000, duration<double>(0)), "0 of 500,000 rows");
  EXPECT_EQ(ProgressText(46000, 500000, duration<double>(1)),
            "46,000 of 500,000 rows, 46,000 rows/s, 0:10 left");
  EXPECT_EQ(ProgressText(1000, 10000000, duration<double>(10)),
            "1,000 of 10,000,000 rows, 100 rows/s, 27:46:30 left");
  EXPECT_EQ(ProgressText(10, 10, duration<double>(2)), "10 of 10 rows, 5 rows/s");
}

TEST(ProgressText, ATableThatGrewShowsNoTotal) {
  EXPECT_EQ(ProgressText(12, 10, duration<double>(2)), "12 rows, 6 rows/s");
  EXPECT_EQ(ProgressText(7, 0, duration<double>(0)), "7 rows");
}

TEST(SummaryText, TellsNoRateOfAMoment) {
  EXPECT_EQ(SummaryText(12, 34567, duration<double>(20)),
            "12 tables, 34,567 rows in 0:20, 1,728 rows/s");
  EXPECT_EQ(SummaryText(1, 1, duration<double>(0.1)), "1 table, 1 row in 0:00");
}

}  // namespace
}  // namespace dorvane
