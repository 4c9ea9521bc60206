#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace dorvane::files {

/// Who may use a file: its owner alone, or everybody for reading.
inline constexpr mode_t kOwnerOnly = 0600;
inline constexpr mode_t kReadableByAll = 0644;

/// Replaces a file as a whole: whatever happens, a reader finds the old bytes or the new ones, and
/// the disk holds the new ones on return. Throws RunTimeError: 76 no such folder, 70 not allowed,
/// 57 otherwise.
void ReplaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode);

/// Makes a folder and those above it where they are missing. Throws RunTimeError.
void MakeFolders(const std::filesystem::path& folder);

}  // namespace dorvane::files
