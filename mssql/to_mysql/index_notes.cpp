#include "mssql/to_mysql/index_notes.h"

#include <fmt/format.h>

#include <algorithm>

#include "endpoint/names.h"

namespace dorvane::to_mysql {

namespace {

/// True for a filter that leaves out rows with NULL in the key and no others, which no unique key
/// of MySQL's compares: "([a] IS NOT NULL AND [b] IS NOT NULL)".
bool LeavesOnlyNullsOut(const ado::Index& index) {
  constexpr std::string_view kAnd = " AND ";
  std::string_view rest = index.filter;
  if (!rest.starts_with('(') || !rest.ends_with(')')) return false;
  rest = rest.substr(1, rest.size() - 2);
  for (;;) {
    const auto heads = [&](const std::string& column) {
      return rest.starts_with(MsSqlName(column) + " IS NOT NULL");
    };
    const auto column = std::ranges::find_if(index.columns, heads);
    if (column == index.columns.end()) return false;
    rest.remove_prefix(MsSqlName(*column).size() + std::string_view(" IS NOT NULL").size());
    if (rest.empty()) return true;
    if (!rest.starts_with(kAnd)) return false;
    rest.remove_prefix(kAnd.size());
  }
}

}  // namespace

ado::Index WithoutFilter(const ado::Index& index, std::vector<std::string>& notes) {
  ado::Index made = index;
  made.filter.clear();
  if (index.filter.empty() || (index.unique && LeavesOnlyNullsOut(index))) return made;
  made.unique = false;
  notes.push_back(
      index.unique ? fmt::format("unique key {} became a plain index, since MySQL has no filter {}",
                                 index.name, index.filter)
                   : fmt::format("index {} covers every row, since MySQL has no filter {}",
                                 index.name, index.filter));
  return made;
}

}  // namespace dorvane::to_mysql
