#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/faults/fault_run.h"

namespace dorvane::test {

namespace {

constexpr ServerKind kToMySql = ServerKind::MsSql;
constexpr ServerKind kToMsSql = ServerKind::MySql;

/// A dozen troubles, each in the midst of a run; scripts/faults draws any number of others.
const std::vector<Scenario> kScenarios = {
    {kToMySql, Side::Source, Trouble::Reset, true, 0.5, false},
    {kToMySql, Side::Destination, Trouble::Truncate, false, 0.5, true},
    {kToMySql, Side::Source, Trouble::Corrupt, true, 0.3, false},
    {kToMySql, Side::Destination, Trouble::Swallow, false, 0.4, true},
    {kToMsSql, Side::Source, Trouble::Stall, true, 0.4, false},
    {kToMsSql, Side::Source, Trouble::Cut, true, 0.02, true},
    {kToMsSql, Side::Destination, Trouble::Corrupt, false, 0.6, false},
    {kToMsSql, Side::Destination, Trouble::SwallowAnswers, true, 0.7, true},
    {kToMySql, Side::Destination, Trouble::KillServer, false, 0.6, true},
    {kToMsSql, Side::Destination, Trouble::PauseServer, false, 0.5, false},
    {kToMySql, Side::Destination, Trouble::FullDisk, false, 0.2, false},
    {kToMySql, Side::Destination, Trouble::FullLog, false, 0, false},
};

TEST(Faults, EndAndAreToldAndHealed) {
  Stage stage;
  FaultRunner runner(stage);
  for (const Scenario& scenario : kScenarios) {
    if (scenario.trouble == Trouble::FullDisk && !stage.Disk().IsThere()) continue;
    SCOPED_TRACE(Describe(scenario));
    const Verdict verdict = runner.Run(scenario);
    EXPECT_TRUE(verdict.has_struck);
    for (const std::string& fault : verdict.faults) ADD_FAILURE() << fault << "\n" << verdict.log;
  }
}

}  // namespace
}  // namespace dorvane::test
