#include "mysql/to_mssql/cascade_paths.h"

#include <algorithm>
#include <vector>

namespace dorvane::to_mssql {

bool CascadePaths::Add(const std::string& parent, const std::string& child) {
  const std::set<std::string> ends = Reached(child, false);
  for (const std::string& start : Reached(parent, true)) {
    const std::set<std::string> reached = Reached(start, false);
    if (std::ranges::any_of(ends, [&](const auto& end) { return reached.contains(end); })) {
      return false;
    }
  }
  steps_.emplace(parent, child);
  return true;
}

/// With the table itself.
std::set<std::string> CascadePaths::Reached(const std::string& table, bool backwards) const {
  std::set<std::string> reached{table};
  std::vector<std::string> ahead{table};
  while (!ahead.empty()) {
    const std::string from = std::move(ahead.back());
    ahead.pop_back();
    for (const auto& [parent, child] : steps_) {
      const std::string& to = backwards ? parent : child;
      if ((backwards ? child : parent) == from && reached.insert(to).second) ahead.push_back(to);
    }
  }
  return reached;
}

}  // namespace dorvane::to_mssql
