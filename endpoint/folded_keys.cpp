#include "endpoint/folded_keys.h"

#include <algorithm>

#include "endpoint/references.h"

namespace dorvane {

namespace {

bool IsKeyWith(const ado::Index& index, const std::string& column) {
  return (index.unique || index.primary_key) &&
         std::ranges::find(index.columns, column) != index.columns.end();
}

bool IsFoldedInKey(ado::Catalog& catalog, const ColumnPlace& place, const FoldsKey& folds) {
  ado::Table& table = catalog.TableByName(place.table.Text());
  return std::ranges::any_of(table.Indexes(), [&](const ado::Index& index) {
    return IsKeyWith(index, place.column) && folds(table, index);
  });
}

}  // namespace

std::vector<std::string> FoldedKeyColumns(ado::Catalog& catalog, ado::Table& tab_src,
                                          TellsCase tells_case, const FoldsKey& folds) {
  std::vector<std::string> folded;
  for (const ado::Column& column : tab_src.Columns()) {
    if (!tells_case(column)) continue;
    const bool is_folded = std::ranges::any_of(
        WithReferencedColumns(catalog, {tab_src.Name(), column.name}),
        [&](const ColumnPlace& place) { return IsFoldedInKey(catalog, place, folds); });
    if (is_folded) folded.push_back(column.name);
  }
  return folded;
}

std::string KeyColumnList(const ado::Index& key, const std::vector<ado::Column>& columns,
                          TellsCase tells_case, std::string (*quoted)(std::string_view name),
                          std::string (*folded)(std::string_view name)) {
  std::string list;
  for (const std::string& name : key.columns) {
    const auto column = std::ranges::find(columns, name, &ado::Column::name);
    const bool is_folded = column != columns.end() && tells_case(*column);
    list += (list.empty() ? "" : ", ") + (is_folded ? folded(name) : quoted(name));
  }
  return list;
}

}  // namespace dorvane
