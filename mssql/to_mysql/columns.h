#pragma once

#include <set>
#include <string>

#include "endpoint/table_definition.h"
#include "platform/ado/catalog_types.h"

namespace dorvane::to_mysql {

/// The MySQL definition of a SQL Server column. `identity_column` is empty for a table without one.
/// A default that MySQL cannot be given is left off and noted.
ColumnDefinition GetColumnType(const ado::Column& col, const std::string& identity_column);

/// The same in the exact mapping. `fine_columns` are those whose seconds have a seventh digit.
ColumnDefinition GetExactColumnType(const ado::Column& col, const std::string& identity_column,
                                    const std::set<std::string>& fine_columns);

}  // namespace dorvane::to_mysql
