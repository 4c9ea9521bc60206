#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/types.h"

namespace dorvane::to_mssql {

/// Gives a row when `table` has one that is equal to this one in the given columns, to the byte
/// whatever their collation. `columns` are the destination's names, unquoted, in the order of
/// `fields` and `literals`.
std::string RowQuestion(std::string_view table, const std::vector<std::string>& columns,
                        const std::vector<ado::FieldInfo>& fields,
                        const std::vector<std::size_t>& positions,
                        const std::vector<std::string_view>& literals);

}  // namespace dorvane::to_mssql
