#include "tests/support/table.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace dorvane::test {

namespace {

std::vector<std::string> Cells(const std::string& line) {
  std::vector<std::string> cells;
  for (std::size_t start = 0; start <= line.size();) {
    const std::size_t end = std::min(line.find('|', start), line.size());
    const std::string cell = line.substr(start, end - start);
    const std::size_t first = std::min(cell.find_first_not_of(' '), cell.size());
    cells.push_back(cell.substr(first, cell.find_last_not_of(' ') + 1 - first));
    start = end + 1;
  }
  return cells;
}

}  // namespace

std::vector<std::vector<std::string>> ReadTable(const std::string& file) {
  std::ifstream lines(std::string(TESTS_FOLDER "/") + file);
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && !line.starts_with('#')) rows.push_back(Cells(line));
  }
  if (rows.empty()) throw std::runtime_error("no cases in " + file);
  return rows;
}

}  // namespace dorvane::test
