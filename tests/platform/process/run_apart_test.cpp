#include "platform/process/run_apart.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace dorvane::process {

namespace {

TEST(RunApart, GivesWhatTheWorkWrote) {
  const std::string large(3 << 20, 'x');
  int touched = 0;
  const auto bytes = RunApart([&](const ByteSink& sink) {
    touched = 1;
    sink("begin");
    sink(large);
  });
  EXPECT_TRUE(bytes == "begin" + large);
  EXPECT_EQ(touched, 0) << "the work has a memory of its own";
  EXPECT_EQ(RunApart([](const ByteSink&) {}), "");
}

TEST(RunApart, GivesNothingWhenTheWorkFails) {
  EXPECT_FALSE(RunApart([](const ByteSink& sink) {
    sink("half");
    std::abort();
  }));
  EXPECT_FALSE(RunApart([](const ByteSink&) { throw std::runtime_error("no"); }));
  const WorkLimits limits{.time = std::chrono::seconds(1), .bytes = 1000};
  EXPECT_FALSE(RunApart(
      [](const ByteSink&) { std::this_thread::sleep_for(std::chrono::minutes(1)); }, limits));
  EXPECT_FALSE(RunApart(
      [](const ByteSink& sink) {
        for (;;) sink("more and more");
      },
      limits));
}

}  // namespace
}  // namespace dorvane::process
