// Runs the program under one trouble after another and prints what became of it.

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <string_view>

#include "tests/faults/fault_run.h"

namespace {

using namespace dorvane::test;

struct Options {
  std::uint32_t runs = 100;
  std::uint32_t seed = 1;
  std::uint32_t first = 0;  // number of the first run
};

bool ReadOptions(int argc, char** argv, Options& options) {
  const std::map<std::string_view, std::uint32_t*> numbers = {
      {"--runs", &options.runs}, {"--seed", &options.seed}, {"--first", &options.first}};
  for (int i = 1; i + 1 < argc; i += 2) {
    const auto found = numbers.find(argv[i]);
    const std::string_view text = argv[i + 1];
    if (found == numbers.end()) return false;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), *found->second);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) return false;
  }
  return argc % 2 == 1;
}

/// The figures of one trouble, or of all.
struct Figures {
  int runs = 0, struck = 0, succeeded = 0, failed = 0, crashes = 0, hangs = 0, wrong = 0;
  double longest = 0;

  void Add(const Verdict& verdict) {
    ++runs;
    struck += verdict.has_struck ? 1 : 0;
    succeeded += verdict.status == 0 ? 1 : 0;
    failed += verdict.status == 1 ? 1 : 0;
    crashes += verdict.IsCrash() ? 1 : 0;
    hangs += verdict.IsHang() ? 1 : 0;
    wrong += verdict.faults.empty() ? 0 : 1;
    longest = std::max(longest, verdict.seconds);
  }
  void Print(std::string_view name) const {
    fmt::print("| {:<14} | {:>4} | {:>6} | {:>8} | {:>8} | {:>7} | {:>5} | {:>5} | {:>9.1f} |\n",
               name, runs, struck, succeeded, failed, crashes, hangs, wrong, longest);
  }
};

void PrintTable(const std::map<Trouble, Figures>& by_trouble, const Figures& all) {
  fmt::print(
      "\n| trouble        | runs | struck | status 0 | status 1 | crashes | hangs | wrong | "
      "longest "
      "s |\n|---|---|---|---|---|---|---|---|---|\n");
  for (const auto& [trouble, figures] : by_trouble) figures.Print(NameOf(trouble));
  all.Print("all");
}

int RunAll(const Options& options) {
  Stage stage;
  FaultRunner runner(stage);
  std::map<Trouble, Figures> by_trouble;
  Figures all;
  for (std::uint32_t i = options.first; i < options.first + options.runs; ++i) {
    const Scenario scenario = DrawScenario(i, options.seed, stage.Disk().IsThere());
    const Verdict verdict = runner.Run(scenario);
    fmt::print("{:>4} {}: {}status {}, {} tables done, {:.1f} s\n", i, Describe(scenario),
               verdict.has_struck ? "" : "too late, ", verdict.status, verdict.tables_done,
               verdict.seconds);
    for (const std::string& fault : verdict.faults) fmt::print("     WRONG: {}\n", fault);
    if (!verdict.faults.empty()) fmt::print("{}\n", verdict.log);
    std::fflush(stdout);
    by_trouble[scenario.trouble].Add(verdict);
    all.Add(verdict);
  }
  PrintTable(by_trouble, all);
  return all.wrong == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!ReadOptions(argc, argv, options)) {
    fmt::print(stderr, "faults [--runs N] [--seed S] [--first NUMBER]\n");
    return 2;
  }
  try {
    return RunAll(options);
  } catch (const std::exception& error) {
    fmt::print(stderr, "{}\n", error.what());
    return 1;
  }
}
