#include "tests/faults/scenario.h"

#include <fmt/format.h>

#include <array>
#include <random>

namespace dorvane::test {

namespace {

constexpr std::array<std::string_view, kTroubles> kNames = {
    "Cut",         "Reset",          "Truncate",  "Corrupt",    "Delay",
    "Swallow",     "SwallowAnswers", "Stall",     "KillServer", "StopServer",
    "PauseServer", "KillSessions",   "LockTable", "FullDisk",   "FullLog"};

}  // namespace

std::string_view NameOf(Trouble trouble) {
  return kNames[static_cast<std::size_t>(trouble)];
}

std::string Describe(const Scenario& scenario) {
  return fmt::format("to {}, {} at the {}{}, {:.2f}, healed by {}",
                     scenario.source == ServerKind::MsSql ? "MySQL" : "SQL Server",
                     NameOf(scenario.trouble),
                     scenario.side == Side::Source ? "source" : "destination",
                     !IsNetwork(scenario.trouble) ? ""
                     : scenario.on_answers        ? ", answers"
                                                  : ", requests",
                     scenario.moment, scenario.heal_merging ? "merging" : "overwriting");
}

Scenario DrawScenario(std::uint32_t number, std::uint32_t seed, bool full_disks) {
  std::seed_seq mixed{seed, number};
  std::mt19937 random(mixed);
  Scenario scenario;
  scenario.trouble = static_cast<Trouble>(number % kTroubles);
  const std::uint32_t round = number / kTroubles;
  scenario.source = (round + number % kTroubles) % 2 == 0 ? ServerKind::MsSql : ServerKind::MySql;
  scenario.side = round / 2 % 2 == 0 ? Side::Destination : Side::Source;
  scenario.on_answers = random() % 2 == 0;
  scenario.moment = static_cast<double>(random() % 1000) / 1000;
  scenario.heal_merging = random() % 2 == 0;
  if (scenario.trouble == Trouble::FullDisk) {
    scenario.side = Side::Destination;
    scenario.moment /= 4;  // before everything is stored
    if (!full_disks) scenario.trouble = Trouble::KillServer;
  }
  if (scenario.trouble == Trouble::KillSessions && scenario.Server() != ServerKind::MySql) {
    scenario.side = scenario.side == Side::Source ? Side::Destination : Side::Source;
  }
  return scenario;
}

}  // namespace dorvane::test
