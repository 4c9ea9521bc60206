#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace dorvane::test {

/// A line of a script: what is done or expected, and with what.
struct Step {
  int line = 0;  // in its file
  std::string verb;
  std::string rest;
};

/// One use of a wizard on scripted servers, from its first page on. A file of them reads:
///
///   # A comment.
///   test DestinationsAreCreated
///   go-to mysql-destination
///   type txtDestNewDbName " my copy "
///   click cmdDestConnect
///   created my copy
///
/// Empty lines and blanks at both ends of a line do not count; quotes keep the blanks of a text.
/// Lists part their entries by " | ". The verbs stand in script_acts.cpp and
/// script_expectations.cpp, the events of conversions in script_events.cpp.
struct WizardScript {
  std::string name;
  std::filesystem::path file;
  std::vector<Step> steps;
};

inline std::ostream& operator<<(std::ostream& out, const WizardScript& script) {
  return out << script.name;
}

/// All scripts of the folder's *.wizard files. Throws std::runtime_error.
std::vector<WizardScript> ReadWizardScripts(const std::filesystem::path& folder);

}  // namespace dorvane::test
