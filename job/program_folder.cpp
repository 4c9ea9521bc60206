#include "job/program_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace dorvane {

namespace fs = std::filesystem;

namespace {

fs::path HomeFolder() {
  if (const char* home = std::getenv("HOME"); home && *home) return home;
  const passwd* user = getpwuid(getuid());
  return user && user->pw_dir ? user->pw_dir : "/";
}

fs::path UserDataFolder() {
  // The base directory rules ignore a relative path.
  if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/') return data;
  return HomeFolder() / ".local" / "share";
}

}  // namespace

fs::path ProgramFolder() {
  std::error_code failure;
  const fs::path program = fs::read_symlink("/proc/self/exe", failure);
  return failure ? fs::current_path() : program.parent_path();
}

fs::path SettingsFolder() {
  const fs::path beside = ProgramFolder();
  if (access(beside.c_str(), W_OK) == 0) return beside;
  const fs::path own = UserDataFolder() / "dorvane";
  std::error_code ignored;  // a folder that cannot be made is reported when a file is written there
  if (fs::create_directories(own, ignored)) {
    fs::permissions(own, fs::perms::owner_all, ignored);
  }
  return own;
}

}  // namespace dorvane
