#include "tests/faults/disk.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace dorvane::test {

SmallDisk::SmallDisk() {
  is_mounted_ = mount("none", folder_.Path().c_str(), "tmpfs", 0, "size=600m") == 0;
}

SmallDisk::~SmallDisk() {
  if (is_mounted_) umount2(folder_.Path().c_str(), MNT_DETACH);
}

void SmallDisk::Use(bool use) const {
  if (!is_mounted_) return;
  if (use) {
    setenv("TMPDIR", folder_.Path().c_str(), 1);
  } else {
    unsetenv("TMPDIR");
  }
}

void SmallDisk::Fill(std::size_t left) const {
  struct statvfs state {};
  if (statvfs(folder_.Path().c_str(), &state) != 0) return;
  const auto free = static_cast<std::size_t>(state.f_bavail) * state.f_frsize;
  if (free <= left) return;
  const int file = open((folder_ / "filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  if (posix_fallocate(file, 0, static_cast<off_t>(free - left)) != 0) Empty();
  close(file);
}

void SmallDisk::Empty() const {
  std::filesystem::remove(folder_ / "filler");
}

void SmallDisk::DeleteOrphanedTables() const {
  namespace fs = std::filesystem;
  std::vector<fs::path> orphans;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_.Path())) {
    const fs::path& file = entry.path();
    // Only MariaDB keeps definitions in files of their own, and such a file with a database.
    if (file.extension() != ".ibd" || !fs::exists(file.parent_path() / "db.opt")) continue;
    if (!fs::exists(fs::path(file).replace_extension(".frm"))) orphans.push_back(file);
  }
  for (const fs::path& orphan : orphans) fs::remove(orphan);
}

}  // namespace dorvane::test
