#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/e2e/rig.h"
#include "tests/faults/run_log.h"
#include "tests/faults/scenario.h"
#include "tests/faults/stage.h"

namespace dorvane::test {

/// What became of a run under a trouble.
struct Verdict {
  bool has_struck = false;  // the trouble came while the program was at work
  int status = -1;          // the exit status; -1 for a run that had to be killed
  double seconds = 0;
  int tables_done = 0;
  std::vector<std::string> faults = {};  // what is not as promised
  std::string log = {};

  bool IsHang() const { return status == -1; }
  bool IsCrash() const { return status >= 128; }
};

/// Runs of the real program under a trouble. After each, and after a second one without any
/// trouble, it looks whether what the program said is what the destination holds.
class FaultRunner {
 public:
  /// Measures undisturbed runs first. The stage must outlive it. Throws std::runtime_error when
  /// these fail.
  explicit FaultRunner(Stage& stage);

  Verdict Run(const Scenario& scenario);

 private:
  /// An undisturbed run of one direction.
  struct Usual {
    double seconds = 0;
    std::map<std::pair<Side, bool>, std::size_t> bytes;  // of a side's answers (true), requests
  };
  struct Ended {
    int status = -1;
    double seconds = 0;
    bool has_struck = false;
    RunLog log;
  };

  void MeasureUsual(ServerKind source);
  Job MakeJob(const Scenario& scenario, const std::string& database) const;
  Ended RunProgram(const Job& job, const Scenario* trouble);
  void Judge(const Scenario& scenario, const std::string& database, const Ended& ended,
             std::vector<std::string>& faults);
  void Compare(const Scenario& scenario, const std::string& database, const std::string& table,
               bool with_indexes, std::vector<std::string>& faults) const;

  Stage& stage_;
  std::map<ServerKind, Usual> usual_;  // by the source
};

}  // namespace dorvane::test
