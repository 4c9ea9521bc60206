#include <algorithm>

#include "sandbox/engine/statement_runners.h"

namespace sandbox {
namespace {

constexpr int kFirstAliasType = 257;

}  // namespace

Flow DefinitionRunner::Run(const CreateTypeStatement& create) {
  DatabaseLink& link = session_.LinkTo(create.name.database);
  link.BeginWrite();
  const std::string schema = link.SchemaForNew(create.name);
  std::vector<AliasTypeDef> types = link.Definitions().types;
  if (link.Definitions().FindType(schema, create.name.name)) Raise(219, create.name.Text());
  const int id = types.empty() ? kFirstAliasType : types.back().id + 1;
  types.push_back({id, schema, create.name.name, create.type, create.nullable});
  link.SetTypes(std::move(types));
  return Done();
}

Flow DefinitionRunner::Run(const DropTypeStatement& drop) {
  DatabaseLink& link = session_.LinkTo(drop.name.database);
  link.BeginWrite();
  const AliasTypeDef* type = link.FindType(drop.name);
  if (!type && !drop.if_exists) Raise(218, drop.name.Text());
  if (type) {
    const int id = type->id;
    for (const auto& [table_id, table] : link.Definitions().tables) {
      for (const ColumnDef& column : table.columns) {
        if (column.user_type == id) Raise(3732, drop.name.Text(), table.name);
      }
    }
    std::vector<AliasTypeDef> types = link.Definitions().types;
    std::erase_if(types, [&](const AliasTypeDef& other) { return other.id == id; });
    link.SetTypes(std::move(types));
  }
  return Done();
}

}  // namespace sandbox
