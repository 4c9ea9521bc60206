#pragma once

#include <mariadb/mysql.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ado/errors.h"

namespace dorvane::ado::mysql {

/// Source of the provider's errors.
inline constexpr const char* kSource = "MySQL";

/// How the provider classifies a failure of a statement, from the server's or the client library's
/// number and the SQLSTATE that came with it.
std::int32_t HresultOf(unsigned native_error, std::string_view sql_state);

/// True for the client library's numbers, as opposed to a server's.
inline bool IsClientError(std::int32_t native_error) {
  return native_error >= 2000 && native_error < 3000;
}

/// A failure with one entry behind it.
ProviderError MakeError(unsigned native_error, std::string sql_state,
                        const std::string& description);

/// What a server sent that no server means, for which the client library has no check: `what` it
/// was. It has the library's number 2027.
ProviderError MalformedPacket(const std::string& what);

/// The failure that the client library holds.
[[noreturn]] void ThrowError(MYSQL* client);
/// The statement's failure; the connection's where the statement has none.
[[noreturn]] void ThrowError(MYSQL_STMT* statement, MYSQL* client);

}  // namespace dorvane::ado::mysql
