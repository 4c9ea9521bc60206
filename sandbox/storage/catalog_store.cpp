#include "sandbox/storage/catalog_store.h"

#include "sandbox/storage/definition_text.h"

namespace sandbox {

namespace {

enum class Kind : std::int64_t { Shared, Table, View };

// In the place of an object's id.
constexpr int kSharedId = 0;

template <typename Definition>
void Store(SqliteConnection& connection, int id, Kind kind, const Definition& definition) {
  std::string text;
  Write(definition, text);
  auto insert = connection.Prepare("INSERT OR REPLACE INTO definition VALUES(?1,?2,?3)");
  RunWith(insert, std::int64_t{id}, static_cast<std::int64_t>(kind), std::string_view(text));
}

}  // namespace

void CreateCatalogTables(SqliteConnection& connection) {
  connection.Execute(
      "CREATE TABLE definition(id INTEGER PRIMARY KEY, kind INTEGER, body TEXT);"
      "CREATE TABLE counter(name TEXT PRIMARY KEY, value INTEGER)");
}

void DropTemporaryTables(SqliteConnection& connection) {
  const Catalog catalog = LoadCatalog(connection);
  for (const auto& [id, table] : catalog.tables) {
    if (!table.IsTemporary()) continue;
    connection.Execute("SAVEPOINT drop_one; DROP TABLE " + table.StoredName());
    ForgetObject(connection, id);
    connection.Execute("RELEASE drop_one");
  }
}

Catalog LoadCatalog(SqliteConnection& connection) {
  Catalog catalog;
  auto rows = connection.Prepare("SELECT id, kind, body FROM definition");
  while (rows.Step()) {
    const int id = static_cast<int>(rows.Integer(0));
    const std::string body = rows.Text(2);
    std::string_view text = body;
    switch (static_cast<Kind>(rows.Integer(1))) {
      case Kind::Shared:
        Read(text, catalog);
        break;
      case Kind::Table:
        Read(text, catalog.tables[id]);
        break;
      case Kind::View:
        Read(text, catalog.views[id]);
        break;
    }
  }
  return catalog;
}

void StoreTable(SqliteConnection& connection, const TableDef& table) {
  Store(connection, table.id, Kind::Table, table);
}

void StoreView(SqliteConnection& connection, const ViewDef& view) {
  Store(connection, view.id, Kind::View, view);
}

void StoreShared(SqliteConnection& connection, const Catalog& catalog) {
  Store(connection, kSharedId, Kind::Shared, catalog);
}

void ForgetObject(SqliteConnection& connection, int object_id) {
  auto remove = connection.Prepare("DELETE FROM definition WHERE id=?1");
  RunWith(remove, std::int64_t{object_id});
}

std::int64_t LoadCounter(SqliteConnection& connection, std::string_view name,
                         std::int64_t when_missing) {
  auto row = connection.Prepare("SELECT value FROM counter WHERE name=?1");
  row.Bind(1, name);
  return row.Step() ? row.Integer(0) : when_missing;
}

void StoreCounter(SqliteConnection& connection, std::string_view name, std::int64_t value) {
  auto insert = connection.Prepare("INSERT OR REPLACE INTO counter VALUES(?1,?2)");
  RunWith(insert, name, value);
}

void ForgetCounter(SqliteConnection& connection, std::string_view name) {
  auto remove = connection.Prepare("DELETE FROM counter WHERE name=?1");
  RunWith(remove, name);
}

}  // namespace sandbox
