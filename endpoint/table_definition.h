#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace dorvane {

/// What the row copy must know of a column.
struct ColumnFacts {
  std::string default_text;  // destination literal of the default; empty when there is none
  bool nullable = false;     // the source column takes NULL
};

/// A column as the destination gets it.
struct ColumnDefinition {
  std::string text;  // what follows the column's name: type, NULL rule, identity, default
  ColumnFacts facts;
  bool is_identity = false;
};

/// A table as the destination gets it.
struct TableDefinition {
  struct Column : ColumnDefinition {
    std::string name;  // the source's
  };

  std::string name;       // the source catalog's
  std::string dest_name;  // unquoted
  std::vector<Column> columns;

  /// Null when there is none of that name.
  const Column* Find(std::string_view column) const {
    const auto found = std::ranges::find(columns, column, &Column::name);
    return found != columns.end() ? &*found : nullptr;
  }
  /// Null when the table has no identity column.
  const Column* Identity() const {
    const auto found = std::ranges::find(columns, true, &Column::is_identity);
    return found != columns.end() ? &*found : nullptr;
  }
};

}  // namespace dorvane
