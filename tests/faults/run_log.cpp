#include "tests/faults/run_log.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>

namespace dorvane::test {

RunLog ParseLog(const std::string& text) {
  constexpr std::string_view kTable = "Converting table '";
  constexpr std::array<std::string_view, 3> kNeutral = {"#####", "Conversion started at",
                                                        "Note - "};
  RunLog log{.text = text};
  std::istringstream lines(text);
  std::string table;
  for (std::string line; std::getline(lines, line);) {
    const auto begins = [&line](std::string_view words) { return line.starts_with(words); };
    if (begins(kTable)) {
      table = line.substr(kTable.size(), line.find('\'', kTable.size()) - kTable.size());
      log.tables[table] = false;
    } else if (line == "Done!") {
      log.tables[table] = true;
    } else if (begins("Conversion ended at")) {
      log.has_ended = true;
    } else if (std::ranges::none_of(kNeutral, begins)) {
      log.failures.push_back(line);
    }
  }
  return log;
}

}  // namespace dorvane::test
