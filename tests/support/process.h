#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace dorvane::test {

/// A child process, started without a shell. Ended (SIGTERM, then SIGKILL) with its owner.
class Process {
 public:
  /// Extra environment as name and value; output of both streams goes to `output`.
  Process(const std::vector<std::string>& command, const std::filesystem::path& output,
          const std::vector<std::pair<std::string, std::string>>& environment = {});
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t Id() const { return id_; }
  bool IsRunning();
  void Signal(int number) const;
  /// SIGKILL and reaped.
  void Kill();
  /// The exit status (128 + signal when one ended it), or none when it still runs after `limit`.
  std::optional<int> Wait(std::chrono::milliseconds limit);

 private:
  pid_t id_ = -1;
  std::optional<int> status_;
};

/// Runs a command to its end: exit status and everything it printed. Throws when it takes longer.
struct Outcome {
  int status = -1;
  std::string output;
};
Outcome Run(const std::vector<std::string>& command,
            std::chrono::milliseconds limit = std::chrono::minutes(2),
            const std::vector<std::pair<std::string, std::string>>& environment = {});

/// The bytes of a file; empty when it is missing.
std::string ReadFile(const std::filesystem::path& path);

}  // namespace dorvane::test
