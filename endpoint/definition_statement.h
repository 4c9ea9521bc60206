#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "platform/ado/table_name.h"

namespace dorvane {

/// What a login may have to be allowed on a table.
enum class TableRight { Create, Alter, Index, Drop, Insert };

/// The right that a statement of a conversion needs, and the table on which; none for any other
/// statement.
std::optional<std::pair<TableRight, ado::TableName>> NeededRight(std::string_view sql);

}  // namespace dorvane
