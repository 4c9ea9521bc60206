#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/catalog_types.h"

namespace dorvane::to_mysql {

/// The definition of a computed column as MySQL computes the same values; nothing where it would
/// not for certain. `columns` are the table's; `is_exact`: they are of the exact mapping.
std::optional<std::string> ExpressionText(
    const ado::Column& column, const std::vector<ado::Column>& columns, bool is_exact,
    const std::function<std::string(std::string_view name)>& dest_name);

}  // namespace dorvane::to_mysql
