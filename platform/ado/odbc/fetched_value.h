#pragma once

#include <string_view>

#include "platform/ado/odbc/server_types.h"
#include "platform/ado/row_block.h"
#include "platform/ado/value.h"

namespace dorvane::ado::odbc {

/// The value in a fetch buffer: an ODBC structure, a number, UTF-16 text or bytes, as `transfer`
/// asks for them. Text and bytes are put into `storage`. Throws ProviderError for a time that is
/// no time.
Value ToValue(Transfer transfer, std::string_view fetched, Arena& storage);

}  // namespace dorvane::ado::odbc
