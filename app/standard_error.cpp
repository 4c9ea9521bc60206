#include "app/standard_error.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace dorvane {

void WriteStandardError(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(STDERR_FILENO, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void OpenStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    // The lowest number that is free is this one.
    if (open("/dev/null", O_RDWR) != descriptor) return;
  }
}

}  // namespace dorvane
