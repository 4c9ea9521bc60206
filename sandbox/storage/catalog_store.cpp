#include "sandbox/storage/catalog_store.h"

#include "sandbox/storage/encoding.h"

namespace sandbox {

namespace {

// What cat_index_column.descending holds.
constexpr std::int64_t kDescending = 1;
constexpr std::int64_t kIncluded = 4;

// What cat_column.traits holds; how the column is generated lies above.
constexpr std::int64_t kPersisted = 1, kSparse = 2, kMasked = 4, kHidden = 8;
constexpr int kGeneratedShift = 4;

constexpr const char* kLastObjectId = "last_object_id";

constexpr const char* kPerTable[] = {
    "cat_column", "cat_index",   "cat_index_column", "cat_foreign_key", "cat_foreign_key_column",
    "cat_check",  "cat_property"};

std::int64_t Number(std::int64_t value) {
  return value;
}

void LoadColumns(SqliteConnection& connection, Catalog& catalog) {
  auto rows = connection.Prepare(
      "SELECT table_id, id, name, type, nullable, identity, seed, increment, default_name, "
      "default_text, default_id, row_guid, user_type, collation, computed, traits FROM cat_column "
      "ORDER BY table_id, position");
  while (rows.Step()) {
    ColumnDef column;
    column.id = static_cast<int>(rows.Integer(1));
    column.name = rows.Text(2);
    column.type = UnpackType(rows.Integer(3));
    column.nullable = rows.Integer(4) != 0;
    column.identity = rows.Integer(5) != 0;
    column.seed = rows.Integer(6);
    column.increment = rows.Integer(7);
    column.default_name = rows.Text(8);
    column.default_text = rows.Text(9);
    column.default_id = static_cast<int>(rows.Integer(10));
    column.row_guid = rows.Integer(11) != 0;
    column.user_type = static_cast<int>(rows.Integer(12));
    column.collation = rows.Text(13);
    column.computed_text = rows.Text(14);
    const std::int64_t traits = rows.Integer(15);
    column.persisted = (traits & kPersisted) != 0;
    column.sparse = (traits & kSparse) != 0;
    column.masked = (traits & kMasked) != 0;
    column.hidden = (traits & kHidden) != 0;
    column.generated = static_cast<Generated>(traits >> kGeneratedShift);
    catalog.tables[static_cast<int>(rows.Integer(0))].columns.push_back(std::move(column));
  }
}

void LoadIndexes(SqliteConnection& connection, Catalog& catalog) {
  auto rows = connection.Prepare(
      "SELECT table_id, id, object_id, name, is_unique, is_primary, clustered, disabled, filter "
      "FROM cat_index ORDER BY table_id, id");
  auto columns = connection.Prepare(
      "SELECT column_id, descending FROM cat_index_column WHERE table_id=?1 AND index_id=?2 "
      "ORDER BY position");
  while (rows.Step()) {
    IndexDef index;
    index.id = static_cast<int>(rows.Integer(1));
    index.object_id = static_cast<int>(rows.Integer(2));
    index.name = rows.Text(3);
    index.unique = rows.Integer(4) != 0;
    index.primary = rows.Integer(5) != 0;
    index.clustered = rows.Integer(6) != 0;
    index.disabled = rows.Integer(7) != 0;
    index.filter = rows.Text(8);
    columns.Bind(1, rows.Integer(0)).Bind(2, rows.Integer(1));
    ResetGuard guard(columns);
    while (columns.Step()) {
      const std::int64_t flags = columns.Integer(1);
      const int column = static_cast<int>(columns.Integer(0));
      if ((flags & kIncluded) != 0) {
        index.included.push_back(column);
      } else {
        index.columns.push_back({column, (flags & kDescending) != 0});
      }
    }
    catalog.tables[static_cast<int>(rows.Integer(0))].indexes.push_back(std::move(index));
  }
}

void LoadForeignKeys(SqliteConnection& connection, Catalog& catalog) {
  auto rows = connection.Prepare(
      "SELECT table_id, id, name, parent, on_delete, on_update, disabled, not_trusted FROM "
      "cat_foreign_key ORDER BY id");
  auto columns = connection.Prepare(
      "SELECT column_id, parent_column FROM cat_foreign_key_column WHERE key_id=?1 "
      "ORDER BY position");
  while (rows.Step()) {
    ForeignKeyDef key;
    key.id = static_cast<int>(rows.Integer(1));
    key.name = rows.Text(2);
    key.parent_table = static_cast<int>(rows.Integer(3));
    key.on_delete = static_cast<ForeignKeyRule>(rows.Integer(4));
    key.on_update = static_cast<ForeignKeyRule>(rows.Integer(5));
    key.disabled = rows.Integer(6) != 0;
    key.not_trusted = rows.Integer(7) != 0;
    columns.Bind(1, rows.Integer(1));
    ResetGuard guard(columns);
    while (columns.Step()) {
      key.columns.push_back(static_cast<int>(columns.Integer(0)));
      key.parent_columns.push_back(static_cast<int>(columns.Integer(1)));
    }
    catalog.tables[static_cast<int>(rows.Integer(0))].foreign_keys.push_back(std::move(key));
  }
}

void LoadChecks(SqliteConnection& connection, Catalog& catalog) {
  auto rows = connection.Prepare(
      "SELECT table_id, id, name, body, column_id, disabled, not_trusted FROM cat_check ORDER BY "
      "id");
  while (rows.Step()) {
    catalog.tables[static_cast<int>(rows.Integer(0))].checks.push_back(
        {static_cast<int>(rows.Integer(1)), rows.Text(2), rows.Text(3),
         static_cast<int>(rows.Integer(4)), rows.Integer(5) != 0, rows.Integer(6) != 0});
  }
}

void LoadProperties(SqliteConnection& connection, Catalog& catalog) {
  auto rows = connection.Prepare(
      "SELECT table_id, column_id, name, value FROM cat_property ORDER BY rowid");
  while (rows.Step()) {
    catalog.tables[static_cast<int>(rows.Integer(0))].properties.push_back(
        {static_cast<int>(rows.Integer(1)), rows.Text(2), rows.Text(3)});
  }
}

std::int64_t Traits(const ColumnDef& column) {
  return (column.persisted ? kPersisted : 0) | (column.sparse ? kSparse : 0) |
         (column.masked ? kMasked : 0) | (column.hidden ? kHidden : 0) |
         static_cast<std::int64_t>(column.generated) << kGeneratedShift;
}

void StoreColumns(SqliteConnection& connection, const TableDef& table) {
  auto insert =
      connection.Prepare("INSERT INTO cat_column VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
  std::int64_t position = 0;
  for (const ColumnDef& column : table.columns) {
    RunWith(insert, Number(table.id), position++, Number(column.id), std::string_view(column.name),
            PackType(column.type), Number(column.nullable), Number(column.identity), column.seed,
            column.increment, std::string_view(column.default_name),
            std::string_view(column.default_text), Number(column.default_id),
            Number(column.row_guid), Number(column.user_type), std::string_view(column.collation),
            std::string_view(column.computed_text), Traits(column));
  }
}

void StoreIndexes(SqliteConnection& connection, const TableDef& table) {
  auto insert = connection.Prepare("INSERT INTO cat_index VALUES(?,?,?,?,?,?,?,?,?)");
  auto insert_column = connection.Prepare("INSERT INTO cat_index_column VALUES(?,?,?,?,?)");
  for (const IndexDef& index : table.indexes) {
    RunWith(insert, Number(table.id), Number(index.id), Number(index.object_id),
            std::string_view(index.name), Number(index.unique), Number(index.primary),
            Number(index.clustered), Number(index.disabled), std::string_view(index.filter));
    std::int64_t position = 0;
    const auto add_column = [&](int column, std::int64_t flags) {
      RunWith(insert_column, Number(table.id), Number(index.id), position++, Number(column), flags);
    };
    for (const IndexColumn& column : index.columns)
      add_column(column.column_id, column.descending ? kDescending : 0);
    for (const int column : index.included) add_column(column, kIncluded);
  }
}

void StoreForeignKeys(SqliteConnection& connection, const TableDef& table) {
  auto insert = connection.Prepare("INSERT INTO cat_foreign_key VALUES(?,?,?,?,?,?,?,?)");
  auto insert_column = connection.Prepare("INSERT INTO cat_foreign_key_column VALUES(?,?,?,?,?)");
  for (const ForeignKeyDef& key : table.foreign_keys) {
    RunWith(insert, Number(table.id), Number(key.id), std::string_view(key.name),
            Number(key.parent_table), static_cast<std::int64_t>(key.on_delete),
            static_cast<std::int64_t>(key.on_update), Number(key.disabled),
            Number(key.not_trusted));
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
      RunWith(insert_column, Number(table.id), Number(key.id), static_cast<std::int64_t>(i),
              Number(key.columns[i]), Number(key.parent_columns[i]));
    }
  }
}

}  // namespace

void DropTemporaryTables(SqliteConnection& connection) {
  const Catalog catalog = LoadCatalog(connection);
  for (const auto& [id, table] : catalog.tables) {
    if (!table.IsTemporary()) continue;
    connection.Execute("SAVEPOINT drop_one; DROP TABLE " + table.StoredName());
    ForgetTable(connection, id);
    connection.Execute("RELEASE drop_one");
  }
}

Catalog LoadCatalog(SqliteConnection& connection) {
  Catalog catalog;
  catalog.last_object_id = static_cast<int>(LoadCounter(connection, kLastObjectId, 0));
  auto rows = connection.Prepare("SELECT id, name, created, next_column, schema FROM cat_table");
  while (rows.Step()) {
    TableDef& table = catalog.tables[static_cast<int>(rows.Integer(0))];
    table.id = static_cast<int>(rows.Integer(0));
    table.name = rows.Text(1);
    table.created = rows.Integer(2);
    table.next_column_id = static_cast<int>(rows.Integer(3));
    table.schema = rows.Text(4);
  }
  auto views = connection.Prepare("SELECT id, schema, name, created, body FROM cat_view");
  while (views.Step()) {
    const int id = static_cast<int>(views.Integer(0));
    catalog.views[id] = {id, views.Text(1), views.Text(2), views.Integer(3), views.Text(4)};
  }
  LoadLists(connection, catalog);
  LoadColumns(connection, catalog);
  LoadIndexes(connection, catalog);
  LoadForeignKeys(connection, catalog);
  LoadChecks(connection, catalog);
  LoadProperties(connection, catalog);
  return catalog;
}

void ForgetTable(SqliteConnection& connection, int table_id) {
  for (const char* name : kPerTable) {
    auto remove = connection.Prepare(std::string("DELETE FROM ") + name + " WHERE table_id=?1");
    RunWith(remove, Number(table_id));
  }
  auto remove = connection.Prepare("DELETE FROM cat_table WHERE id=?1");
  RunWith(remove, Number(table_id));
}

void StoreTable(SqliteConnection& connection, const Catalog& catalog, const TableDef& table) {
  ForgetTable(connection, table.id);
  auto insert = connection.Prepare("INSERT INTO cat_table VALUES(?,?,?,?,?)");
  RunWith(insert, Number(table.id), std::string_view(table.name), table.created,
          Number(table.next_column_id), std::string_view(table.schema));
  StoreColumns(connection, table);
  StoreIndexes(connection, table);
  StoreForeignKeys(connection, table);
  auto insert_check = connection.Prepare("INSERT INTO cat_check VALUES(?,?,?,?,?,?,?)");
  for (const CheckDef& check : table.checks) {
    RunWith(insert_check, Number(table.id), Number(check.id), std::string_view(check.name),
            std::string_view(check.text), Number(check.column_id), Number(check.disabled),
            Number(check.not_trusted));
  }
  auto insert_property = connection.Prepare("INSERT INTO cat_property VALUES(?,?,?,?)");
  for (const PropertyDef& property : table.properties) {
    RunWith(insert_property, Number(table.id), Number(property.column_id),
            std::string_view(property.name), std::string_view(property.value));
  }
  StoreCounter(connection, kLastObjectId, catalog.last_object_id);
}

void StoreView(SqliteConnection& connection, const Catalog& catalog, const ViewDef& view) {
  auto insert = connection.Prepare("INSERT INTO cat_view VALUES(?,?,?,?,?)");
  RunWith(insert, Number(view.id), std::string_view(view.name), view.created,
          std::string_view(view.text), std::string_view(view.schema));
  StoreCounter(connection, kLastObjectId, catalog.last_object_id);
}

void ForgetView(SqliteConnection& connection, int view_id) {
  auto remove = connection.Prepare("DELETE FROM cat_view WHERE id=?1");
  RunWith(remove, Number(view_id));
}

std::int64_t LoadCounter(SqliteConnection& connection, std::string_view name,
                         std::int64_t when_missing) {
  auto row = connection.Prepare("SELECT value FROM cat_counter WHERE name=?1");
  row.Bind(1, name);
  return row.Step() ? row.Integer(0) : when_missing;
}

void StoreCounter(SqliteConnection& connection, std::string_view name, std::int64_t value) {
  auto insert = connection.Prepare("INSERT OR REPLACE INTO cat_counter VALUES(?1,?2)");
  RunWith(insert, name, value);
}

void ForgetCounter(SqliteConnection& connection, std::string_view name) {
  auto remove = connection.Prepare("DELETE FROM cat_counter WHERE name=?1");
  RunWith(remove, name);
}

}  // namespace sandbox
