#pragma once

#include <string>

#include "sandbox/binder/binder.h"
#include "sandbox/storage/catalog.h"

namespace sandbox {

class Session;

// A table's definition in SQLite's language: what stands in its CREATE TABLE and CREATE INDEX.

/// The table's columns as they are named there.
Scope StoredScope(const TableDef& table);

/// The condition as a definition keeps it, in one pair of parentheses: "([a]>(0))".
std::string ConditionText(const Expr& condition);

/// The condition of a filtered index. Raises 207 and its kin.
std::string StoredCondition(Session& session, const TableDef& table, const std::string& text);

/// "c3 COLLATE ..."; a computed column with what it is computed of. Raises 4936 where that is not
/// the same each time.
std::string StoredColumnText(Session& session, const TableDef& table, const ColumnDef& column);

}  // namespace sandbox
