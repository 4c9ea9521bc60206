#include "platform/ado/mysql/client.h"

#include "platform/ado/mysql/errors.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::mysql {

unsigned long Capabilities(MYSQL* client) {
  unsigned long capabilities = 0;
  mariadb_get_infov(client, MARIADB_CONNECTION_SERVER_CAPABILITIES, &capabilities);
  return capabilities;
}

TextRows Query(MYSQL* client, std::string_view sql) {
  if (mysql_real_query(client, sql.data(), sql.size()) != 0) ThrowError(client);
  const Result result(mysql_store_result(client));
  if (result == nullptr) {
    if (mysql_field_count(client) != 0) ThrowError(client);
    return {};
  }
  TextRows rows;
  const unsigned columns = mysql_num_fields(result.get());
  while (MYSQL_ROW row = mysql_fetch_row(result.get())) {
    const unsigned long* lengths = mysql_fetch_lengths(result.get());
    auto& values = rows.emplace_back(columns);
    for (unsigned i = 0; i < columns; ++i) {
      if (row[i] != nullptr) values[i].emplace(row[i], lengths[i]);
    }
  }
  return rows;
}

Statement Prepare(MYSQL* client, std::string_view sql) {
  Statement statement(mysql_stmt_init(client));
  if (statement == nullptr) ThrowError(client);
  if (mysql_stmt_prepare(statement.get(), sql.data(), sql.size()) != 0) {
    ThrowError(statement.get(), client);
  }
  return statement;
}

std::string Literal(MYSQL* client, std::string_view text) {
  std::string escaped(text.size() * 2 + 1, '\0');
  escaped.resize(mysql_real_escape_string(client, escaped.data(), text.data(), text.size()));
  return "'" + escaped + "'";
}

std::string QuotedName(std::string_view name) {
  return "`" + text::Doubled(name, '`') + "`";
}

}  // namespace dorvane::ado::mysql
