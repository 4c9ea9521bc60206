#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/ado/catalog_types.h"
#include "platform/ado/odbc/logon.h"

namespace dorvane::ado::odbc {

// The catalog of the selected database, from ODBC's catalog functions. Names are exact. Where
// tables of several schemas share a name, dbo's is the one meant, else the first. All throw
// ProviderError.

std::vector<TableInfo> ReadTables(const std::shared_ptr<Logon>& logon);
std::vector<Column> ReadColumns(const std::shared_ptr<Logon>& logon, const std::string& table);
std::vector<Index> ReadIndexes(const std::shared_ptr<Logon>& logon, const std::string& table);
std::vector<Key> ReadKeys(const std::shared_ptr<Logon>& logon, const std::string& table);

}  // namespace dorvane::ado::odbc
