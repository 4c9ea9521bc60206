#include "platform/files/descriptor.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/run_time_error.h"

namespace dorvane::files {

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  const Descriptor old(std::exchange(number_, std::exchange(other.number_, -1)));
  return *this;
}

int Descriptor::Close() {
  if (!IsOpen()) return 0;
  return close(std::exchange(number_, -1)) == 0 ? 0 : errno;
}

void ThrowFileError(int error, const std::filesystem::path& path) {
  std::int32_t number = run_time::kFileInputOutput;
  if (error == EACCES || error == EPERM || error == EROFS || error == EISDIR) {
    number = run_time::kPermissionDenied;
  } else if (error == ENOENT || error == ENOTDIR) {
    const auto folder = path.parent_path();
    std::error_code ignored;
    const bool has_folder = folder.empty() || std::filesystem::is_directory(folder, ignored);
    number = has_folder ? run_time::kFileNotFound : run_time::kPathNotFound;
  }
  throw RunTimeError(number, "Dorvane", fmt::format("{}: {}", path.string(), std::strerror(error)));
}

void WriteAll(const Descriptor& file, std::string_view bytes, const std::filesystem::path& path) {
  while (!bytes.empty()) {
    const ssize_t count = write(file.Number(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) ThrowFileError(errno, path);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

int Sync(const Descriptor& file) {
  const bool stored = fsync(file.Number()) == 0 || errno == EINVAL || errno == EROFS;
  return stored ? 0 : errno;
}

}  // namespace dorvane::files
