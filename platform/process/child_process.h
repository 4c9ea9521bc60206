#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace dorvane::process {

/// A command that ended with another status than 0.
inline constexpr std::int32_t kCommandFailed = -2147467259;  // 0x80004005

struct ChildResult {
  int status = 0;  // exit status, or 128 plus the signal that ended it
  std::string output;
  std::string errors;
};

/// Runs a command to its end without a shell, messages in English. Throws RunTimeError: 53 when it
/// cannot be started, 57 when it is still running after `limit` (it is then killed).
ChildResult RunChild(const std::vector<std::string>& command, std::string_view input = {},
                     std::chrono::seconds limit = std::chrono::seconds(30));

/// RunChild for commands that have to succeed: throws RunTimeError kCommandFailed with what the
/// command wrote to standard error when its status is not 0. Returns its output.
std::string RunChildOrThrow(const std::vector<std::string>& command, std::string_view input = {});

/// Starts a program in a folder and leaves it to itself: a session of its own, no input, no output.
/// Throws RunTimeError 53 when the program or the folder is not there.
void StartDetached(const std::filesystem::path& program, const std::string& argument,
                   const std::filesystem::path& folder);

}  // namespace dorvane::process
