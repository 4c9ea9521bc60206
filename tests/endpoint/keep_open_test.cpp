#include "endpoint/keep_open.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "tests/endpoint/recorders.h"
#include "tests/endpoint/scripted_provider.h"

namespace dorvane::test {

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

class KeepingOpen : public testing::Test {
 protected:
  KeepingOpen() { connection_.Open({}); }

  void Keep(milliseconds pause = milliseconds(1)) {
    const std::array<milliseconds, 2> pauses{milliseconds(1), pause};
    KeepOpen(connection_, "source", host_, pauses);
  }

  ScriptedServer server_;
  HostRecorder host_;
  ado::Connection connection_{server_};
};

TEST_F(KeepingOpen, LeavesALivingConnectionAlone) {
  server_.refused_logons = 1;
  Keep();
  EXPECT_THAT(host_.notes, IsEmpty());
}

TEST_F(KeepingOpen, TellsEachTry) {
  server_.lost = true;
  server_.refused_logons = 1;
  Keep();
  EXPECT_TRUE(connection_.IsAlive());
  EXPECT_THAT(host_.notes,
              ElementsAre("The connection to the source was lost. It is opened again in 0 s (try 1 "
                          "of 2)",
                          "The connection to the source could not be opened: nobody there",
                          "The connection to the source was lost. It is opened again in 0 s (try 2 "
                          "of 2)",
                          "The connection to the source is open again"));
}

TEST_F(KeepingOpen, GivesUpOnce) {
  server_.lost = true;
  server_.refused_logons = 2;
  EXPECT_THROW(Keep(), RunTimeError);
  EXPECT_EQ(connection_.State(), ado::ObjectState::Closed);
  host_.notes.clear();
  EXPECT_THROW(Keep(), RunTimeError);
  EXPECT_THAT(host_.notes, IsEmpty());
}

TEST_F(KeepingOpen, APauseEndsWithTheRun) {
  server_.lost = true;
  server_.refused_logons = 1;
  host_.polls_until_stop = 5;
  EXPECT_THROW(Keep(std::chrono::hours(1)), RunTimeError);
  EXPECT_EQ(connection_.State(), ado::ObjectState::Closed);
}

}  // namespace
}  // namespace dorvane::test
