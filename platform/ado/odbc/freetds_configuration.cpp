#include "platform/ado/odbc/freetds_configuration.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace dorvane::ado::odbc {

namespace {

/// The configuration's file, which lives in memory alone.
const files::Descriptor& File() {
  static const files::Descriptor file(memfd_create("freetds.conf", MFD_CLOEXEC));
  return file;
}

std::string PathOf(const files::Descriptor& file) {
  return fmt::format("/proc/self/fd/{}", file.Number());
}

}  // namespace

FreeTdsConfiguration::FreeTdsConfiguration(const ServerAddress& address,
                                           const std::string& authorities)
    : authorities_(open(authorities.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (!authorities_.IsOpen()) files::ThrowFileError(errno, authorities);
  // A file of this syntax takes no long lines and changes the blanks in a path.
  std::string text = fmt::format(
      "[{}]\nhost = {}\nca file = {}\ncheck certificate hostname = yes\nencryption = require\n",
      kConfiguredServer, address.host, PathOf(authorities_));
  if (address.port == 0 && !address.instance.empty()) {
    text += fmt::format("instance = {}\n", address.instance);
  } else {
    text += fmt::format("port = {}\n", address.port != 0 ? address.port : kUsualPort);
  }
  if (ftruncate(File().Number(), 0) != 0 || lseek(File().Number(), 0, SEEK_SET) != 0) {
    files::ThrowFileError(errno, "freetds.conf");
  }
  files::WriteAll(File(), text, "freetds.conf");
}

void FreeTdsConfiguration::Announce() {
  setenv("FREETDSCONF", PathOf(File()).c_str(), 1);
}

}  // namespace dorvane::ado::odbc
