#include "platform/scheduler/replace_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/run_time_error.h"

namespace dorvane {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, int error) {
  const bool denied = error == EACCES || error == EPERM || error == EROFS;
  throw RunTimeError(denied ? run_time::kPermissionDenied : run_time::kFileInputOutput, "Dorvane",
                     fmt::format("Can not write {}: {}", path.string(), std::strerror(error)));
}

/// 0, or the error number.
int WriteAll(int descriptor, std::string_view bytes, mode_t mode) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return fchmod(descriptor, mode) == 0 && fsync(descriptor) == 0 ? 0 : errno;
}

}  // namespace

void ReplaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode) {
  std::error_code folder_error;
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), folder_error);
  if (folder_error) Fail(path.parent_path(), folder_error.value());

  std::string draft = path.parent_path() / ".draft-XXXXXX";
  const int descriptor = mkostemp(draft.data(), O_CLOEXEC);
  if (descriptor < 0) Fail(path, errno);
  int error = WriteAll(descriptor, bytes, mode);
  if (close(descriptor) != 0 && error == 0) error = errno;
  if (error == 0 && rename(draft.c_str(), path.c_str()) != 0) error = errno;
  if (error != 0) {
    unlink(draft.c_str());
    Fail(path, error);
  }
}

}  // namespace dorvane
