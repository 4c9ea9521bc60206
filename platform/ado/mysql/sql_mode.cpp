#include "platform/ado/mysql/sql_mode.h"

#include <algorithm>
#include <array>

namespace dorvane::ado::mysql {

namespace {

constexpr std::array<std::string_view, 2> kAdded = {"NO_AUTO_VALUE_ON_ZERO", "STRICT_TRANS_TABLES"};

// What changes the meaning of strings, names or values; the last six are sets of modes that would
// bring ANSI_QUOTES back.
constexpr std::array<std::string_view, 10> kRemoved = {"NO_BACKSLASH_ESCAPES",
                                                       "ANSI_QUOTES",
                                                       "EMPTY_STRING_IS_NULL",
                                                       "PAD_CHAR_TO_FULL_LENGTH",
                                                       "ANSI",
                                                       "DB2",
                                                       "MAXDB",
                                                       "MSSQL",
                                                       "ORACLE",
                                                       "POSTGRESQL"};

}  // namespace

std::string SessionSqlMode(std::string_view server_mode) {
  std::string result;
  const auto add = [&](std::string_view mode) {
    if (!result.empty()) result += ',';
    result += mode;
  };
  while (!server_mode.empty()) {
    const std::string_view mode = server_mode.substr(0, server_mode.find(','));
    server_mode.remove_prefix(std::min(server_mode.size(), mode.size() + 1));
    const bool replaced = std::ranges::find(kAdded, mode) != kAdded.end();
    const bool removed = std::ranges::find(kRemoved, mode) != kRemoved.end();
    if (!mode.empty() && !replaced && !removed) add(mode);
  }
  std::ranges::for_each(kAdded, add);
  return result;
}

}  // namespace dorvane::ado::mysql
