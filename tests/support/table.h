#pragma once

#include <string>
#include <vector>

namespace dorvane::test {

/// The lines of a file of test cases, each taken apart at "|", without the blanks around its cells.
/// Empty lines and those that begin with "#" are left out. `file` is a path within the folder of
/// the tests. Throws std::runtime_error when it cannot be read or holds nothing.
std::vector<std::vector<std::string>> ReadTable(const std::string& file);

}  // namespace dorvane::test
