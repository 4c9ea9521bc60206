#pragma once

#include "sandbox/text/text_order.h"

struct sqlite3;

namespace sandbox {

/// The names under which the server's text orders are known to SQLite.
inline constexpr const char* kTextCollation = "TSQL";
const char* StoredCollation(TextOrder order);

/// Makes them known to it.
void RegisterTextOrder(sqlite3* connection);

}  // namespace sandbox
