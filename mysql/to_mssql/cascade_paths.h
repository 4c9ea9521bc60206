#pragma once

#include <set>
#include <string>
#include <utility>

namespace dorvane::to_mssql {

/// The ways on which changes of rows travel from table to table. SQL Server wants one way at most
/// from any table to any other, and none back.
class CascadePaths {
 public:
  /// False, and no change, when the way from `parent` to `child` would be a second one.
  bool Add(const std::string& parent, const std::string& child);

 private:
  std::set<std::string> Reached(const std::string& table, bool backwards) const;

  std::set<std::pair<std::string, std::string>> steps_;  // parent, child
};

}  // namespace dorvane::to_mssql
