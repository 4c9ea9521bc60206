#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "endpoint/table_definition.h"
#include "platform/ado/catalog_types.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

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

/// The SQL Server definition of a MySQL column, which `descriptions` holds; a default that cannot
/// be converted is left off and noted. Throws RunTimeError when they do not hold it.
ColumnDefinition GetColumnType(const ado::Column& col,
                               const std::vector<ColumnDescription>& descriptions);

/// The same in the exact mapping. `answer` is that of the question that the column's type needs;
/// `dest_name` is its name on the destination.
ColumnDefinition GetExactColumnType(const ado::Column& col,
                                    const std::vector<ColumnDescription>& descriptions,
                                    std::int64_t answer, const std::string& dest_name);

/// What an index of the server may hold of one row, in all of its versions.
inline constexpr std::int64_t kMostKeyBytes = 900;

/// Bytes of a key that a column of this SQL Server type takes at most; nothing for a type that no
/// key takes.
std::optional<std::int64_t> KeyBytes(const std::string& type);

}  // namespace dorvane::to_mssql
