#pragma once

#include <string>
#include <vector>

#include "endpoint/table_definition.h"
#include "platform/ado/catalog_types.h"

namespace dorvane::to_mysql {

/// The columns of a key as they stand between the parentheses of its statement.
struct KeyColumns {
  std::string text;      // "`a`,`b`(16)"
  bool is_whole = true;  // false when a length leaves the end of a column out
};

/// `dest_names` are the destination's names of the index's columns, in key order.
KeyColumns PlainKeyColumns(const std::vector<std::string>& dest_names);

/// The same with a length behind each TEXT or BLOB column: that of the whole column where it fits,
/// else what there is room for. `columns` are the source table's, `table` its definition.
KeyColumns KeyColumnsWithLengths(const std::vector<std::string>& dest_names,
                                 const ado::Index& index, const std::vector<ado::Column>& columns,
                                 const TableDefinition& table);

}  // namespace dorvane::to_mysql
