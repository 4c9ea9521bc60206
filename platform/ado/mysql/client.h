#pragma once

#include <mariadb/mysql.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dorvane::ado::mysql {

/// Handles of the client library, closed with their owner.
struct HandleCloser {
  void operator()(MYSQL* client) const { mysql_close(client); }
  void operator()(MYSQL_STMT* statement) const { mysql_stmt_close(statement); }
  void operator()(MYSQL_RES* result) const { mysql_free_result(result); }
};
using Client = std::unique_ptr<MYSQL, HandleCloser>;
using Statement = std::unique_ptr<MYSQL_STMT, HandleCloser>;
using Result = std::unique_ptr<MYSQL_RES, HandleCloser>;

/// A result held whole: rows of texts, NULL as nothing. For the small questions to the catalog.
using TextRows = std::vector<std::vector<std::optional<std::string>>>;

/// What the server that this client last talked to says it can do: CLIENT_SSL and its kin.
unsigned long Capabilities(MYSQL* client);

/// Sends a statement as text and reads its result whole. Throws ProviderError.
TextRows Query(MYSQL* client, std::string_view sql);

/// Prepares a statement. Throws ProviderError.
Statement Prepare(MYSQL* client, std::string_view sql);

/// 'text' as a string literal for a statement of this connection.
std::string Literal(MYSQL* client, std::string_view text);
/// `name` between backquotes.
std::string QuotedName(std::string_view name);

}  // namespace dorvane::ado::mysql
