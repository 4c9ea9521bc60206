// Plays the scripts of this folder.
#include <gtest/gtest.h>

#include "tests/ui/wizard/script_player.h"

namespace dorvane::test {

namespace {

class Scripts : public testing::TestWithParam<WizardScript> {};

TEST_P(Scripts, ArePlayedAsWritten) {
  ScriptPlayer().Play(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Wizard, Scripts, testing::ValuesIn(ReadWizardScripts(SCRIPT_FOLDER)),
                         [](const auto& script) { return script.param.name; });

}  // namespace
}  // namespace dorvane::test
