#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace dorvane {

/// Replaces a file as a whole: a reader finds the old bytes or the new ones, whatever happens.
/// Makes missing folders. Throws RunTimeError: 70 not allowed, 57 otherwise.
void ReplaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode);

}  // namespace dorvane
