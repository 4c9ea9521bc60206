#include "endpoint/table_definition.h"

#include <algorithm>

#include "platform/ado/items.h"

namespace dorvane {

std::string ColumnDefinition::Text() const {
  std::string text = type + (facts.nullable ? " NULL" : " NOT NULL") + attributes;
  if (!default_clause.empty()) text += " Default " + default_clause;
  if (!check.empty()) text += " Check (" + check + ")";
  return text;
}

const ColumnDefinition* TableDefinition::Find(std::string_view column) const {
  return ado::FindItemOrNull(columns, column);
}

ColumnDefinition* TableDefinition::Find(std::string_view column) {
  const auto found = std::ranges::find(columns, column, &ColumnDefinition::name);
  return found != columns.end() ? &*found : nullptr;
}

const ColumnDefinition* TableDefinition::Identity() const {
  const auto found = std::ranges::find(columns, true, &ColumnDefinition::is_identity);
  return found != columns.end() ? &*found : nullptr;
}

}  // namespace dorvane
