#include "sandbox/storage/catalog_store.h"
#include "sandbox/storage/encoding.h"

namespace sandbox {

namespace {

// Schemas and users up to this number are the server's own.
constexpr int kLastOwnPrincipal = 4;

std::int64_t Number(std::int64_t value) {
  return value;
}

}  // namespace

void LoadLists(SqliteConnection& connection, Catalog& catalog) {
  auto schemas = connection.Prepare("SELECT id, name, owner FROM cat_schema ORDER BY id");
  while (schemas.Step()) {
    catalog.schemas.push_back(
        {static_cast<int>(schemas.Integer(0)), schemas.Text(1), schemas.Text(2)});
  }
  auto users = connection.Prepare("SELECT id, name, login, default_schema FROM cat_user");
  while (users.Step()) {
    catalog.users.push_back(
        {static_cast<int>(users.Integer(0)), users.Text(1), users.Text(2), users.Text(3)});
  }
  auto types = connection.Prepare("SELECT id, schema, name, type, nullable FROM cat_type");
  while (types.Step()) {
    catalog.types.push_back({static_cast<int>(types.Integer(0)), types.Text(1), types.Text(2),
                             UnpackType(types.Integer(3)), types.Integer(4) != 0});
  }
}

void StoreLists(SqliteConnection& connection, const Catalog& catalog) {
  connection.Execute("DELETE FROM cat_schema; DELETE FROM cat_user; DELETE FROM cat_type");
  auto insert_schema = connection.Prepare("INSERT INTO cat_schema VALUES(?,?,?)");
  for (const SchemaDef& schema : catalog.schemas) {
    if (schema.id <= kLastOwnPrincipal) continue;
    RunWith(insert_schema, Number(schema.id), std::string_view(schema.name),
            std::string_view(schema.owner));
  }
  auto insert_user = connection.Prepare("INSERT INTO cat_user VALUES(?,?,?,?)");
  for (const UserDef& user : catalog.users) {
    if (user.id <= kLastOwnPrincipal) continue;
    RunWith(insert_user, Number(user.id), std::string_view(user.name), std::string_view(user.login),
            std::string_view(user.default_schema));
  }
  auto insert_type = connection.Prepare("INSERT INTO cat_type VALUES(?,?,?,?,?)");
  for (const AliasTypeDef& type : catalog.types) {
    RunWith(insert_type, Number(type.id), std::string_view(type.schema),
            std::string_view(type.name), PackType(type.type), Number(type.nullable));
  }
}

}  // namespace sandbox
