#pragma once

#include <string>
#include <vector>

#include "platform/ado/catalog_types.h"
#include "platform/ado/mysql/logon.h"

namespace dorvane::ado::mysql {

// The catalog of one database, read from its information schema. Names are exact; a table that is
// not there has nothing. All throw ProviderError.

// An empty `database` is the one that the session has selected.

std::vector<TableInfo> ReadTables(const ServerLink& link, const std::string& database);
std::vector<Column> ReadColumns(const ServerLink& link, const std::string& database,
                                const std::string& table);
std::vector<Index> ReadIndexes(const ServerLink& link, const std::string& database,
                               const std::string& table);
std::vector<Key> ReadKeys(const ServerLink& link, const std::string& database,
                          const std::string& table);

/// The value of a default as the catalog gives it: texts unquoted, bits as a decimal number, the
/// current time as "getdate()"; nothing for an expression. `quoted` says that the catalog writes
/// defaults as expressions.
std::optional<std::string> DefaultValue(const std::string& text, const std::string& type,
                                        const std::string& extra, bool quoted);

}  // namespace dorvane::ado::mysql
