#include "ui/wizard/transfer_progress.h"

#include <gtest/gtest.h>

#include "ui/wizard/table_outcome.h"

namespace dorvane {

namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using Bar = TransferProgress::Bar;

class Progress : public testing::Test {
 protected:
  TransferProgress::Clock::time_point now_{};
  TransferProgress progress_{[this] { return now_; }};
};

TEST_F(Progress, FourTablesWithRelationshipsTakeEightSteps) {
  EXPECT_EQ(progress_.Status(), "- - - - -");
  progress_.ConversionStarted(4, true);
  EXPECT_EQ(progress_.Status(), "Initializing the conversion.......");
  EXPECT_EQ(progress_.Tables(), (Bar{0, 8}));
  for (int i = 0; i < 4; ++i) {
    progress_.TableConversionStarted("t");
    progress_.TableEnded();
  }
  EXPECT_EQ(progress_.Status(), "Converting table 't' .....");
  for (int i = 0; i < 4; ++i) progress_.TableRelationsConversionStarted("t");
  EXPECT_EQ(progress_.Status(), "Converting relationships for table 't' ......");
  EXPECT_EQ(progress_.Tables(), (Bar{8, 8}));
  progress_.ConversionEnded();
  EXPECT_EQ(progress_.Status(), "Done...");
  progress_.SummaryShown();
  EXPECT_EQ(progress_.Status(), "Conversion Completed.");
}

TEST_F(Progress, RecordBarFollowsTheRowsAndStaysWithinItsMaximum) {
  progress_.ConversionStarted(1, false);
  progress_.TableContentTransferStarted(0);
  EXPECT_EQ(progress_.Records(), (Bar{1, 1})) << "an empty table is full at once";
  progress_.TableContentTransferStarted(100);
  EXPECT_EQ(progress_.Records(), (Bar{0, 100}));
  progress_.RecordsConverted(99);
  EXPECT_EQ(progress_.Records(), (Bar{99, 100}));
  progress_.RecordsConverted(3'000'000'000);
  EXPECT_EQ(progress_.Records(), (Bar{100, 100}));
  progress_.TableConversionStarted("next");
  EXPECT_EQ(progress_.Records().value, 0);
}

TEST_F(Progress, RowsLineTellsRateAndTimeLeftWhileRowsAreCopied) {
  progress_.ConversionStarted(1, false);
  EXPECT_EQ(progress_.RowsText(), "");
  progress_.TableContentTransferStarted(10'000);
  now_ += seconds(2);
  progress_.RecordsConverted(2'000);
  EXPECT_EQ(progress_.RowsText(), "2,000 of 10,000 rows, 1,000 rows/s, 0:08 left");
  progress_.TableConversionStarted("next");
  EXPECT_EQ(progress_.RowsText(), "");
}

TEST_F(Progress, OfTablesAtOnceTheRowsAreThoseOfAllThatBegan) {
  progress_.ConversionStarted(3, false);
  progress_.ShowTablesInHand({.names = {"a", "b"}});
  EXPECT_EQ(progress_.RowsText(), "");
  now_ += seconds(5);
  progress_.ShowTablesInHand({.names = {"a", "b"}, .announced = 10'000'000'000});
  now_ += seconds(1);
  progress_.ShowTablesInHand(
      {.names = {"b", "c"}, .ended = 1, .rows = 5'000'000'000, .announced = 10'000'000'000});
  EXPECT_EQ(progress_.Status(), "Converting tables 'b', 'c' .....");
  EXPECT_EQ(progress_.Records(), (Bar{500, 1000}));
  const std::string rows = "5,000,000,000 of 10,000,000,000 rows, 5,000,000,000 rows/s, 0:01 left";
  EXPECT_EQ(progress_.RowsText(), rows);
  // What one of them was is told when it is over, and shows nothing new but that.
  progress_.TableConversionStarted("a");
  progress_.TableContentTransferStarted(30);
  progress_.RecordsConverted(30);
  progress_.TableConverted();
  EXPECT_EQ(progress_.Status(), "Converting tables 'b', 'c' .....");
  EXPECT_EQ(progress_.RowsText(), rows);
  EXPECT_EQ(progress_.Tables(), (Bar{1, 3}));
  now_ += seconds(4);
  progress_.ConversionEnded();
  EXPECT_EQ(progress_.RowsText(), "1 table, 30 rows in 0:10, 3 rows/s");
}

TEST_F(Progress, TheTimeLeftFollowsTheShareThatIsDone) {
  EXPECT_EQ(progress_.TimeText(), "");
  progress_.ConversionStarted(4, false);
  progress_.TableConversionStarted("a");
  progress_.TableConverted();
  now_ += seconds(1);
  EXPECT_EQ(progress_.TimeText(), "Elapsed 00:00:01") << "too early to say";
  now_ += seconds(29);
  progress_.TableConversionStarted("b");
  progress_.TableContentTransferStarted(1'000);
  progress_.RecordsConverted(500);
  EXPECT_EQ(progress_.Percent(), 37);
  EXPECT_EQ(progress_.TimeText(), "Elapsed 00:00:30, about 00:00:50 left");
  now_ += seconds(10);
  EXPECT_EQ(progress_.TimeText(), "Elapsed 00:00:40") << "nothing arrives";
  progress_.ConversionEnded();
  EXPECT_EQ(progress_.TimeText(), "");
  EXPECT_FALSE(progress_.Percent());
}

TEST(OutcomesOfTables, TimesAddUpAndTablesSideBySideHaveTheirOwn) {
  OutcomeRecorder::Clock::time_point now{};
  OutcomeRecorder recorder([&] { return now; });
  recorder.RunStarted({"a", "b", "c", "d"});
  recorder.TableStarted("a");
  recorder.RowsAnnounced(5);
  recorder.RowsConverted(5);
  now += seconds(3);
  recorder.TableStarted("b");
  now += seconds(4);
  EXPECT_EQ(recorder.TableEnded("b", TableState::Failed).took, seconds(4));
  now += seconds(100);
  recorder.TableStarted("a");
  now += seconds(2);
  const TableOutcome waited = recorder.TableEnded("a", TableState::Done);
  EXPECT_EQ(waited.took, seconds(5)) << "its rows had to wait meanwhile";
  EXPECT_EQ(waited.announced, 5);
  EXPECT_EQ(waited.rows, 5);
  recorder.TablesInHandSeen({.names = {"c", "d"}});
  now += seconds(7);
  recorder.TablesInHandSeen({.names = {"c", "d"}});
  recorder.TableStarted("c");
  EXPECT_EQ(recorder.TableEnded("c", TableState::Done).took, seconds(7));
  const std::vector<TableOutcome> unended = recorder.RunEnded(false);
  ASSERT_EQ(unended.size(), 1u);
  EXPECT_EQ(unended[0].name, "d");
}

TEST(OutcomesOfTables, WhatWasBegunAndNotEndedHasFailedUnlessItWasStopped) {
  const auto states_when = [](bool is_stopped) {
    OutcomeRecorder recorder;
    recorder.RunStarted({"a", "b", "c"});
    recorder.TableStarted("a");
    recorder.TableStarted("b");
    std::vector<TableState> states;
    for (const TableOutcome& table : recorder.RunEnded(is_stopped)) states.push_back(table.state);
    return states;
  };
  using enum TableState;
  EXPECT_EQ(states_when(false), (std::vector{Failed, Failed, LeftOut}));
  EXPECT_EQ(states_when(true), (std::vector{Failed, LeftOut, LeftOut}));
}

TEST_F(Progress, AComparisonIsAFurtherStepOfEachTable) {
  progress_.ConversionStarted(2, false, true);
  EXPECT_EQ(progress_.Tables(), (Bar{0, 4}));
  for (int i = 0; i < 2; ++i) {
    progress_.TableConverted();
    progress_.TableStepEnded();
  }
  progress_.ComparisonStarted();
  EXPECT_EQ(progress_.Tables(), (Bar{2, 4}));
  progress_.TableComparisonStarted("t", 5'000'000'000);
  now_ += seconds(1);
  progress_.RowsCompared(1'000'000'000);
  progress_.RowsCompared(0);  // they are read once more
  EXPECT_EQ(progress_.Status(), "Comparing table 't' .....");
  EXPECT_EQ(progress_.Records(), (Bar{1'000'000'000, 2'147'483'647}));
  EXPECT_EQ(progress_.RowsText(),
            "1,000,000,000 of 5,000,000,000 rows, 1,000,000,000 rows/s, 0:04 left");
  progress_.TableStepEnded();
  EXPECT_EQ(progress_.Tables(), (Bar{3, 4}));
  progress_.ShowTablesInHand({.names = {"t", "u"}, .rows = 1, .announced = 2});
  EXPECT_EQ(progress_.Status(), "Comparing tables 't', 'u' .....");
  EXPECT_TRUE(progress_.Summary(2, 0, 2, 1).ends_with("\r\nVerified: 1 of 2 tables equal"));
}

TEST_F(Progress, SummaryCountsAndTellsTheElapsedTime) {
  progress_.ConversionStarted(2, false);
  now_ += minutes(1) + seconds(5);
  progress_.ConversionEnded();
  now_ += hours(1);
  EXPECT_EQ(progress_.Summary(1, 1),
            "Transfer Complete!\r\nNo. of converted tables: 1\r\nNo. of Failed tables: 1\r\n"
            "Elapsed time: 00:01:05");
  EXPECT_EQ(ElapsedText(hours(25)), "01:00:00");
  EXPECT_EQ(ElapsedText(hours(23) + minutes(59) + seconds(59)), "23:59:59");
}

}  // namespace
}  // namespace dorvane
