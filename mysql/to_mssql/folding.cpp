// Keys whose values SQL Server's usual collation would take for one.

#include <fmt/format.h>

#include <algorithm>

#include "endpoint/names.h"
#include "endpoint/references.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/questions.h"
#include "platform/ado/items.h"

namespace dorvane::to_mssql {

namespace {

/// A text whose collation tells letters from capitals.
bool TellsCase(const ado::Column& column) {
  const std::string& collation = column.kind.collation;
  return collation.ends_with("_bin") || collation.find("_cs") != std::string::npos;
}

/// The columns of an index as they would be grouped without regard to case.
std::string FoldedColumns(const ado::Index& index, const std::vector<ado::Column>& columns) {
  std::string list;
  for (const std::string& name : index.columns) {
    const auto column = std::ranges::find(columns, name, &ado::Column::name);
    const bool tells_case = column != columns.end() && TellsCase(*column);
    const std::string quoted = MySqlName(name);
    list += list.empty() ? "" : ", ";
    list += tells_case ? fmt::format("convert({} using utf8mb4) collate utf8mb4_general_ci", quoted)
                       : quoted;
  }
  return list;
}

}  // namespace

void MySqlToMsSql::AskForFoldedKeys(ado::Table& tab_src, TableDefinition& table) {
  if (std::ranges::none_of(tab_src.Columns(), TellsCase) || !WillBeCreated(table)) return;
  for (const ado::Column& column : tab_src.Columns()) {
    if (!TellsCase(column)) continue;
    const bool is_folded =
        std::ranges::any_of(WithReferencedColumns(SourceCatalog(), {table.name, column.name}),
                            [this](const ColumnPlace& place) { return IsFoldedInKey(place); });
    if (!is_folded) continue;
    ColumnDefinition* definition = table.Find(column.name);
    definition->type += " collate Latin1_General_100_BIN2";
    definition->notes.push_back(
        fmt::format("column {} has the collation Latin1_General_100_BIN2, since keys differ in "
                    "case only",
                    column.name));
  }
}

bool MySqlToMsSql::IsFoldedInKey(const ColumnPlace& place) {
  ado::Table& table = SourceCatalog().TableByName(place.table.Text());
  return std::ranges::any_of(table.Indexes(), [&](const ado::Index& index) {
    const bool is_key = index.unique || index.primary_key;
    if (!is_key || std::ranges::find(index.columns, place.column) == index.columns.end()) {
      return false;
    }
    return HasGroup(Source(), place.table, FoldedColumns(index, table.Columns()));
  });
}

}  // namespace dorvane::to_mssql
