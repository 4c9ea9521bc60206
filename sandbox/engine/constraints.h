#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/storage/catalog.h"
#include "sandbox/storage/sqlite.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/types.h"

namespace sandbox {

class DatabaseLink;
class Session;

/// The value as the column stores it. Raises 2628 where it would be cut, and conversion errors.
Value StoreValue(DatabaseLink& link, const TableDef& table, const ColumnDef& column,
                 const Value& value, const TypeInfo& from);

/// Raises 2627 or 2601 for a row that SQLite has refused; `error` itself when it is about something
/// else. Of several broken indexes the server names the primary key's, else the oldest. `value`
/// gives the row's value of a column by its number; `own_row` is its row number when it is in the
/// table already, else 0.
[[noreturn]] void RaiseDuplicate(DatabaseLink& link, const TableDef& table,
                                 const SqliteError& error,
                                 const std::function<Value(int column_id)>& value,
                                 std::int64_t own_row);
/// The values of a key, which are in the order of the index.
std::string KeyText(const TableDef& table, const IndexDef& index, const std::vector<Value>& keys);

/// Checks foreign keys (as the child) and checks of the rows with these SQLite row numbers. Raises
/// 547; `statement` is the word in its text.
void VerifyRows(Session& session, DatabaseLink& link, const TableDef& table, std::int64_t first,
                std::int64_t last, std::string_view statement);

/// Keys of these rows that are longer than their index takes. Raises 1946.
void VerifyKeyLengths(DatabaseLink& link, const TableDef& table, std::int64_t first,
                      std::int64_t last);
/// True when a key of the table may be longer than its index takes.
bool HasLongKeys(const TableDef& table);

/// The same for one constraint and every row, as ALTER TABLE needs it.
void VerifyForeignKey(DatabaseLink& link, const TableDef& table, const ForeignKeyDef& key,
                      std::int64_t first, std::int64_t last, std::string_view statement);
void VerifyCheck(Session& session, DatabaseLink& link, const TableDef& table, const CheckDef& check,
                 std::int64_t first, std::int64_t last, std::string_view statement);

/// 547 for a row of `parent` that rows of `child` still need.
SqlError StillReferenced(DatabaseLink& link, const TableDef& parent, const TableDef& child,
                         const ForeignKeyDef& key, std::string_view statement);

}  // namespace sandbox
