#include "endpoint/rehearsed_references.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "endpoint/failure.h"
#include "endpoint/names.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

/// Takes a word and the blanks behind it off the front; false when it is not there.
bool Take(std::string_view& sql, std::string_view word) {
  if (!text::EqualsIgnoringCase(sql.substr(0, word.size()), word)) return false;
  sql.remove_prefix(word.size());
  sql.remove_prefix(std::min(sql.find_first_not_of(' '), sql.size()));
  return true;
}

}  // namespace

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

void RehearsedReferences::Try(std::string_view sql) {
  if (Take(sql, "drop table ")) {
    Take(sql, "if exists ");
    Drop(Folded(TakeTableName(sql)));
  } else if (Take(sql, "create table ")) {
    Make(Folded(TakeTableName(sql)));
  } else if (Take(sql, "alter table ")) {
    const ado::TableName table = Folded(TakeTableName(sql));
    if (!Take(sql, " drop foreign key ") && !Take(sql, " drop constraint ")) return;
    const std::string key = TakeTableName(sql).name;
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
