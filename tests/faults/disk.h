#pragma once

#include <optional>

#include "tests/support/temp_folder.h"

namespace dorvane::test {

/// A file system in memory that can be filled, for the temporary folders of servers that are
/// started while it is the place of temporary files. It takes the right to mount one.
class SmallDisk {
 public:
  SmallDisk();
  ~SmallDisk();
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  /// False when it could not be mounted: then servers are where they always are.
  bool IsThere() const { return is_mounted_; }
  /// Makes it the place of temporary files, or no longer.
  void Use(bool use) const;
  /// Leaves so many bytes free, or all.
  void Fill(std::size_t left) const;
  void Empty() const;
  /// MariaDB leaves the file of a table that it had no room to create, and refuses a table of that
  /// name ever after: what an administrator would delete.
  void DeleteOrphanedTables() const;

 private:
  TempFolder folder_;
  bool is_mounted_ = false;
};

}  // namespace dorvane::test
