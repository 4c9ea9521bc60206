#include <gtest/gtest.h>

#include "tests/support/process.h"
#include "tests/support/servers.h"
#include "tests/support/temp_folder.h"

namespace dorvane::test {

namespace {

/// The client, at the version whose ways the script knows.
constexpr char kClient[] = "tedious@18.6.1";

TEST(SandboxOutsider, AClientOfAnotherMakeReadsTheWire) {
  if (test::Run({"sh", "-c", "command -v node && command -v npm"}).status != 0) {
    GTEST_SKIP() << "needs Node.js and npm";
  }
  const TempFolder folder;
  const std::string modules = (folder.Path() / "node_modules").string();
  const Outcome installed = test::Run({"npm", "install", "--ignore-scripts", "--no-audit",
                                       "--no-fund", "--prefix", folder.Path().string(), kClient},
                                      std::chrono::minutes(4));
  if (installed.status != 0) GTEST_SKIP() << "cannot get the client: " << installed.output;
  const SandboxServer server({"shop"});
  const Outcome outcome = test::Run({"node", OUTSIDER_SCRIPT, std::to_string(server.Port())},
                                    std::chrono::minutes(1), {{"NODE_PATH", modules}});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
}

}  // namespace
}  // namespace dorvane::test
