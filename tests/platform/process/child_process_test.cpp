#include "platform/process/child_process.h"

#include <gtest/gtest.h>

#include "tests/support/refusal.h"

namespace dorvane::process {

namespace {

TEST(ChildProcess, PassesBytesAndStatusBothWays) {
  const std::string megabyte(1 << 20, 'x');
  const ChildResult echo = RunChild({"cat"}, megabyte);
  EXPECT_EQ(echo.status, 0);
  EXPECT_EQ(echo.output, megabyte);

  // A child that reads nothing must not take us down with a broken pipe.
  EXPECT_EQ(RunChild({"true"}, megabyte).status, 0);
  EXPECT_EQ(RunChild({"sh", "-c", "kill -9 $$"}).status, 137);
  EXPECT_THROW(RunChild({"sleep", "60"}, {}, std::chrono::seconds(1)), RunTimeError);
  EXPECT_THROW(RunChild({"no-such-command-here"}), RunTimeError);
  EXPECT_EQ(test::RefusalOf([] {
              RunChildOrThrow({"sh", "-c", "echo out; echo why >&2; exit 3"});
            }),
            std::pair(kCommandFailed, std::string("why")));
}

}  // namespace
}  // namespace dorvane::process
