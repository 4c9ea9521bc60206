#include "platform/files/lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <utility>

namespace dorvane::files {

std::optional<Lock> Lock::Try(const std::filesystem::path& path) {
  Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.IsOpen()) ThrowFileError(errno, path);
  if (flock(file.Number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return std::nullopt;
  return Lock(std::move(file));
}

}  // namespace dorvane::files
