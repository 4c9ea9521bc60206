#pragma once

#include <string>
#include <vector>

#include "endpoint/table_definition.h"
#include "platform/ado/catalog_types.h"
#include "platform/ado/connection.h"

namespace dorvane {

/// A row of SHOW COLUMNS.
struct ColumnDescription {
  std::string field;
  std::string null;
  std::string key;
  std::string default_value;  // empty for none
  std::string extra;
};

/// `table_reference` is a quoted name. Throws RunTimeError.
std::vector<ColumnDescription> ShowColumns(ado::Connection& source,
                                           const std::string& table_reference);

/// The SQL Server definition of a MySQL column, which `descriptions` holds. Throws RunTimeError
/// when it does not, or when the default cannot be converted.
ColumnDefinition GetColumnType(const ado::Column& col,
                               const std::vector<ColumnDescription>& descriptions);

}  // namespace dorvane
