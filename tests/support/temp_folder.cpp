#include "tests/support/temp_folder.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace dorvane::test {

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "dorvane-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = pattern;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace dorvane::test
