#include "platform/ado/mysql/session_settings.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/ado/errors.h"

namespace dorvane::ado::mysql {

namespace {

// What every user may set. A server may ignore the character set that was asked for at logon, and
// makes databases in its own; locks are waited for a day or a year unless told; and a session waits
// long for the other side of a copy, so its server must not give it up meanwhile.
constexpr std::string_view kSettings =
    "set names utf8mb4, session character_set_server = utf8mb4, session autocommit = 1, "
    "session sql_select_limit = 18446744073709551615, session sql_big_selects = 1, "
    "session lock_wait_timeout = 60, session wait_timeout = 86400, "
    "session net_read_timeout = 3600, session net_write_timeout = 3600, session sql_mode = ";

constexpr std::array<std::string_view, 2> kAddedModes = {"NO_AUTO_VALUE_ON_ZERO",
                                                         "STRICT_TRANS_TABLES"};

// What changes the meaning of strings, names or values; the last six are sets of modes that would
// bring ANSI_QUOTES back.
constexpr std::array<std::string_view, 10> kRemovedModes = {"NO_BACKSLASH_ESCAPES",
                                                            "ANSI_QUOTES",
                                                            "EMPTY_STRING_IS_NULL",
                                                            "PAD_CHAR_TO_FULL_LENGTH",
                                                            "ANSI",
                                                            "DB2",
                                                            "MAXDB",
                                                            "MSSQL",
                                                            "ORACLE",
                                                            "POSTGRESQL"};

/// Sets what a server may not know or this user may not set.
void TrySet(MYSQL* client, const std::string& assignment) {
  try {
    Query(client, "set session " + assignment);
  } catch (const ProviderError&) {
    // Then it stays as the server has it, and what comes of that is met where it matters.
  }
}

/// MySQL's switches that keep a table from being made as its source is.
void SwitchOffKeyRules(MYSQL* client) {
  const TextRows switched_on =
      Query(client,
            "show session variables where variable_name in ('sql_require_primary_key', "
            "'sql_generate_invisible_primary_key') and value = 'ON'");
  for (const auto& variable : switched_on) TrySet(client, variable.at(0).value_or("") + " = 0");
}

std::size_t ParseSize(const std::string& text) {
  std::size_t size = 0;
  std::from_chars(text.data(), text.data() + text.size(), size);
  return size;
}

}  // namespace

SessionLimits SetUpSession(MYSQL* client) {
  const TextRows variables =
      Query(client, "select @@sql_mode, @@max_allowed_packet, @@local_infile");
  const auto& values = variables.at(0);
  const std::string mode = SessionSqlMode(values.at(0).value_or(""));
  Query(client, std::string(kSettings) + Literal(client, mode));
  TrySet(client, "innodb_lock_wait_timeout = 60");
  if (!mariadb_connection(client)) SwitchOffKeyRules(client);
  return {.max_allowed_packet = ParseSize(values.at(1).value_or("")),
          .takes_local_files = values.at(2) == "1"};
}

std::string SessionSqlMode(std::string_view server_mode) {
  std::string result;
  const auto add = [&](std::string_view mode) {
    if (!result.empty()) result += ',';
    result += mode;
  };
  while (!server_mode.empty()) {
    const std::string_view mode = server_mode.substr(0, server_mode.find(','));
    server_mode.remove_prefix(std::min(server_mode.size(), mode.size() + 1));
    const bool replaced = std::ranges::find(kAddedModes, mode) != kAddedModes.end();
    const bool removed = std::ranges::find(kRemovedModes, mode) != kRemovedModes.end();
    if (!mode.empty() && !replaced && !removed) add(mode);
  }
  std::ranges::for_each(kAddedModes, add);
  return result;
}

}  // namespace dorvane::ado::mysql
