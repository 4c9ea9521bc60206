#include "endpoint/table_definition.h"

#include <algorithm>

#include "platform/ado/items.h"

namespace dorvane {

std::string ColumnDefinition::Text() const {
  if (!generation.empty()) return generation;
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

std::vector<ColumnFacts> FactsOf(const std::vector<ado::FieldInfo>& fields,
                                 const TableDefinition& table) {
  std::vector<ColumnFacts> facts;
  for (const ado::FieldInfo& field : fields) {
    const ColumnDefinition* column = table.Find(field.name);
    facts.push_back(column != nullptr ? column->facts : ColumnFacts());
  }
  return facts;
}

}  // namespace dorvane
