#pragma once

#include <sql.h>

#include <span>
#include <string_view>

#include "platform/ado/odbc/handle.h"
#include "platform/ado/value.h"

namespace dorvane::ado::odbc {

/// Runs a statement with one text or bytes for each "?" of it, which go to the driver in pieces.
/// Returns what the execution returned, or the call before it that failed.
SQLRETURN ExecuteInPieces(const Statement& statement, std::string_view sql,
                          std::span<const Value> parameters);

}  // namespace dorvane::ado::odbc
