#pragma once

#include <filesystem>
#include <string_view>

namespace dorvane {

/// Leaves the words of a run that could not open its log where a user looks: at the end of the log
/// that the settings name where that can be opened after all, else of a file beside the settings,
/// with ".log" behind their name, else in the system's log. Nobody reads the standard error of a
/// scheduled run.
void LeaveTrace(const std::filesystem::path& settings_file, std::string_view line);

}  // namespace dorvane
