#pragma once

#include "platform/ado/errors.h"

namespace dorvane::to_mysql {

/// What a refused INSERT says of its row.
enum class RowFault {
  None,        // the row is not at fault: the table, the server or the connection is
  Refused,     // the destination takes no such row
  Duplicate,   // its key is there already
  Characters,  // it holds a text with characters that its column cannot store, or a bad number
};

RowFault FaultOf(const ado::Error& error);

}  // namespace dorvane::to_mysql
