#pragma once

#include <filesystem>
#include <string_view>

namespace dorvane::files {

/// An open file, pipe end or folder of the operating system, closed with its owner. Move-only.
class Descriptor {
 public:
  Descriptor() = default;
  /// Takes over a descriptor; a negative one stands for none.
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor() { Close(); }

  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }
  /// 0, or the errno of a close that failed; nothing is open afterwards.
  int Close();

 private:
  int number_ = -1;
};

/// Throws the RunTimeError of a file operation that failed with `error`, an errno: 53 no such file,
/// 76 no such folder, 70 not allowed, 57 otherwise.
[[noreturn]] void ThrowFileError(int error, const std::filesystem::path& path);

/// Writes every byte. `path` names the file in the RunTimeError 57 of a full disk.
void WriteAll(const Descriptor& file, std::string_view bytes, const std::filesystem::path& path);

/// Returns when the disk holds what was written: 0, or an errno. A device or a pipe has no disk and
/// gives 0.
int Sync(const Descriptor& file);

}  // namespace dorvane::files
