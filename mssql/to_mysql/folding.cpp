// Keys whose values MySQL's usual collations would take for one.

#include <fmt/format.h>

#include "endpoint/folded_keys.h"
#include "endpoint/names.h"
#include "mssql/to_mysql/conversion.h"

namespace dorvane::to_mysql {

namespace {

bool TellsCase(const ado::Column& column) {
  const std::string& collation = column.kind.collation;
  return collation.find("_CS") != std::string::npos || collation.find("_BIN") != std::string::npos;
}

std::string Folded(std::string_view name) {
  return MsSqlName(name) + " collate Latin1_General_CI_AI";
}

}  // namespace

void MsSqlToMySql::AskForFoldedKeys(ado::Table& tab_src, TableDefinition& table) {
  const auto folds = [this](ado::Table& of, const ado::Index& key) {
    return SourceHasRow(
        fmt::format("select top 1 1 from {} group by {} having count(*) > 1", SourceName(of.Name()),
                    KeyColumnList(key, of.Columns(), TellsCase, MsSqlName, Folded)));
  };
  for (const std::string& name : FoldedKeyColumns(SourceCatalog(), tab_src, TellsCase, folds)) {
    ColumnDefinition* definition = table.Find(name);
    definition->attributes += " COLLATE utf8mb4_bin";
    definition->notes.push_back(fmt::format(
        "column {} has the collation utf8mb4_bin, since keys differ in case only", name));
  }
}

}  // namespace dorvane::to_mysql
