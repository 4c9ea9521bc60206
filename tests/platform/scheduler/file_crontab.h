#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace dorvane::scheduler {

/// Puts a crontab command into a folder that keeps the crontab in the folder's file "tab"; returns
/// how to call it.
inline std::vector<std::string> MakeFileCrontab(const std::filesystem::path& folder) {
  const std::filesystem::path command = folder / "crontab";
  std::ofstream(command) << "#!/bin/sh\n"
                            "tab=\"${0%/*}/tab\"\n"
                            "case $1 in\n"
                            "-l) test -e \"$tab\" || { echo no crontab for me >&2; exit 1; }\n"
                            "    cat \"$tab\";;\n"
                            "-) cat > \"$tab\";;\n"
                            "-r) rm \"$tab\";;\n"
                            "esac\n";
  chmod(command.c_str(), 0755);
  return {command.string()};
}

}  // namespace dorvane::scheduler
