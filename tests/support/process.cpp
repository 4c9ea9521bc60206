#include "tests/support/process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "tests/support/temp_folder.h"

namespace dorvane::test {

using std::chrono::milliseconds;

namespace {

std::vector<std::string> Environment(
    const std::vector<std::pair<std::string, std::string>>& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const auto changed = [&](const auto& change) { return text.starts_with(change.first + "="); };
    if (std::none_of(changes.begin(), changes.end(), changed)) result.push_back(text);
  }
  for (const auto& [name, value] : changes) result.push_back(name + "=" + value);
  return result;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Process::Process(const std::vector<std::string>& command, const std::filesystem::path& output,
                 const std::vector<std::pair<std::string, std::string>>& environment) {
  std::vector<std::string> arguments = command;
  std::vector<std::string> variables = Environment(environment);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                   0600);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  const int failure = posix_spawnp(&id_, arguments[0].c_str(), &actions, nullptr,
                                   Pointers(arguments).data(), Pointers(variables).data());
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error(command[0] + ": " + std::strerror(failure));
}

Process::~Process() {
  if (!IsRunning()) return;
  Signal(SIGTERM);
  if (!Wait(std::chrono::seconds(15))) Kill();
}

bool Process::IsRunning() {
  return !Wait(milliseconds(0));
}

void Process::Signal(int number) const {
  if (!status_) kill(id_, number);
}

void Process::Kill() {
  Signal(SIGKILL);
  Wait(std::chrono::seconds(30));
}

std::optional<int> Process::Wait(milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!status_) {
    int raw = 0;
    if (waitpid(id_, &raw, WNOHANG) == id_) {
      status_ = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    } else if (std::chrono::steady_clock::now() >= deadline) {
      break;
    } else {
      std::this_thread::sleep_for(milliseconds(5));
    }
  }
  return status_;
}

Outcome Run(const std::vector<std::string>& command, milliseconds limit,
            const std::vector<std::pair<std::string, std::string>>& environment) {
  const TempFolder folder;
  Process process(command, folder / "output", environment);
  const auto status = process.Wait(limit);
  if (!status) throw std::runtime_error(command[0] + " did not end in time");
  return {*status, ReadFile(folder / "output")};
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace dorvane::test
