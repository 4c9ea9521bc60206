#include "sandbox/catalog/database_link.h"
#include "sandbox/parser/ast.h"
#include "sandbox/text/text_order.h"

namespace sandbox {

const UserDef& DatabaseLink::User() {
  const std::vector<UserDef>& users = Definitions().users;
  for (const UserDef& user : users) {
    if (!user.login.empty() && SameName(user.login, login_)) return user;
  }
  return users.front();
}

std::vector<std::string> DatabaseLink::SearchPath(const ObjectName& name) {
  constexpr const char* kEverySession = "##";
  if (name.name.starts_with(kEverySession)) return {kEverySession};
  if (name.IsTemporary()) return {temporary_schema_};
  if (!name.schema.empty()) return {name.schema};
  return {User().default_schema, kDefaultSchema};
}

const TableDef* DatabaseLink::FindTable(const ObjectName& name) {
  for (const std::string& schema : SearchPath(name)) {
    if (const TableDef* table = Definitions().FindTable(schema, name.name)) return table;
  }
  return nullptr;
}

const ViewDef* DatabaseLink::FindView(const ObjectName& name) {
  for (const std::string& schema : SearchPath(name)) {
    if (const ViewDef* view = Definitions().FindView(schema, name.name)) return view;
  }
  return nullptr;
}

const AliasTypeDef* DatabaseLink::FindType(const ObjectName& name) {
  for (const std::string& schema : SearchPath(name)) {
    if (const AliasTypeDef* type = Definitions().FindType(schema, name.name)) return type;
  }
  return nullptr;
}

std::string DatabaseLink::SchemaForNew(const ObjectName& name) {
  const std::string wanted = SearchPath(name).front();
  if (name.IsTemporary()) return wanted;
  const SchemaDef* schema = Definitions().FindSchema(wanted);
  if (!schema) Raise(2760, wanted);
  return schema->name;
}

}  // namespace sandbox
