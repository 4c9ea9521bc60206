#pragma once

#include <string>

namespace dorvane {

/// What the row copy must know of a column of the table in hand; filled while the column's
/// definition is built.
struct ColumnFacts {
  std::string default_text;  // destination literal of the default; empty when there is none
  bool nullable = false;     // the source column takes NULL
};

}  // namespace dorvane
