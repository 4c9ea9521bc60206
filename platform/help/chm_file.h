#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct chmFile;

namespace dorvane::help {

/// The files inside a compiled help file, as bytes. Paths start with "/"; upper and lower case are
/// the same. Movable.
class ChmFile {
 public:
  /// Throws RunTimeError: 53 no such file, 57 a file that is no compiled help.
  explicit ChmFile(const std::filesystem::path& path);

  std::optional<std::string> Read(const std::string& object) const;
  /// The paths of the ordinary files, in the order of the file's directory.
  std::vector<std::string> List() const;

 private:
  struct Closer {
    void operator()(chmFile* file) const;
  };
  std::unique_ptr<chmFile, Closer> file_;
};

}  // namespace dorvane::help
