#pragma once

#include "sandbox/storage/catalog.h"
#include "sandbox/storage/sqlite.h"

namespace sandbox {

/// Makes the catalog's own tables in a new database file.
void CreateCatalogTables(SqliteConnection& connection);

/// Drops the tables of all sessions, of which none is left.
void DropTemporaryTables(SqliteConnection& connection);

/// Reads every definition of the database. Throws std::runtime_error for a damaged one.
Catalog LoadCatalog(SqliteConnection& connection);

/// Writes a definition over the stored one.
void StoreTable(SqliteConnection& connection, const TableDef& table);
void StoreView(SqliteConnection& connection, const ViewDef& view);
/// What is of no one table or view: schemas, users, alias types, the last object id.
void StoreShared(SqliteConnection& connection, const Catalog& catalog);

/// Forgets a table or view.
void ForgetObject(SqliteConnection& connection, int object_id);

/// A number kept by name: identity counters, the last row version.
std::int64_t LoadCounter(SqliteConnection& connection, std::string_view name,
                         std::int64_t when_missing);
void StoreCounter(SqliteConnection& connection, std::string_view name, std::int64_t value);
void ForgetCounter(SqliteConnection& connection, std::string_view name);

}  // namespace sandbox
