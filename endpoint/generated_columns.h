#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/table_definition.h"
#include "platform/ado/catalog.h"

namespace dorvane {

/// How a direction goes about columns that the source computes.
struct ComputedColumnRules {
  std::string_view server;  // of the destination, for notes
  std::function<bool(const ado::Column& column)> is_computed;
  /// What follows the column's name; nothing where the destination may compute other values.
  std::function<std::optional<std::string>(const ado::Column& column,
                                           const ColumnDefinition& definition)>
      generation;
};

/// Has the destination compute the columns that the source computes, where the rules give a
/// definition; the others hold their values, as those of the primary key do.
void KeepComputedColumns(ado::Table& tab_src, TableDefinition& table,
                         const ComputedColumnRules& rules);

/// Has the columns hold their values whose definition the destination refused, and notes why: those
/// that its words name, else those of a column that they name, else all that it was to compute.
/// False when there is none.
bool HoldRefusedValues(TableDefinition& table, std::string_view server, std::string_view words);

/// True when the server's words have the name between quotes, as it is or with underscores.
bool IsNamed(std::string_view words, const std::string& name, std::string_view quotes = "'");

}  // namespace dorvane
