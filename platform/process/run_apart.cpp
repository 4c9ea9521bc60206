#include "platform/process/run_apart.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/files/descriptor.h"

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
bool Drain(const Descriptor& in, const WorkLimits& limits, std::string& bytes) {
  const auto deadline = Clock::now() + limits.time;
  std::array<char, 1 << 16> buffer;
  while (bytes.size() <= limits.bytes) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd wait{in.Number(), POLLIN, 0};
    if (left <= 0 || poll(&wait, 1, static_cast<int>(left)) == 0) return false;
    const ssize_t count = read(in.Number(), buffer.data(), buffer.size());
    if (count == 0) return true;
    if (count > 0) bytes.append(buffer.data(), static_cast<std::size_t>(count));
    if (count < 0 && errno != EINTR && errno != EAGAIN) return false;
  }
  return false;
}

}  // namespace

std::optional<std::string> RunApart(const std::function<void(const ByteSink&)>& work,
                                    const WorkLimits& limits) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  const Descriptor in(ends[0]);
  Descriptor out(ends[1]);
  const pid_t id = fork();
  if (id < 0) return std::nullopt;
  if (id == 0) WorkAndExit(work, out);
  out.Close();

  std::string bytes;
  const bool is_whole = Drain(in, limits, bytes);
  if (!is_whole) kill(id, SIGKILL);
  int status = 0;
  while (waitpid(id, &status, 0) < 0 && errno == EINTR) {
  }
  if (!is_whole || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
  return bytes;
}

}  // namespace dorvane::process
