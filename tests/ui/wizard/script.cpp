#include "tests/ui/wizard/script.h"

#include <fstream>
#include <set>
#include <stdexcept>

namespace dorvane::test {

namespace {

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

Step StepOf(const std::string& text, int line) {
  const std::size_t blank = std::min(text.find(' '), text.size());
  return {line, text.substr(0, blank), Trimmed(text.substr(blank))};
}

void ReadFile(const std::filesystem::path& path, std::vector<WizardScript>& scripts) {
  std::ifstream file(path);
  std::string text;
  for (int line = 1; std::getline(file, text); ++line) {
    text = Trimmed(text);
    if (text.empty() || text.starts_with('#')) continue;
    const Step step = StepOf(text, line);
    if (step.verb == "test") {
      scripts.push_back({path.stem().string() + "_" + step.rest, path, {}});
    } else if (scripts.empty() || scripts.back().file != path) {
      throw std::runtime_error(path.string() + ": a step stands before every test");
    } else {
      scripts.back().steps.push_back(step);
    }
  }
}

}  // namespace

std::vector<WizardScript> ReadWizardScripts(const std::filesystem::path& folder) {
  std::set<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".wizard") files.insert(entry.path());
  }
  std::vector<WizardScript> scripts;
  for (const auto& path : files) ReadFile(path, scripts);
  if (scripts.empty()) throw std::runtime_error("no scripts in " + folder.string());
  return scripts;
}

}  // namespace dorvane::test
