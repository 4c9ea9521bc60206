#include "tests/sandbox/sql/script.h"

#include <strings.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace sandbox::testing {

namespace {

constexpr std::string_view kResult = "----";

std::ifstream Opened(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return file;
}

std::string Repeated(const std::string& piece, int first, int last) {
  std::string text;
  for (int number = first; number <= last; ++number) {
    if (number > first) text += ',';
    for (const char c : piece) text += c == '#' ? std::to_string(number) : std::string(1, c);
  }
  return text;
}

/// The line, "<1..3: x#>" in it as "x1,x2,x3".
std::string Written(std::string line) {
  static const std::regex repetition(R"(<(\d+)\.\.(\d+): ([^>]*)>)");
  for (std::smatch found; std::regex_search(line, found, repetition);) {
    const std::string repeated = Repeated(found[3], std::stoi(found[1]), std::stoi(found[2]));
    line = found.prefix().str() + repeated + found.suffix().str();
  }
  return line;
}

class Reader {
 public:
  explicit Reader(const std::filesystem::path& path) : path_(path), file_(Opened(path)) {}

  std::vector<Script> Read() {
    while (NextLine()) {
      if (line_.starts_with("test ")) {
        scripts_.push_back({path_.stem().string() + "_" + line_.substr(5), path_, setup_});
      } else if (line_ != "setup" && !line_.empty() && !line_.starts_with('#')) {
        (scripts_.empty() ? setup_ : scripts_.back().records).push_back(ReadRecord());
      }
    }
    if (scripts_.empty()) throw std::runtime_error("no tests in " + path_.string());
    return std::move(scripts_);
  }

 private:
  bool NextLine() {
    ++number_;
    return static_cast<bool>(std::getline(file_, line_));
  }

  Record ReadRecord() {
    Record record;
    record.line = number_;
    do {
      if (line_.starts_with("counts ")) {
        record.counts = line_;
      } else if (!record.results.empty() || line_.starts_with(kResult)) {
        record.results.push_back(line_);
      } else if (line_.starts_with("error ")) {
        ReadError(record);
      } else if (line_.starts_with("level ")) {
        record.level = line_;
      } else if (record.batch.empty() && line_.starts_with("as ")) {
        record.login = line_.substr(3);
      } else {
        record.batch += (record.batch.empty() ? "" : "\n") + Written(line_);
      }
    } while (NextLine() && !line_.empty());
    return record;
  }

  void ReadError(Record& record) const {
    const std::size_t colon = line_.find(": ");
    record.numbers = line_.substr(6, colon == std::string::npos ? colon : colon - 6);
    if (colon != std::string::npos) record.text = line_.substr(colon + 2);
  }

  std::filesystem::path path_;
  std::ifstream file_;
  std::string line_;
  int number_ = 0;
  std::vector<Record> setup_;
  std::vector<Script> scripts_;
};

}  // namespace

std::vector<Script> ReadScripts(const std::filesystem::path& folder) {
  std::vector<Script> all;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".slt") continue;
    std::ranges::move(Reader(entry.path()).Read(), std::back_inserter(all));
  }
  return all;
}

std::vector<std::string> ReadBatches(const std::filesystem::path& path) {
  std::ifstream file = Opened(path);
  std::vector<std::string> batches(1);
  for (std::string line; std::getline(file, line);) {
    if (strcasecmp(line.c_str(), "go") == 0) {
      batches.emplace_back();
    } else {
      batches.back() += line + "\n";
    }
  }
  return batches;
}

std::string ShownRow(const std::string& text) {
  if (text.empty()) return "(empty)";
  std::string shown;
  for (const char c : text) shown += c == '\n' ? std::string("\\n") : std::string(1, c);
  return shown;
}

}  // namespace sandbox::testing
