#include "tests/faults/fault_run.h"

#include <fmt/format.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <stdexcept>
#include <thread>

#include "tests/faults/troubles.h"

namespace dorvane::test {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLimit(240);
constexpr int kIdleLimit = 2;  // seconds

ServerKind DestinationOf(const Scenario& scenario) {
  return scenario.source == ServerKind::MsSql ? ServerKind::MySql : ServerKind::MsSql;
}

/// What the log promises when the exit status is 0.
bool TellsSuccess(const RunLog& log, const NameList& tables) {
  const auto is_done = [&log](const std::string& table) {
    const auto found = log.tables.find(table);
    return found != log.tables.end() && found->second;
  };
  return log.has_ended && log.failures.empty() && std::ranges::all_of(tables, is_done);
}

}  // namespace

FaultRunner::FaultRunner(Stage& stage) : stage_(stage) {
  // The second run finds everything in memory, as those that follow do.
  for (int i = 0; i < 2; ++i) {
    for (const ServerKind source : {ServerKind::MsSql, ServerKind::MySql}) MeasureUsual(source);
  }
}

void FaultRunner::MeasureUsual(ServerKind source) {
  const Scenario none{.source = source};
  for (const ServerKind server : {ServerKind::MsSql, ServerKind::MySql}) {
    stage_.ProxyOf(server).Arm({.after = std::numeric_limits<std::size_t>::max()});
  }
  const std::string database = stage_.NewDatabase(DestinationOf(none));
  const Ended ended = RunProgram(MakeJob(none, database), nullptr);
  if (ended.status != 0) throw std::runtime_error("an undisturbed run fails:\n" + ended.log.text);
  stage_.DropDatabase(DestinationOf(none), database);
  Usual& usual = usual_[source];
  usual.seconds = ended.seconds;
  for (const Side side : {Side::Source, Side::Destination}) {
    Proxy& proxy = stage_.ProxyOf(Scenario{.source = source, .side = side}.Server());
    for (const bool answers : {false, true}) usual.bytes[{side, answers}] = proxy.Counted(answers);
  }
}

Job FaultRunner::MakeJob(const Scenario& scenario, const std::string& database) const {
  return {.source = scenario.source,
          .source_db = "source",
          .dest_db = database,
          .tables = kStageTables,
          .mode = convert_mode::kOverwrite,
          .ms_sql_port = stage_.ProxyOf(ServerKind::MsSql).Port(),
          .my_sql_port = stage_.ProxyOf(ServerKind::MySql).Port(),
          .idle_limit = kIdleLimit};
}

FaultRunner::Ended FaultRunner::RunProgram(const Job& job, const Scenario* trouble) {
  const TempFolder folder;
  const bool has_log = trouble == nullptr || trouble->trouble != Trouble::FullLog;
  const std::filesystem::path log = has_log ? folder / "log.txt" : "/dev/full";
  WriteSettings(job, folder / "run.dcs", log);
  const Clock::time_point start = Clock::now();
  const auto seconds = [start] {
    return std::chrono::duration<double>(Clock::now() - start).count();
  };
  Process program({DORVANE_PROGRAM, (folder / "run.dcs").string()}, folder / "output",
                  {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}});
  Ended ended;
  if (trouble != nullptr && !IsNetwork(trouble->trouble)) {
    std::this_thread::sleep_for(
        std::chrono::duration<double>(trouble->moment * usual_.at(trouble->source).seconds));
    ended.has_struck = program.IsRunning();
    CauseTrouble(stage_, *trouble, job.dest_db);
  }
  const auto status = program.Wait(kLimit);
  ended.seconds = seconds();
  if (!status) program.Kill();
  ended.status = status.value_or(-1);
  ended.log = ParseLog(has_log ? ReadLog(log) : "");
  ended.log.text += ReadFile(folder / "output");
  return ended;
}

Verdict FaultRunner::Run(const Scenario& scenario) {
  const std::string database = stage_.NewDatabase(DestinationOf(scenario));
  const Job job = MakeJob(scenario, database);
  // A table that is to be locked must be there.
  if (scenario.trouble == Trouble::LockTable) RunProgram(job, nullptr);
  Proxy& proxy = stage_.ProxyOf(scenario.Server());
  if (IsNetwork(scenario.trouble)) {
    const Usual& usual = usual_.at(scenario.source);
    const auto bytes = static_cast<double>(usual.bytes.at({scenario.side, scenario.on_answers}));
    proxy.Arm({.fault = FaultOf(scenario.trouble),
               .on_answers = scenario.on_answers,
               .after = static_cast<std::size_t>(bytes * scenario.moment)});
  }
  const Ended ended = RunProgram(job, &scenario);
  RelieveTrouble(stage_, scenario);

  Verdict verdict{.has_struck = ended.has_struck || proxy.HasStruck(),
                  .status = ended.status,
                  .seconds = ended.seconds,
                  .log = ended.log.text};
  for (const auto& [table, is_done] : ended.log.tables) verdict.tables_done += is_done ? 1 : 0;
  Judge(scenario, database, ended, verdict.faults);

  Job healing = job;
  if (scenario.heal_merging) {
    healing.mode = convert_mode::kMerge;
    healing.tables = kKeyedTables;
  }
  proxy.Arm({.after = std::numeric_limits<std::size_t>::max()});
  const Ended healed = RunProgram(healing, nullptr);
  if (healed.status != 0) {
    verdict.faults.push_back(
        fmt::format("the run afterwards ends with {}:\n{}", healed.status, healed.log.text));
  }
  for (const std::string& table : healing.tables) {
    // A merge leaves the indexes of a table that is there as they are.
    Compare(scenario, database, table, !scenario.heal_merging, verdict.faults);
  }
  stage_.DropDatabase(DestinationOf(scenario), database);
  return verdict;
}

void FaultRunner::Judge(const Scenario& scenario, const std::string& database, const Ended& ended,
                        std::vector<std::string>& faults) {
  if (ended.status == -1) faults.emplace_back("it hangs");
  if (ended.status >= 128) faults.push_back(fmt::format("it crashes: status {}", ended.status));
  if (scenario.trouble == Trouble::FullLog) {
    if (ended.status != 1) faults.push_back(fmt::format("status {}", ended.status));
    for (const std::string& table : kStageTables) Compare(scenario, database, table, true, faults);
    return;
  }
  if ((ended.status == 0) != TellsSuccess(ended.log, kStageTables)) {
    faults.push_back(fmt::format("status {} is not what the log says", ended.status));
  }
  for (const auto& [table, is_done] : ended.log.tables) {
    if (is_done) Compare(scenario, database, table, true, faults);
  }
}

void FaultRunner::Compare(const Scenario& scenario, const std::string& database,
                          const std::string& table, bool with_indexes,
                          std::vector<std::string>& faults) const {
  try {
    const std::vector<std::string> expected =
        stage_.ContentOf(scenario.source, "source", table, with_indexes);
    const std::vector<std::string> found =
        stage_.ContentOf(DestinationOf(scenario), database, table, with_indexes);
    if (expected == found) return;
    const auto [one, other] = std::ranges::mismatch(expected, found);
    faults.push_back(fmt::format(
        "table {} has {} facts of {}, the first that differs: '{}', '{}'", table, found.size(),
        expected.size(), one == expected.end() ? "" : *one, other == found.end() ? "" : *other));
  } catch (const RunTimeError& error) {
    faults.push_back(fmt::format("table {} cannot be read: {}", table, error.Description()));
  }
}

}  // namespace dorvane::test
