#pragma once

#include <string>
#include <string_view>

namespace dorvane::ado::mysql {

/// The sql_mode of a session on a server whose own is `server_mode`: an identity value 0 stays 0,
/// a value that does not fit is refused, and strings and names mean what standard MySQL statements
/// mean by them. Everything else stays as the server has it.
std::string SessionSqlMode(std::string_view server_mode);

}  // namespace dorvane::ado::mysql
