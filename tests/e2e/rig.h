#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "job/conversion_settings.h"
#include "tests/support/plain_endpoint.h"
#include "tests/support/process.h"
#include "tests/support/servers.h"

namespace dorvane::test {

/// What one unattended run is asked for; both servers are the rig's unless changed.
struct Job {
  ServerKind source = ServerKind::MsSql;
  std::string source_db;
  std::string dest_db;
  NameList tables;
  std::int16_t mode = convert_mode::kOverwrite;
  bool relationships = false;
  bool underscores = false;
  int ms_sql_port = 0;  // 0: the rig's server
  int my_sql_port = 0;
  int idle_limit = 600;  // seconds
  TypeMapping types = TypeMapping::Classic;
  std::string ms_sql_user = "sa";
  std::string my_sql_user = "root";
  int tables_at_once = 1;
  Verification verification = Verification::None;
  NameList reports = {};
};

/// Two private servers, shared by all tests of the program, and runs of the real program.
class Rig {
 public:
  static Rig& Get();

  SandboxServer& MsSql() { return ms_sql_; }
  PrivateMySql& MySql() { return my_sql_; }
  /// Fresh, empty databases; returns their common name.
  std::string NewDatabases();
  /// A fresh, empty database on the practice SQL Server.
  std::string NewMsSqlDatabase();

  /// One value or the lines of a query, blanks and headings removed.
  std::string MsSqlValue(const std::string& query, const std::string& database) const;
  std::string MySqlValue(const std::string& query, const std::string& database) const;

  /// How to log on to a database of the practice SQL Server.
  ado::ConnectionSettings MsSqlSettings(const std::string& database) const;

 private:
  Rig() = default;
  PrivateMySql my_sql_;
  SandboxServer ms_sql_{{"first"}};
  int databases_ = 0;
};

/// Writes the settings file of a job that logs to `log`.
void WriteSettings(const Job& job, const std::filesystem::path& settings,
                   const std::filesystem::path& log);

/// The lines of a run that a rehearsal did not foretell, behind "+", and those it foretold in vain,
/// behind "-". The words for a key that is taken, too long or lacks rows hold names that the server
/// makes up, and of the rows that are dropped with their tables a run says nothing.
std::vector<std::string> Disagreement(std::vector<std::string> foretold,
                                      std::vector<std::string> told);

/// A log of the program as UTF-8, lines ended by line feeds.
std::string ReadLog(const std::filesystem::path& log);

/// A run of the program in a folder of its own.
class ProgramRun {
 public:
  explicit ProgramRun(const Job& job,
                      std::vector<std::pair<std::string, std::string>> environment = {},
                      const std::vector<std::string>& options = {});  // in front of the file

  Process& Program() { return *process_; }
  /// The exit status; fails the test when the program hangs.
  int Wait(std::chrono::seconds limit = std::chrono::seconds(120));
  std::string Log() const { return ReadLog(folder_ / "log.txt"); }
  std::string Output() const { return ReadFile(folder_ / "output"); }
  /// Peak resident memory of the finished program, in KiB.
  long PeakKiB() const;

 private:
  TempFolder folder_;
  std::unique_ptr<Process> process_;
};

}  // namespace dorvane::test
