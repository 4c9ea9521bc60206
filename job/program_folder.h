#pragma once

#include <filesystem>

namespace dorvane {

/// The folder of the running program ("Help.chm", "Skinz").
std::filesystem::path ProgramFolder();

/// The folder of "config" and the tasks' settings files: the program's folder when it is writable,
/// else the user's data folder (XDG), made on first use, readable by its owner alone.
std::filesystem::path SettingsFolder();

}  // namespace dorvane
