#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/sockets.h"
#include "tests/support/temp_folder.h"

namespace dorvane::test {

/// A server of its own: loopback only, a free port, a temporary folder, the password "secret".
class PrivateServer {
 public:
  int Port() const { return port_; }
  std::string Password() const { return "secret"; }
  /// Ends the server at once, as a crash would.
  void Kill() { process_->Kill(); }
  /// Kills the server when it still runs and starts it again on the same folder and port.
  void Restart();
  void Signal(int number) const { process_->Signal(number); }

 protected:
  /// `ready`: what its log says when it is up.
  explicit PrivateServer(std::string ready) : ready_(std::move(ready)) {}

  /// Starts the server, which a restart does again without `options`. Throws std::runtime_error
  /// with its log when it does not come up.
  void Start(std::vector<std::string> command, const std::vector<std::string>& options = {});

  const std::string ready_;
  const TempFolder folder_;
  const int port_ = FreePort();
  std::vector<std::string> command_;
  std::unique_ptr<Process> process_;
};

/// A MySQL or MariaDB server, user "root". The environment variable DORVANE_TEST_MYSQLD is the path
/// of the mysqld or mariadbd to run; Debian's MariaDB unless set.
class PrivateMySql : public PrivateServer {
 public:
  explicit PrivateMySql(const std::vector<std::string>& extra_options = {});

  /// Else it is MySQL: where the two differ, tests expect of each what it does.
  bool IsMariaDb() const { return is_mariadb_; }
  /// Runs statements with the command-line client; its output as tab-separated text. Throws with
  /// the client's message when they fail.
  std::string Query(const std::string& sql, const std::string& database = "") const;

 private:
  void MakeDataFolder() const;
  std::vector<std::string> StartCommand() const;

  std::string program_;
  bool is_mariadb_;
};

/// The whole numbers of a range as a derived table with the column "seq", to stand in a FROM clause
/// of MySQL (with an alias behind it).
std::string Sequence(int first, int last);

/// A practice SQL Server, user "sa".
class SandboxServer : public PrivateServer {
 public:
  /// `options` are further ones of the program.
  explicit SandboxServer(const std::vector<std::string>& databases,
                         const std::vector<std::string>& options = {});

  /// Runs a script of batches (separated by "go" lines) with bsqldb; its output as tab-separated
  /// text. Throws when the server reported an error.
  std::string Script(const std::string& sql, const std::string& database) const;
};

}  // namespace dorvane::test
