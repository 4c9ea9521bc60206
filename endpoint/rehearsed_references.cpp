#include "endpoint/rehearsed_references.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "endpoint/failure.h"
#include "endpoint/names.h"
#include "platform/text/ascii.h"

namespace dorvane {

RehearsedReferences::RehearsedReferences(ServerKind server, bool is_maria_db, bool folds,
                                         std::vector<Reference> there)
    : server_(server), is_maria_db_(is_maria_db), folds_(folds), there_(std::move(there)) {
  for (Reference& each : there_) {
    each.table = Folded(each.table);
    each.referenced = Folded(each.referenced);
  }
}

ado::TableName RehearsedReferences::Folded(const ado::TableName& table) const {
  if (!folds_) return table;
  return {text::ToLower(table.schema), text::ToLower(table.name)};
}

void RehearsedReferences::Try(std::string_view sql, const DefinitionStatement& definition) {
  const ado::TableName table = Folded(definition.table);
  if (definition.right == TableRight::Drop) return Drop(table);
  if (definition.right == TableRight::Create) return Make(table);
  if (definition.right != TableRight::Alter) return;
  const std::string_view change = sql.substr(definition.table_end);
  for (const std::string_view drop : {" drop foreign key ", " drop constraint "}) {
    if (!text::EqualsIgnoringCase(change.substr(0, drop.size()), drop)) continue;
    std::string_view rest = change.substr(drop.size());
    const std::string key = TakeTableName(rest).name;
    std::erase_if(there_,
                  [&](const Reference& each) { return each.table == table && each.name == key; });
  }
}

void RehearsedReferences::Drop(const ado::TableName& table) {
  const auto keeper = std::ranges::find_if(there_, [&](const Reference& each) {
    return each.referenced == table && each.table != table;
  });
  if (keeper == there_.end()) {
    std::erase_if(there_, [&](const Reference& each) { return each.table == table; });
    dropped_.insert(table);
    return;
  }
  kept_.insert(table);
  if (server_ == ServerKind::MsSql) {
    throw Refusal(
        server_, 3726,
        fmt::format("Could not drop object '{}' because it is referenced by a FOREIGN KEY "
                    "constraint.",
                    table.Text()));
  }
  if (is_maria_db_) {
    throw Refusal(server_, 1451,
                  "Cannot delete or update a parent row: a foreign key constraint fails");
  }
  throw Refusal(server_, 3730,
                fmt::format("Cannot drop table '{}' referenced by a foreign key constraint '{}' on "
                            "table '{}'.",
                            table.name, keeper->name, keeper->table.name),
                ado::hresult::kFail);
}

void RehearsedReferences::Make(const ado::TableName& table) const {
  if (!kept_.contains(table)) return;
  if (server_ == ServerKind::MySql) {
    throw Refusal(server_, 1050, fmt::format("Table '{}' already exists", table.name));
  }
  throw Refusal(server_, 2714,
                fmt::format("There is already an object named '{}' in the database.", table.name));
}

}  // namespace dorvane
