#pragma once

#include <optional>
#include <string>

#include "platform/ado/catalog_types.h"

namespace dorvane::to_mssql {

/// The literal or expression of a column's default on SQL Server, empty when it gets none.
/// `described` is the default as SHOW COLUMNS writes it. Nothing when there is a default that
/// cannot be converted.
std::optional<std::string> DefaultLiteral(const ado::Column& col, const std::string& described);

/// The same for a column of the exact mapping.
std::optional<std::string> ExactDefaultLiteral(const ado::Column& col,
                                               const std::string& described);

}  // namespace dorvane::to_mssql
