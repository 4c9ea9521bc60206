#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "endpoint/table_definition.h"
#include "platform/ado/catalog_types.h"

namespace dorvane {

/// Makes a column one that is filled with the source's values, and notes why.
void HoldValues(ColumnDefinition& column, std::string_view why);

/// The same for the columns whose definition the destination refused: those that its words name,
/// else those of a column that they name, else all that it was to compute. False when there is
/// none.
bool HoldRefusedValues(TableDefinition& table, std::string_view server, std::string_view words);

bool IsOfPrimaryKey(const std::vector<ado::Index>& indexes, const std::string& column);

/// True when the server's words have the name between quotes, as it is or with underscores.
bool IsNamed(std::string_view words, const std::string& name, std::string_view quotes = "'");

}  // namespace dorvane
