#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/table_name.h"
#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane::to_mssql {

/// Gives a row when `table` has one that is equal to this one in the given columns, to the byte
/// whatever their collation. `columns` are the destination's names, unquoted, in the order of
/// `fields` and `row`.
std::string RowQuestion(const ado::TableName& table, const std::vector<std::string>& columns,
                        const std::vector<ado::FieldInfo>& fields,
                        const std::vector<std::size_t>& positions, std::span<const ado::Value> row);

}  // namespace dorvane::to_mssql
