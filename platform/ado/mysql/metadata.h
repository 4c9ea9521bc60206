#pragma once

#include <mariadb/mysql.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/ado/catalog_types.h"

namespace dorvane::ado::mysql {

/// Columns of a table of some database, as the catalog describes them; none when it knows no such
/// table.
using ColumnLookup =
    std::function<std::vector<Column>(const std::string& database, const std::string& table)>;

/// The fields of a result. A field that is a table's column is described as the catalog describes
/// it: what comes with the result does not tell its own character set or its declared length.
std::vector<FieldInfo> DescribeFields(const MYSQL_FIELD* fields, std::size_t count,
                                      const ColumnLookup& columns_of);

}  // namespace dorvane::ado::mysql
