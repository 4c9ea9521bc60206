#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "platform/scheduler/task.h"

namespace dorvane::scheduler {

/// Names that would break out of quotes, units, crontab lines or folders if anything were pasted
/// together carelessly.
inline std::vector<std::string> HostileNames() {
  return {"nightly",
          "  two  blanks ",
          "Größe Zürich 夜",
          "100% %H %% done",
          "it's \"quoted\"",
          "$HOME $(touch pwned) `touch pwned` ; touch pwned | & # *",
          "back\\slash\\\\twice\\%\\'end\\",
          "-rf --help",
          "..hidden..",
          "~root",
          "[X-Dorvane]",
          "# END Dorvane task \"nightly\"",
          std::string(200, 'n')};
}

inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

inline Task DailyTask(const std::string& name) {
  using namespace std::chrono;
  return {.name = name,
          .comment = "Dorvane",
          .program = "/usr/bin/env",
          .arguments = name + ".dcs",
          .working_directory = "/tmp",
          .begin_date = local_days(2026y / November / 22),
          .start_time = hours(21) + minutes(5)};
}

}  // namespace dorvane::scheduler
