#pragma once

#include "platform/ado/catalog_types.h"
#include "platform/ado/odbc/catalog_rows.h"

namespace dorvane::ado::odbc {

// What the rows of SystemViews' questions tell of a table. The order of their values is that of the
// questions.

/// Rows in the order of the columns.
void AddColumnRow(const QueryRow& row, TableDetails& details);
/// Rows index by index, the columns of each in key order. An index that is none to make again is
/// told in `left_out`.
void AddIndexRow(const QueryRow& row, TableDetails& details);
/// Rows of foreign keys, key by key, the columns of each in key order.
void AddKeyRow(const QueryRow& row, TableDetails& details);
/// When all rows are there: the primary key, which is an index, and then the foreign ones by name.
void CompleteKeys(TableDetails& details);

}  // namespace dorvane::ado::odbc
