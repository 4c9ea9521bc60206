#pragma once

#include <filesystem>
#include <optional>
#include <utility>

#include "platform/files/descriptor.h"

namespace dorvane::files {

/// An advisory lock on a file, held until it is destroyed or its process ends, however it ends.
class Lock {
 public:
  /// None while another process, or another lock of this one, holds the file. A file system without
  /// locks gives one that keeps nobody out. Throws RunTimeError when the file cannot be opened.
  static std::optional<Lock> Try(const std::filesystem::path& path);

 private:
  explicit Lock(Descriptor file) : file_(std::move(file)) {}

  Descriptor file_;
};

}  // namespace dorvane::files
