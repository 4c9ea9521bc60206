#include "platform/process/child_process.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/files/descriptor.h"
#include "platform/process/pipe.h"
#include "platform/run_time_error.h"

namespace dorvane::process {

namespace {

using Clock = std::chrono::steady_clock;
using files::Descriptor;

class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  posix_spawn_file_actions_t* Get() { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

class SpawnAttributes {
 public:
  explicit SpawnAttributes(short flags) {
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setflags(&attributes_, flags);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes_, &defaults);
  }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
  const posix_spawnattr_t* Get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// The environment with messages in English, which the callers read.
std::vector<std::string> EnglishEnvironment() {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (std::strncmp(*variable, "LC_ALL=", 7) != 0) variables.emplace_back(*variable);
  }
  variables.emplace_back("LC_ALL=C.UTF-8");
  return variables;
}

pid_t Spawn(std::vector<std::string> command, std::vector<std::string> environment,
            FileActions& actions, short flags) {
  const SpawnAttributes attributes(static_cast<short>(flags | POSIX_SPAWN_SETSIGDEF));
  pid_t id = -1;
  const int error = posix_spawnp(&id, command.front().c_str(), actions.Get(), attributes.Get(),
                                 Pointers(command).data(), Pointers(environment).data());
  if (error != 0) ThrowNotStarted(command.front(), error);
  return id;
}

/// A child that must not write into a closed pipe of ours, nor we into one of its.
class IgnoreBrokenPipe {
 public:
  IgnoreBrokenPipe() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &previous_);
  }
  IgnoreBrokenPipe(const IgnoreBrokenPipe&) = delete;
  IgnoreBrokenPipe& operator=(const IgnoreBrokenPipe&) = delete;
  ~IgnoreBrokenPipe() { sigaction(SIGPIPE, &previous_, nullptr); }

 private:
  struct sigaction previous_ {};
};

void WriteSome(Descriptor& pipe, std::string_view& input) {
  const ssize_t count = write(pipe.Number(), input.data(), input.size());
  if (count > 0) input.remove_prefix(static_cast<std::size_t>(count));
  const bool broken = count < 0 && errno != EINTR && errno != EAGAIN;
  if (broken || input.empty()) pipe.Close();
}

/// Feeds and drains the child until it has closed its outputs. False when the time is up first.
bool Communicate(Descriptor& in, Descriptor& out, Descriptor& err, std::string_view input,
                 ChildResult& result, Clock::time_point deadline) {
  if (input.empty()) in.Close();
  while (out.IsOpen() || err.IsOpen()) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) return false;
    std::array<pollfd, 3> waits{pollfd{out.Number(), POLLIN, 0}, pollfd{err.Number(), POLLIN, 0},
                                pollfd{in.Number(), POLLOUT, 0}};
    poll(waits.data(), waits.size(), static_cast<int>(left));
    if (waits[0].revents != 0) ReadSome(out, result.output);
    if (waits[1].revents != 0) ReadSome(err, result.errors);
    if (waits[2].revents != 0) WriteSome(in, input);
  }
  return true;
}

}  // namespace

ChildResult RunChild(const std::vector<std::string>& command, std::string_view input,
                     std::chrono::seconds limit) {
  const IgnoreBrokenPipe guard;
  Pipe in;
  Pipe out;
  Pipe err;
  FileActions actions;
  posix_spawn_file_actions_adddup2(actions.Get(), in.read.Number(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(actions.Get(), out.write.Number(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(actions.Get(), err.write.Number(), STDERR_FILENO);
  const pid_t id = Spawn(command, EnglishEnvironment(), actions, 0);
  in.read.Close();
  out.write.Close();
  err.write.Close();
  fcntl(in.write.Number(), F_SETFL, O_NONBLOCK);

  ChildResult result;
  const bool ended = Communicate(in.write, out.read, err.read, input, result, Clock::now() + limit);
  if (!ended) kill(id, SIGKILL);
  result.status = Reap(id);
  if (!ended) {
    throw RunTimeError(run_time::kFileInputOutput, "Scheduler",
                       fmt::format("{} does not answer", command.front()));
  }
  return result;
}

std::string RunChildOrThrow(const std::vector<std::string>& command, std::string_view input) {
  ChildResult result = RunChild(command, input);
  if (result.status == 0) return std::move(result.output);
  std::string why = std::move(result.errors);
  while (why.ends_with('\n')) why.pop_back();
  if (why.empty()) why = fmt::format("{} ended with status {}", command.front(), result.status);
  throw RunTimeError(kCommandFailed, "Scheduler", why);
}

void StartDetached(const std::filesystem::path& program, const std::string& argument,
                   const std::filesystem::path& folder) {
  if (access(program.c_str(), X_OK) != 0) ThrowNotStarted(program.string(), errno);
  FileActions actions;
  posix_spawn_file_actions_addopen(actions.Get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(actions.Get(), STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(actions.Get(), STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addchdir_np(actions.Get(), folder.c_str());
  // The shell leaves the program to init, so that this process has nobody to reap.
  const std::vector<std::string> command{"/bin/sh",        "-c",    "\"$@\" &", "sh",
                                         program.string(), argument};
  std::vector<std::string> environment;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    environment.emplace_back(*variable);
  }
  Reap(Spawn(command, std::move(environment), actions, POSIX_SPAWN_SETSID));
}

}  // namespace dorvane::process
