#pragma once

#include "endpoint/database.h"

namespace dorvane {

/// A list as the user sees it: its names in order and the position of the selected one, or -1.
struct TableList {
  NameList names;
  int current = -1;
  bool operator==(const TableList&) const = default;
};

/// The two lists of the table page. A name is only ever moved, to the end of the other list.
struct TableLists {
  TableList available;
  TableList selected;
};

/// Moves the selected available table; its place is taken by the next one, or by the last.
void MoveToSelected(TableLists& lists);
/// Moves the selected entry of the selected list back; the last one left becomes current.
void MoveBack(TableLists& lists);
/// Moves every available table; the last one becomes current.
void MoveAllToSelected(TableLists& lists);

}  // namespace dorvane
