#include "ui/wizard/table_lists.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace dorvane {
namespace {

int LastPosition(const TableList& list) {
  return static_cast<int>(list.names.size()) - 1;
}

// Moves the selected entry of `from` to the end of `to` and makes it current there.
void MoveCurrent(TableList& from, TableList& to) {
  if (from.current < 0) return;
  const auto entry = from.names.begin() + from.current;
  to.names.push_back(std::move(*entry));
  from.names.erase(entry);
  to.current = LastPosition(to);
}

}  // namespace

void MoveToSelected(TableLists& lists) {
  MoveCurrent(lists.available, lists.selected);
  lists.available.current = std::min(lists.available.current, LastPosition(lists.available));
}

void MoveBack(TableLists& lists) {
  MoveCurrent(lists.selected, lists.available);
  lists.selected.current = LastPosition(lists.selected);
}

void MoveAllToSelected(TableLists& lists) {
  std::ranges::move(lists.available.names, std::back_inserter(lists.selected.names));
  lists.available = {};
  lists.selected.current = LastPosition(lists.selected);
}

}  // namespace dorvane
