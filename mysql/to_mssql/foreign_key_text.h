#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace dorvane::to_mssql {

/// The pieces of one foreign key as a MySQL table definition writes them, names in backquotes.
struct ForeignKeyText {
  std::string name;         // `fk`
  std::string columns;      // `a`, `b`
  std::string referenced;   // `table` (`x`, `y`)
  std::string delete_rule;  // CASCADE, SET NULL, ...; RESTRICT where the clause is missing
  std::string update_rule;
};

/// The foreign keys of a SHOW CREATE TABLE text, in its order.
std::vector<ForeignKeyText> ReadForeignKeys(std::string_view definition);

/// The text with each backquoted name, doubled backquotes made one, replaced by what `change` makes
/// of it; the backquotes around it stay as they are.
std::string ChangeNames(std::string_view definition_part,
                        const std::function<std::string(std::string)>& change);

}  // namespace dorvane::to_mssql
