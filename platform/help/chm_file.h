#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dorvane::help {

/// The files inside a compiled help file, as bytes. Paths start with "/"; upper and lower case are
/// the same. All of them are read at once, in a process of its own: the library that reads them may
/// crash on a damaged file.
class ChmFile {
 public:
  /// Throws RunTimeError: 53 no such file, 57 a file that is no compiled help or is damaged.
  explicit ChmFile(const std::filesystem::path& path);

  std::optional<std::string> Read(const std::string& object) const;
  /// The paths of the ordinary files, in the order of the file's directory.
  std::vector<std::string> List() const { return list_; }

 private:
  void Take(const std::string& path, std::string bytes);

  std::map<std::string, std::string> objects_;  // by their path in lower case
  std::vector<std::string> list_;
};

}  // namespace dorvane::help
