#include "endpoint/lanes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <thread>

#include "tests/endpoint/recorders.h"

namespace dorvane::test {

namespace {

using testing::Each;
using testing::SizeIs;

const NameList kTables{"a", "b", "c", "d", "e", "f", "g", "h"};

class LanesTest : public testing::Test {
 protected:
  void Run(const std::set<std::size_t>& lost) {
    lanes_.Run(
        TableQueue(kTables),
        {.prepare = [&](std::size_t lane) { return !lost.contains(lane); },
         .convert =
             [&](std::size_t lane, const std::string& table) {
               lanes_.Record(lane).TableConversionFailed(fmt::format("{} on lane {}", table, lane));
             }});
  }

  EventRecorder events_;
  HostRecorder host_;
  Lanes lanes_{3, events_, host_};
};

TEST_F(LanesTest, OneThatCannotWorkLeavesItsTablesToTheOthers) {
  Run({0, 2});
  EXPECT_THAT(events_.events, SizeIs(kTables.size()));
  EXPECT_THAT(events_.events, Each(testing::EndsWith("on lane 1")));
}

TEST_F(LanesTest, TheLastOneReportsEveryTable) {
  Run({0, 1, 2});
  EXPECT_THAT(events_.events, SizeIs(kTables.size()));
}

TEST_F(LanesTest, AFailureOfOneEndsAll) {
  std::atomic<int> converted = 0;
  const auto convert = [&](std::size_t lane, const std::string& table) {
    if (table == "b") throw std::length_error("out of memory");
    lanes_.Record(lane).Inform(table);
    ++converted;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  };
  EXPECT_THROW(
      lanes_.Run(TableQueue(kTables), {.prepare = [](auto) { return true; }, .convert = convert}),
      std::length_error);
  EXPECT_LT(converted, static_cast<int>(kTables.size()) - 1);
  EXPECT_THAT(host_.notes, SizeIs(converted.load()));
}

}  // namespace
}  // namespace dorvane::test
