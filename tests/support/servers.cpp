#include "tests/support/servers.h"

#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace dorvane::test {

namespace {

constexpr std::chrono::seconds kStartLimit(60);

// Quick rather than durable, with room for long values and long sequences. An option that only one
// of the two servers knows is "loose" to the other.
constexpr std::array kStartOptions = {"--innodb-buffer-pool-size=64M",
                                      "--loose-innodb-log-file-size=64M",
                                      "--innodb-flush-log-at-trx-commit=0",
                                      "--max-allowed-packet=64M",
                                      "--loose-cte-max-recursion-depth=100000000",
                                      "--loose-max-recursive-iterations=100000000"};
constexpr std::array kMySqlOptions = {"--local-infile=ON",           "--secure-file-priv=",
                                      "--loose-mysqlx=OFF",          "--skip-log-bin",
                                      "--performance-schema=OFF",    "--innodb-doublewrite=OFF",
                                      "--innodb-flush-method=nosync"};

constexpr const char* kUserStatements =
    "ALTER USER 'root'@'localhost' IDENTIFIED BY 'secret';\n"
    "DROP USER IF EXISTS 'root'@'127.0.0.1';\n"
    "CREATE USER 'root'@'127.0.0.1' IDENTIFIED BY 'secret';\n"
    "GRANT ALL ON *.* TO 'root'@'127.0.0.1' WITH GRANT OPTION;\n";

std::vector<std::string> AsRoot(std::vector<std::string> command) {
  if (geteuid() == 0) command.push_back("--user=root");
  return command;
}

std::string ServerProgram() {
  const char* chosen = std::getenv("DORVANE_TEST_MYSQLD");
  return chosen == nullptr ? "mariadbd" : chosen;
}

bool SaysMariaDb(const std::string& program) {
  const Outcome version = Run({program, "--version"});
  if (version.status != 0) throw std::runtime_error(program + ":\n" + version.output);
  return version.output.find("MariaDB") != std::string::npos;
}

void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

}  // namespace

void PrivateServer::Start(std::vector<std::string> command,
                          const std::vector<std::string>& options) {
  command_ = std::move(command);
  const std::filesystem::path log = folder_ / "log";
  std::filesystem::remove(log);
  std::vector<std::string> whole = command_;
  whole.insert(whole.end(), options.begin(), options.end());
  process_ = std::make_unique<Process>(whole, log);
  const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
  while (ReadFile(log).find(ready_) == std::string::npos) {
    if (!process_->IsRunning() || std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("a server did not start:\n" + ReadFile(log));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

void PrivateServer::Restart() {
  Kill();
  Start(command_);
}

PrivateMySql::PrivateMySql(const std::vector<std::string>& extra_options)
    : PrivateServer("ready for connections"),
      program_(ServerProgram()),
      is_mariadb_(SaysMariaDb(program_)) {
  std::filesystem::create_directory(folder_ / "tmp");
  MakeDataFolder();
  WriteFile(folder_ / "init.sql", kUserStatements);
  std::vector<std::string> command = StartCommand();
  command.insert(command.end(), extra_options.begin(), extra_options.end());
  Start(command);
}

void PrivateMySql::MakeDataFolder() const {
  const std::string data = "--datadir=" + (folder_ / "data").string();
  std::vector<std::string> command;
  if (is_mariadb_) {
    command = {"mariadb-install-db", "--no-defaults", "--force", "--skip-test-db",
               "--auth-root-authentication-method=normal"};
  } else {
    command = {program_, "--no-defaults", "--initialize-insecure"};
    command.insert(command.end(), kMySqlOptions.begin(), kMySqlOptions.end());
  }
  command.push_back(data);
  const Outcome made =
      Run(AsRoot(command), std::chrono::minutes(2), {{"TMPDIR", (folder_ / "tmp").string()}});
  if (made.status != 0) throw std::runtime_error(command[0] + ":\n" + made.output);
}

std::vector<std::string> PrivateMySql::StartCommand() const {
  std::vector<std::string> command = AsRoot(
      {program_, "--no-defaults", "--datadir=" + (folder_ / "data").string(),
       // Servers that share a folder for temporary files delete each other's when they start.
       "--tmpdir=" + (folder_ / "tmp").string(), "--socket=" + (folder_ / "s").string(),
       "--pid-file=" + (folder_ / "pid").string(), "--bind-address=127.0.0.1",
       fmt::format("--port={}", port_), "--skip-name-resolve",
       "--init-file=" + (folder_ / "init.sql").string()});
  command.insert(command.end(), kStartOptions.begin(), kStartOptions.end());
  if (!is_mariadb_) command.insert(command.end(), kMySqlOptions.begin(), kMySqlOptions.end());
  return command;
}

std::string Sequence(int first, int last) {
  return fmt::format(
      "(with recursive counted(seq) as (select {} union all select seq + 1 from counted "
      "where seq < {}) select seq from counted)",
      first, last);
}

std::string PrivateMySql::Query(const std::string& sql, const std::string& database) const {
  const TempFolder folder;
  WriteFile(folder / "script.sql", sql);
  std::vector<std::string> command = {"mariadb",
                                      "--no-defaults",
                                      "--host=127.0.0.1",
                                      fmt::format("--port={}", port_),
                                      "--user=root",
                                      "--password=secret",
                                      "--batch",
                                      "--skip-column-names",
                                      "--default-character-set=utf8mb4",
                                      "--abort-source-on-error",
                                      "--execute=source " + (folder / "script.sql").string()};
  if (!database.empty()) command.push_back(database);
  const Outcome outcome = Run(command);
  if (outcome.status == 0) return outcome.output;
  const bool has_died = !process_->IsRunning();
  throw std::runtime_error(outcome.output + (has_died ? ReadFile(folder_ / "log") : ""));
}

SandboxServer::SandboxServer(const std::vector<std::string>& databases,
                             const std::vector<std::string>& options)
    : PrivateServer("listening on") {
  std::vector<std::string> command = {
      SANDBOX_PROGRAM, "--folder", folder_ / "data", "--port", fmt::to_string(port_),
      "--user",        "sa",       "--password",     "secret"};
  command.insert(command.end(), options.begin(), options.end());
  std::vector<std::string> creating;
  for (const std::string& database : databases) {
    creating.insert(creating.end(), {"--create", database});
  }
  Start(command, creating);
}

std::string SandboxServer::Script(const std::string& sql, const std::string& database) const {
  const TempFolder folder;
  WriteFile(folder / "script.sql", sql);
  // The tool reads a server's address from a file of its library, which keeps UTF-8 text whole.
  WriteFile(folder / "freetds.conf",
            fmt::format("[sandbox]\nhost = 127.0.0.1\nport = {}\ntds version = 7.4\n"
                        "client charset = UTF-8\ntext size = 64000000\n",
                        port_));
  const Outcome outcome =
      Run({"bsqldb", "-S", "sandbox", "-U", "sa", "-P", "secret", "-D", database, "-q", "-t", "\\t",
           "-i", (folder / "script.sql").string()},
          std::chrono::minutes(5), {{"FREETDSCONF", (folder / "freetds.conf").string()}});
  if (outcome.status != 0 || outcome.output.find("Msg ") != std::string::npos) {
    throw std::runtime_error(outcome.output);
  }
  return outcome.output;
}

}  // namespace dorvane::test
