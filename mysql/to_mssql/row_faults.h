#pragma once

#include <cstdint>

#include "platform/ado/errors.h"

namespace dorvane::to_mssql {

/// What a failed INSERT says of its row. With None the failure is the table's or the server's.
enum class RowFault { None, Refused, Duplicate };

/// By the server's own number.
RowFault FaultOf(std::int32_t native_error);

/// Whether the row may be taken once others are there: those that a foreign key asks for. What a
/// check refuses stays refused.
bool MayComeRight(const ado::Error& error);

}  // namespace dorvane::to_mssql
