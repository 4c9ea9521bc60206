#pragma once

#include <string>
#include <vector>

#include "platform/ado/catalog_types.h"

namespace dorvane::to_mysql {

/// The index as MySQL can have it: without its filter, and no longer unique where the rows outside
/// the filter may repeat. What is lost is noted.
ado::Index WithoutFilter(const ado::Index& index, std::vector<std::string>& notes);

}  // namespace dorvane::to_mysql
