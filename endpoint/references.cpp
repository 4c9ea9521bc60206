#include "endpoint/references.h"

#include <algorithm>
#include <utility>

#include "platform/text/ascii.h"

namespace dorvane {

namespace {

std::vector<ColumnPlace> DirectlyReferenced(ado::Catalog& catalog, const ColumnPlace& place) {
  std::vector<ColumnPlace> referenced;
  try {
    for (const ado::Key& key : catalog.TableByName(place.table.Text()).Keys()) {
      if (key.type != ado::KeyType::Foreign) continue;
      for (const ado::KeyColumn& column : key.columns) {
        if (column.name != place.column) continue;
        referenced.push_back({catalog.Listed(key.related_table), column.related_column});
      }
    }
  } catch (const RunTimeError&) {
    return {};
  }
  return referenced;
}

}  // namespace

std::vector<Reference> ReferencesToDrop(std::vector<Reference> references,
                                        const std::set<ado::TableName>& tables, bool folds) {
  const auto folded = [folds](const ado::TableName& table) {
    if (!folds) return table;
    return ado::TableName(text::ToLower(table.schema), text::ToLower(table.name));
  };
  std::set<ado::TableName> droppable;
  for (const ado::TableName& table : tables) droppable.insert(folded(table));
  const auto is_listed = [&](const ado::TableName& table) {
    return droppable.contains(folded(table));
  };
  // A table may always refer to itself.
  std::erase_if(references, [&](const Reference& reference) {
    return folded(reference.table) == folded(reference.referenced);
  });
  const auto is_kept = [&](const ado::TableName& table) {
    return std::ranges::any_of(references, [&](const Reference& reference) {
      return folded(reference.referenced) == table && !is_listed(reference.table);
    });
  };
  while (std::erase_if(droppable, is_kept) > 0) {
  }
  std::erase_if(references, [&](const Reference& reference) {
    return !is_listed(reference.table) || !is_listed(reference.referenced);
  });
  return references;
}

std::vector<ColumnPlace> WithReferencedColumns(ado::Catalog& catalog, ColumnPlace column) {
  std::vector<ColumnPlace> places{std::move(column)};
  for (std::size_t at = 0; at < places.size(); ++at) {
    for (ColumnPlace& next : DirectlyReferenced(catalog, places[at])) {
      const auto is_next = [&](const ColumnPlace& place) {
        return place.table == next.table && place.column == next.column;
      };
      if (std::ranges::none_of(places, is_next)) places.push_back(std::move(next));
    }
  }
  return places;
}

}  // namespace dorvane
