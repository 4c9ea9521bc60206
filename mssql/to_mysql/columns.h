#pragma once

#include <string>

#include "endpoint/table_definition.h"
#include "platform/ado/catalog_types.h"

namespace dorvane::to_mysql {

/// The MySQL definition of a SQL Server column. `identity_column` is empty for a table without one.
/// A default that MySQL cannot be given is left off and noted.
ColumnDefinition GetColumnType(const ado::Column& col, const std::string& identity_column);

}  // namespace dorvane::to_mysql
