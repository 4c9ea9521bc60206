#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

namespace dorvane::test {

/// A MySQL or MariaDB server of its own: loopback only, a free port, a temporary folder. User
/// "root" with password "secret". The environment variable DORVANE_TEST_MYSQLD is the path of the
/// mysqld or mariadbd to run; Debian's MariaDB unless set.
class PrivateMySql {
 public:
  /// Throws std::runtime_error with the server's log when it does not come up.
  explicit PrivateMySql(const std::vector<std::string>& extra_options = {});

  int Port() const { return port_; }
  /// Else it is MySQL: where the two differ, tests expect of each what it does.
  bool IsMariaDb() const { return is_mariadb_; }
  std::string Password() const { return "secret"; }
  /// Runs statements with the command-line client; its output as tab-separated text. Throws with
  /// the client's message when they fail.
  std::string Query(const std::string& sql, const std::string& database = "") const;
  /// Ends the server at once, as a crash would.
  void Kill() { process_->Kill(); }
  /// Kills the server when it still runs and starts it again on the same folder and port.
  void Restart();
  void Signal(int number) const { process_->Signal(number); }

 private:
  void Start();
  void MakeDataFolder() const;
  std::vector<std::string> StartCommand() const;

  std::string program_;
  bool is_mariadb_;
  std::vector<std::string> extra_options_;
  TempFolder folder_;
  int port_ = FreePort();
  std::unique_ptr<Process> process_;
};

/// The whole numbers of a range as a derived table with the column "seq", to stand in a FROM clause
/// of either server (with an alias behind it).
std::string Sequence(int first, int last);

/// A practice SQL Server of its own: user "sa", password "secret".
class SandboxServer {
 public:
  /// `options` are further ones of the program.
  explicit SandboxServer(const std::vector<std::string>& databases,
                         std::vector<std::string> options = {});

  int Port() const { return port_; }
  std::string Password() const { return "secret"; }
  /// Runs a script of batches (separated by "go" lines) with bsqldb; its output as tab-separated
  /// text. Throws when the server reported an error.
  std::string Script(const std::string& sql, const std::string& database) const;
  void Kill() { process_->Kill(); }
  /// Kills the server when it still runs and starts it again on the same folder and port.
  void Restart();
  void Signal(int number) const { process_->Signal(number); }

 private:
  void Start(const std::vector<std::string>& databases);

  const std::vector<std::string> options_;
  TempFolder folder_;
  int port_ = FreePort();
  std::unique_ptr<Process> process_;
};

}  // namespace dorvane::test
