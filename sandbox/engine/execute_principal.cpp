#include <algorithm>

#include "sandbox/engine/statement_runners.h"
#include "sandbox/text/text_order.h"

namespace sandbox {
namespace {

using Action = PrincipalStatement::Action;

template <class Range>
auto Named(Range& range, std::string_view name) {
  return std::find_if(range.begin(), range.end(),
                      [&](const auto& item) { return SameName(item.name, name); });
}

// Lists begin with what is the server's own, which stays as it is.
template <class Range>
bool IsOwn(const Range& range, typename Range::const_iterator item) {
  return item - range.begin() < std::ssize(Catalog().schemas);
}

// The name of something that is in the schema; empty when it has nothing.
std::string FirstObjectIn(const Catalog& catalog, std::string_view schema) {
  for (const auto& [id, table] : catalog.tables) {
    if (SameName(table.schema, schema)) return table.name;
  }
  for (const auto& [id, view] : catalog.views) {
    if (SameName(view.schema, schema)) return view.name;
  }
  return "";
}

}  // namespace

void DefinitionRunner::ChangeSchema(const PrincipalStatement& statement) {
  Link().BeginWrite();
  std::vector<SchemaDef> schemas = Link().Definitions().schemas;
  const auto found = Named(schemas, statement.name);
  if (statement.action == Action::Create) {
    if (found != schemas.end()) Raise(2714, statement.name);
    const std::string owner = statement.owner.empty() ? Link().User().name : statement.owner;
    schemas.push_back({schemas.back().id + 1, statement.name, owner});
  } else if (statement.action == Action::Drop) {
    if (found == schemas.end() && statement.if_exists) return;
    if (found == schemas.end()) Raise(15151, "drop", "schema", statement.name);
    if (IsOwn(schemas, found)) Raise(15150, "drop", "schema", statement.name);
    const std::string object = FirstObjectIn(Link().Definitions(), statement.name);
    if (!object.empty()) Raise(3729, statement.name, object);
    schemas.erase(found);
  }
  Link().SetSchemas(std::move(schemas));
}

void DefinitionRunner::ChangeLogin(const PrincipalStatement& statement) {
  switch (statement.action) {
    case Action::Create:
      if (!statement.password) Raise(102, statement.name);
      if (SameName(statement.name, session_.Login()) ||
          !session_.Folder().AddLogin(statement.name, *statement.password)) {
        Raise(15025, statement.name);
      }
      return;
    case Action::Alter:
      if (!session_.Folder().HasLogin(statement.name))
        Raise(15151, "alter", "login", statement.name);
      if (statement.password) session_.Folder().SetPassword(statement.name, *statement.password);
      return;
    case Action::Drop:
      if (!session_.Folder().DropLogin(statement.name) && !statement.if_exists)
        Raise(15151, "drop", "login", statement.name);
  }
}

void DefinitionRunner::ChangeUser(const PrincipalStatement& statement) {
  Link().BeginWrite();
  std::vector<UserDef> users = Link().Definitions().users;
  const auto found = Named(users, statement.name);
  if (statement.action == Action::Create) {
    if (found != users.end()) Raise(15023, statement.name);
    UserDef user{users.back().id + 1, statement.name, statement.login.value_or(statement.name),
                 statement.default_schema.value_or(kDefaultSchema)};
    const bool known = user.login.empty() || SameName(user.login, session_.Login()) ||
                       session_.Folder().HasLogin(user.login);
    if (!known) Raise(15007, user.login);
    users.push_back(std::move(user));
  } else {
    const char* action = statement.action == Action::Alter ? "alter" : "drop";
    if (found == users.end() && statement.if_exists) return;
    if (found == users.end()) Raise(15151, action, "user", statement.name);
    if (IsOwn(users, found)) Raise(15150, action, "user", statement.name);
    if (statement.action == Action::Drop) {
      users.erase(found);
    } else {
      if (statement.login) found->login = *statement.login;
      if (statement.default_schema) found->default_schema = *statement.default_schema;
    }
  }
  Link().SetUsers(std::move(users));
}

Flow DefinitionRunner::Run(const PrincipalStatement& statement) {
  switch (statement.kind) {
    case PrincipalStatement::Kind::Schema:
      ChangeSchema(statement);
      break;
    case PrincipalStatement::Kind::Login:
      ChangeLogin(statement);
      break;
    case PrincipalStatement::Kind::User:
      ChangeUser(statement);
      break;
  }
  return Done();
}

}  // namespace sandbox
