#pragma once

#include "sandbox/storage/catalog.h"
#include "sandbox/storage/sqlite.h"

namespace sandbox {

/// Makes the catalog's own tables in a new database file.
void CreateCatalogTables(SqliteConnection& connection);
/// Adds to a file of an earlier version what it lacks.
void CompleteCatalogTables(SqliteConnection& connection);

/// Drops the tables of all sessions, of which none is left.
void DropTemporaryTables(SqliteConnection& connection);

/// Reads every definition of the database.
Catalog LoadCatalog(SqliteConnection& connection);

/// Writes one table's definition over the stored one, and the last object id.
void StoreTable(SqliteConnection& connection, const Catalog& catalog, const TableDef& table);
void ForgetTable(SqliteConnection& connection, int table_id);

/// Schemas, users and alias types; the server's own are not written.
void LoadLists(SqliteConnection& connection, Catalog& catalog);
void StoreLists(SqliteConnection& connection, const Catalog& catalog);

void StoreView(SqliteConnection& connection, const Catalog& catalog, const ViewDef& view);
void ForgetView(SqliteConnection& connection, int view_id);

/// A number kept by name: identity counters, the last row version.
std::int64_t LoadCounter(SqliteConnection& connection, std::string_view name,
                         std::int64_t when_missing);
void StoreCounter(SqliteConnection& connection, std::string_view name, std::int64_t value);
void ForgetCounter(SqliteConnection& connection, std::string_view name);

}  // namespace sandbox
