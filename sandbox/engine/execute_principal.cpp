#include <algorithm>

#include "sandbox/engine/statement_runners.h"
#include "sandbox/text/text_order.h"

namespace sandbox {

namespace {

template <typename Range>
bool HasNamed(const Range& range, std::string_view name) {
  return std::any_of(range.begin(), range.end(),
                     [&](const auto& item) { return SameName(item.name, name); });
}

}  // namespace

void DefinitionRunner::CreateSchema(const PrincipalStatement& statement) {
  Link().BeginWrite();
  const std::vector<SchemaDef>& schemas = Link().Definitions().schemas;
  if (HasNamed(schemas, statement.name)) Raise(2714, statement.name);
  const std::string owner = statement.owner.empty() ? Link().User().name : statement.owner;
  Link().Add(&Catalog::schemas, {schemas.back().id + 1, statement.name, owner});
}

void DefinitionRunner::CreateLogin(const PrincipalStatement& statement) {
  if (!statement.password) Raise(102, statement.name);
  if (SameName(statement.name, session_.Login()) ||
      !session_.Folder().AddLogin(statement.name, *statement.password)) {
    Raise(15025, statement.name);
  }
}

void DefinitionRunner::CreateUser(const PrincipalStatement& statement) {
  Link().BeginWrite();
  const std::vector<UserDef>& users = Link().Definitions().users;
  if (HasNamed(users, statement.name)) Raise(15023, statement.name);
  UserDef user{users.back().id + 1, statement.name, statement.login.value_or(statement.name),
               statement.default_schema.value_or(kDefaultSchema)};
  const bool known = user.login.empty() || SameName(user.login, session_.Login()) ||
                     session_.Folder().HasLogin(user.login);
  if (!known) Raise(15007, user.login);
  Link().Add(&Catalog::users, std::move(user));
}

void DefinitionRunner::Run(const PrincipalStatement& statement) {
  switch (statement.kind) {
    case PrincipalStatement::Kind::Schema:
      CreateSchema(statement);
      break;
    case PrincipalStatement::Kind::Login:
      CreateLogin(statement);
      break;
    case PrincipalStatement::Kind::User:
      CreateUser(statement);
      break;
  }
  Done();
}

}  // namespace sandbox
