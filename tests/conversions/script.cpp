#include "tests/conversions/script.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <stdexcept>

namespace dorvane::test {

namespace {

constexpr std::string_view kResult = "----";
constexpr std::string_view kAny = "<any>";

Lines ReadLines(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  Lines lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

class Reader {
 public:
  explicit Reader(const std::filesystem::path& path) : path_(path), lines_(ReadLines(path)) {}

  std::vector<Script> Read() {
    for (; at_ < lines_.size(); ++at_) {
      const std::string& line = lines_[at_];
      if (line.starts_with("test ")) {
        scripts_.push_back({path_.stem().string() + "_" + line.substr(5), path_, {}, setup_});
      } else if (line.starts_with("ways ")) {
        scripts_.back().ways = SplitAtCommas(line.substr(5));
      } else if (line == "again") {
        AddStepsOfLastConversion(scripts_.back().steps);
      } else if (line != "setup" && !line.empty() && !line.starts_with('#')) {
        (scripts_.empty() ? setup_ : scripts_.back().steps).push_back(ReadStep());
      }
    }
    if (scripts_.empty()) throw std::runtime_error("no tests in " + path_.string());
    return std::move(scripts_);
  }

 private:
  /// With the conversion itself.
  static void AddStepsOfLastConversion(std::vector<Step>& steps) {
    const auto is_conversion = [](const Step& step) { return step.head.starts_with("convert"); };
    const auto last = std::ranges::find_if(steps.rbegin(), steps.rend(), is_conversion);
    const std::vector<Step> repeated(last.base() - 1, steps.end());
    steps.insert(steps.end(), repeated.begin(), repeated.end());
  }

  Step ReadStep() {
    Step step{.line = static_cast<int>(at_) + 1, .head = lines_[at_]};
    while (++at_ < lines_.size() && !lines_[at_].empty() && lines_[at_] != kResult) {
      step.body.push_back(lines_[at_]);
    }
    step.result_line = static_cast<int>(at_) + 1;
    if (at_ == lines_.size() || lines_[at_].empty()) return step;
    while (++at_ < lines_.size() && !lines_[at_].empty()) step.expected.push_back(lines_[at_]);
    return step;
  }

  std::filesystem::path path_;
  Lines lines_;
  std::size_t at_ = 0;
  std::vector<Step> setup_;
  std::vector<Script> scripts_;
};

/// "<any>" in the pattern stands for any text.
bool Covers(std::string_view pattern, std::string_view text) {
  const std::size_t any = pattern.find(kAny);
  if (any == std::string_view::npos) return pattern == text;
  if (!text.starts_with(pattern.substr(0, any))) return false;
  const std::string_view rest = pattern.substr(any + kAny.size());
  for (std::size_t at = any; at <= text.size(); ++at) {
    if (Covers(rest, text.substr(at))) return true;
  }
  return false;
}

struct Replacement {
  int first = 0;  // the line of "----"
  int count = 0;  // of lines, itself among them
  Lines lines;
};

class Rewriter {
 public:
  ~Rewriter() {
    for (auto& [path, replacements] : files_) Write(path, replacements);
  }
  void Add(const std::filesystem::path& path, Replacement each) {
    files_[path].try_emplace(each.first, std::move(each));
  }

 private:
  using Replacements = std::map<int, Replacement, std::greater<>>;  // from the last one up

  static void Write(const std::filesystem::path& path, const Replacements& replacements) {
    Lines lines = ReadLines(path);
    for (const auto& [line, each] : replacements) {
      const auto first = lines.begin() + line - 1;
      lines.insert(lines.erase(first, first + each.count), each.lines.begin(), each.lines.end());
    }
    std::ofstream file(path);
    for (const std::string& line : lines) file << line << '\n';
  }

  std::map<std::filesystem::path, Replacements> files_;
};

}  // namespace

Lines SplitAtCommas(const std::string& text) {
  Lines parts;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(", ", at), text.size());
    parts.push_back(text.substr(at, end - at));
    at = end + 2;
  }
  return parts;
}

std::vector<Script> ReadScripts(const std::filesystem::path& folder) {
  std::vector<Script> all;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".conv") continue;
    std::ranges::move(Reader(entry.path()).Read(), std::back_inserter(all));
  }
  std::ranges::sort(all, {}, &Script::name);
  return all;
}

Lines LinesFor(bool is_mariadb, const Lines& lines) {
  const std::string_view marks[] = {"[MySQL] ", "[MariaDB] "};
  const std::string_view mine = marks[is_mariadb ? 1 : 0];
  const std::string_view others = marks[is_mariadb ? 0 : 1];
  Lines kept;
  for (const std::string& line : lines) {
    if (line.starts_with(others)) continue;
    kept.push_back(line.starts_with(mine) ? line.substr(mine.size()) : line);
  }
  return kept;
}

Lines Covered(Lines came, const Lines& expected) {
  for (std::size_t i = 0; i < std::min(came.size(), expected.size()); ++i) {
    if (Covers(expected[i], came[i])) came[i] = expected[i];
  }
  return came;
}

void Rewrite(const Script& script, const Step& step, const Lines& came) {
  static Rewriter rewriter;
  Lines lines = came;
  if (!lines.empty()) lines.insert(lines.begin(), std::string(kResult));
  const int count = step.expected.empty() ? 0 : static_cast<int>(step.expected.size()) + 1;
  rewriter.Add(script.file, {step.result_line, count, std::move(lines)});
}

}  // namespace dorvane::test
