#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/ado/catalog.h"

namespace dorvane {

/// True for a text whose collation tells letters from capitals.
using TellsCase = bool (*)(const ado::Column& column);
/// Asks the rows whether values of a key would be one if case did not count.
using FoldsKey = std::function<bool(ado::Table& table, const ado::Index& key)>;

/// The columns of a source table that take part in a key, or refer to a column that does, whose
/// values a destination without regard to case would take for one.
std::vector<std::string> FoldedKeyColumns(ado::Catalog& catalog, ado::Table& tab_src,
                                          TellsCase tells_case, const FoldsKey& folds);

/// The columns of a key in line: `quoted` writes one, `folded` one that tells case.
std::string KeyColumnList(const ado::Index& key, const std::vector<ado::Column>& columns,
                          TellsCase tells_case, std::string (*quoted)(std::string_view name),
                          std::string (*folded)(std::string_view name));

}  // namespace dorvane
