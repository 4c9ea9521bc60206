#include "platform/process/pipe.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "platform/run_time_error.h"

namespace dorvane::process {

void ThrowNotStarted(const std::string& program, int error) {
  throw RunTimeError(run_time::kFileNotFound, "Scheduler",
                     fmt::format("Can not start {}: {}", program, std::strerror(error)));
}

Pipe::Pipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) ThrowNotStarted("a process", errno);
  read = files::Descriptor(ends[0]);
  write = files::Descriptor(ends[1]);
}

bool ReadSome(files::Descriptor& pipe, std::string& text) {
  std::array<char, 1 << 16> buffer;
  const ssize_t count = read(pipe.Number(), buffer.data(), buffer.size());
  if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
  const bool has_failed = count < 0 && errno != EINTR && errno != EAGAIN;
  if (count == 0 || has_failed) pipe.Close();
  return !has_failed;
}

int Reap(pid_t id) {
  int status = 0;
  while (waitpid(id, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace dorvane::process
