#pragma once

#include <unistd.h>

#include <utility>

namespace sandbox::tds {

/// Owns a file descriptor; -1 is none.
class FileDescriptor {
 public:
  explicit FileDescriptor(int value = -1) : value_(value) {}
  FileDescriptor(FileDescriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~FileDescriptor() {
    if (value_ >= 0) close(value_);
  }
  int get() const { return value_; }

 private:
  int value_;
};

}  // namespace sandbox::tds
