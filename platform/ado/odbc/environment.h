#pragma once

#include "platform/ado/odbc/handle.h"

namespace dorvane::ado::odbc {

/// A fresh ODBC 3 environment. The first call takes the variables by which a user's FreeTDS set-up
/// would override the connection string (TDSVER, TDSHOST, TDSPORT and their kin) out of this
/// process's environment. Throws ProviderError.
Environment NewEnvironment();

}  // namespace dorvane::ado::odbc
