#include "endpoint/failure.h"

#include <gtest/gtest.h>

#include "tests/endpoint/scripted_provider.h"

namespace dorvane {

namespace {

TEST(NativeSummary, TheLastEntrySpeaksForAShorterListAndTheRunTimeErrorForNone) {
  const RunTimeError error(-5, "test", "run-time");
  const ado::Errors two{{-1, 10, "summary", ""}, {-2, 20, "server", ""}};
  const ado::Errors one{{-1, 10, "summary", ""}};
  EXPECT_EQ(NativeSummary(two, 1, error).number, 20);
  EXPECT_EQ(NativeSummary(two, 0, error).description, "summary");
  EXPECT_EQ(NativeSummary(one, 1, error).number, 10);
  EXPECT_EQ(NativeSummary({}, 1, error).number, -5);
  EXPECT_EQ(NativeSummary({}, 1, error).description, "run-time");
}

TEST(DestinationFailure, KeepsTheListOfItsMoment) {
  test::ScriptedServer server;
  server.Fail("bad", test::Failure(-100, 7, "refused"));
  ado::Connection connection(server);
  connection.Open({});
  try {
    ExecuteOn(connection, "bad");
    FAIL();
  } catch (const DestinationFailure& failure) {
    connection.Execute("good");
    ASSERT_TRUE(connection.Errors().empty());
    EXPECT_EQ(failure.Entries().size(), 1u);
    EXPECT_EQ(SummaryOf(failure).number, -100);
    EXPECT_EQ(failure.NativeError(), 7);
  }
}

}  // namespace
}  // namespace dorvane
