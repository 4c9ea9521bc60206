// Runs the scripts of this folder: conversions between real servers, by the program's own
// unattended run.

#include <gtest/gtest.h>

#include "tests/conversions/script.h"
#include "tests/conversions/script_run.h"

namespace dorvane::test {

namespace {

class Conversions : public testing::TestWithParam<Script> {};

TEST_P(Conversions, GoAsWritten) {
  const Lines& ways = GetParam().ways;
  Remembered first;
  for (const std::string& way : ways.empty() ? Lines{"blocks"} : ways) {
    RunScript(GetParam(), FindWay(way), first);
  }
}

INSTANTIATE_TEST_SUITE_P(Scripts, Conversions, testing::ValuesIn(ReadScripts(SCRIPT_FOLDER)),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace dorvane::test
