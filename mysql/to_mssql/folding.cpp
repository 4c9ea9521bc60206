// Keys whose values SQL Server's usual collation would take for one.

#include <fmt/format.h>

#include <algorithm>

#include "endpoint/folded_keys.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/questions.h"

namespace dorvane::to_mssql {

namespace {

bool TellsCase(const ado::Column& column) {
  const std::string& collation = column.kind.collation;
  return collation.ends_with("_bin") || collation.find("_cs") != std::string::npos;
}

std::string Folded(std::string_view name) {
  return fmt::format("convert({} using utf8mb4) collate utf8mb4_general_ci", MySqlName(name));
}

}  // namespace

void MySqlToMsSql::AskForFoldedKeys(ado::Table& tab_src, TableDefinition& table) {
  if (std::ranges::none_of(tab_src.Columns(), TellsCase) || !WillBeCreated(table)) return;
  const auto folds = [this](ado::Table& of, const ado::Index& key) {
    return HasGroup(Source(), of.Name(),
                    KeyColumnList(key, of.Columns(), TellsCase, MySqlName, Folded));
  };
  for (const std::string& name : FoldedKeyColumns(SourceCatalog(), tab_src, TellsCase, folds)) {
    ColumnDefinition* definition = table.Find(name);
    definition->type += " collate Latin1_General_100_BIN2";
    definition->notes.push_back(
        fmt::format("column {} has the collation Latin1_General_100_BIN2, since keys differ in "
                    "case only",
                    name));
  }
}

}  // namespace dorvane::to_mssql
