// Keys whose values MySQL's usual collations would take for one.

#include <fmt/format.h>

#include <algorithm>

#include "endpoint/names.h"
#include "endpoint/references.h"
#include "mssql/to_mysql/conversion.h"
#include "platform/ado/items.h"

namespace dorvane::to_mysql {

namespace {

/// A text whose collation tells letters from capitals.
bool TellsCase(const ado::Column& column) {
  const std::string& collation = column.kind.collation;
  return collation.find("_CS") != std::string::npos || collation.find("_BIN") != std::string::npos;
}

/// The columns of an index as they would be grouped without regard to case.
std::string FoldedColumns(const ado::Index& index, const std::vector<ado::Column>& columns) {
  std::string list;
  for (const std::string& name : index.columns) {
    const auto column = std::ranges::find(columns, name, &ado::Column::name);
    const bool tells_case = column != columns.end() && TellsCase(*column);
    list += (list.empty() ? "" : ", ") + MsSqlName(name) +
            (tells_case ? " collate Latin1_General_CI_AI" : "");
  }
  return list;
}

}  // namespace

void MsSqlToMySql::AskForFoldedKeys(ado::Table& tab_src, TableDefinition& table) {
  for (const ado::Column& column : tab_src.Columns()) {
    if (!TellsCase(column)) continue;
    const bool is_folded =
        std::ranges::any_of(WithReferencedColumns(SourceCatalog(), {table.name, column.name}),
                            [this](const ColumnPlace& place) { return IsFoldedInKey(place); });
    if (!is_folded) continue;
    ColumnDefinition* definition = table.Find(column.name);
    definition->attributes += " COLLATE utf8mb4_bin";
    definition->notes.push_back(fmt::format(
        "column {} has the collation utf8mb4_bin, since keys differ in case only", column.name));
  }
}

bool MsSqlToMySql::IsFoldedInKey(const ColumnPlace& place) {
  ado::Table& table = SourceCatalog().TableByName(place.table.Text());
  return std::ranges::any_of(table.Indexes(), [&](const ado::Index& index) {
    const bool is_key = index.unique || index.primary_key;
    if (!is_key || std::ranges::find(index.columns, place.column) == index.columns.end()) {
      return false;
    }
    return SourceHasRow(fmt::format("select top 1 1 from {} group by {} having count(*) > 1",
                                    SourceName(place.table),
                                    FoldedColumns(index, table.Columns())));
  });
}

}  // namespace dorvane::to_mysql
