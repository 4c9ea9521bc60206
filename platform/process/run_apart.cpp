#include "platform/process/run_apart.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files/descriptor.h"
#include "platform/process/pipe.h"
#include "platform/run_time_error.h"

namespace dorvane::process {

namespace {

using Clock = std::chrono::steady_clock;
using files::Descriptor;

/// What the copy does; a crash of it leaves neither a core nor words on standard error.
[[noreturn]] void WorkAndExit(const std::function<void(const ByteSink&)>& work,
                              const Descriptor& out) {
  for (const int number : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGTERM, SIGPIPE}) {
    signal(number, SIG_DFL);
  }
  constexpr rlimit kNone{0, 0};
  setrlimit(RLIMIT_CORE, &kNone);
  const Descriptor nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
  dup2(nowhere.Number(), STDERR_FILENO);
  try {
    work([&out](std::string_view bytes) { files::WriteAll(out, bytes, "pipe"); });
    _exit(0);
  } catch (...) {
    _exit(1);
  }
}

/// Drains the pipe to its end; false when a limit is reached first.
bool Drain(Descriptor& in, const WorkLimits& limits, std::string& bytes) {
  const auto deadline = Clock::now() + limits.time;
  while (bytes.size() <= limits.bytes) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd wait{in.Number(), POLLIN, 0};
    if (left <= 0 || poll(&wait, 1, static_cast<int>(left)) == 0) return false;
    if (!ReadSome(in, bytes)) return false;
    if (!in.IsOpen()) return true;
  }
  return false;
}

pid_t Fork() {
  const pid_t id = fork();
  if (id < 0) ThrowNotStarted("a process", errno);
  return id;
}

}  // namespace

std::optional<std::string> RunApart(const std::function<void(const ByteSink&)>& work,
                                    const WorkLimits& limits) try {
  Pipe pipe;
  const pid_t id = Fork();
  if (id == 0) WorkAndExit(work, pipe.write);
  pipe.write.Close();

  std::string bytes;
  const bool is_whole = Drain(pipe.read, limits, bytes);
  if (!is_whole) kill(id, SIGKILL);
  if (Reap(id) != 0 || !is_whole) return std::nullopt;
  return bytes;
} catch (const RunTimeError&) {
  return std::nullopt;
}

}  // namespace dorvane::process
