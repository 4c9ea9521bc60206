#pragma once

#include <map>
#include <string>
#include <vector>

namespace dorvane::test {

/// What the log of one run says.
struct RunLog {
  std::map<std::string, bool> tables = {};  // by name: whether it was called "Done!"
  std::vector<std::string> failures = {};   // lines that are neither progress nor notes
  bool has_ended = false;                   // the line at the end is there
  std::string text = {};
};

RunLog ParseLog(const std::string& text);

}  // namespace dorvane::test
