#include <iterator>

#include "sandbox/storage/catalog_store.h"

namespace sandbox {

namespace {

constexpr const char* kSchema = R"(
CREATE TABLE cat_table(id INTEGER PRIMARY KEY, name TEXT, created INTEGER, next_column INTEGER);
CREATE TABLE cat_view(id INTEGER PRIMARY KEY, name TEXT, created INTEGER, body TEXT);
CREATE TABLE cat_column(table_id INTEGER, position INTEGER, id INTEGER, name TEXT, type INTEGER,
  nullable INTEGER, identity INTEGER, seed INTEGER, increment INTEGER, default_name TEXT,
  default_text TEXT, default_id INTEGER, row_guid INTEGER, PRIMARY KEY(table_id, position));
CREATE TABLE cat_index(table_id INTEGER, id INTEGER, object_id INTEGER, name TEXT, is_unique INTEGER,
  is_primary INTEGER, clustered INTEGER, PRIMARY KEY(table_id, id));
CREATE TABLE cat_index_column(table_id INTEGER, index_id INTEGER, position INTEGER,
  column_id INTEGER, descending INTEGER, PRIMARY KEY(table_id, index_id, position));
CREATE TABLE cat_foreign_key(table_id INTEGER, id INTEGER PRIMARY KEY, name TEXT,
  parent INTEGER, on_delete INTEGER, on_update INTEGER);
CREATE TABLE cat_foreign_key_column(table_id INTEGER, key_id INTEGER, position INTEGER,
  column_id INTEGER, parent_column INTEGER, PRIMARY KEY(key_id, position));
CREATE TABLE cat_check(table_id INTEGER, id INTEGER PRIMARY KEY, name TEXT, body TEXT,
  column_id INTEGER);
CREATE TABLE cat_counter(name TEXT PRIMARY KEY, value INTEGER);
)";

// What later versions added, in their order; a file's user_version counts those that it has.
constexpr const char* kAdditions[] = {
    R"(
ALTER TABLE cat_table ADD COLUMN schema TEXT DEFAULT 'dbo';
ALTER TABLE cat_view ADD COLUMN schema TEXT DEFAULT 'dbo';
CREATE TABLE cat_schema(id INTEGER PRIMARY KEY, name TEXT, owner TEXT);
CREATE TABLE cat_user(id INTEGER PRIMARY KEY, name TEXT, login TEXT, default_schema TEXT);
)",
    R"(
ALTER TABLE cat_column ADD COLUMN user_type INTEGER DEFAULT 0;
ALTER TABLE cat_column ADD COLUMN collation TEXT DEFAULT '';
ALTER TABLE cat_column ADD COLUMN computed TEXT DEFAULT '';
ALTER TABLE cat_column ADD COLUMN traits INTEGER DEFAULT 0;
ALTER TABLE cat_index ADD COLUMN disabled INTEGER DEFAULT 0;
ALTER TABLE cat_index ADD COLUMN filter TEXT DEFAULT '';
ALTER TABLE cat_foreign_key ADD COLUMN disabled INTEGER DEFAULT 0;
ALTER TABLE cat_foreign_key ADD COLUMN not_trusted INTEGER DEFAULT 0;
ALTER TABLE cat_check ADD COLUMN disabled INTEGER DEFAULT 0;
ALTER TABLE cat_check ADD COLUMN not_trusted INTEGER DEFAULT 0;
CREATE TABLE cat_type(id INTEGER PRIMARY KEY, schema TEXT, name TEXT, type INTEGER,
  nullable INTEGER);
)",
    R"(
CREATE TABLE cat_property(table_id INTEGER, column_id INTEGER, name TEXT, value TEXT);
)"};

}  // namespace

void CreateCatalogTables(SqliteConnection& connection) {
  connection.Execute(kSchema);
  CompleteCatalogTables(connection);
}

void CompleteCatalogTables(SqliteConnection& connection) {
  auto version = connection.Prepare("PRAGMA user_version");
  version.Step();
  const auto present = static_cast<std::size_t>(version.Integer(0));
  version.Reset();
  for (std::size_t i = present; i < std::size(kAdditions); ++i) {
    connection.Execute(std::string("SAVEPOINT addition;") + kAdditions[i] +
                       "PRAGMA user_version=" + std::to_string(i + 1) + ";RELEASE addition");
  }
}

}  // namespace sandbox
