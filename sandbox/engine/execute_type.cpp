#include "sandbox/engine/statement_runners.h"

namespace sandbox {

namespace {

constexpr int kFirstAliasType = 257;

}  // namespace

void DefinitionRunner::Run(const CreateTypeStatement& create) {
  DatabaseLink& link = session_.LinkTo(create.name.database);
  link.BeginWrite();
  const std::string schema = link.SchemaForNew(create.name);
  const std::vector<AliasTypeDef>& types = link.Definitions().types;
  if (link.Definitions().FindType(schema, create.name.name)) Raise(219, create.name.Text());
  const int id = types.empty() ? kFirstAliasType : types.back().id + 1;
  link.Add(&Catalog::types, {id, schema, create.name.name, create.type, create.nullable});
  Done();
}

}  // namespace sandbox
