#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "endpoint/database.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

// What only the rows of a MySQL table can tell. Names are unquoted; all throw RunTimeError.

bool HasNegatives(ado::Connection& source, const ado::TableName& table, const std::string& column);

/// Whether a number of the column has more than `digits` digits in front of its point.
bool ExceedsDigits(ado::Connection& source, const ado::TableName& table, const std::string& column,
                   int digits);

/// Whether rows that are equal in the key's columns have a NULL among them, which is no duplicate
/// to MySQL and one to SQL Server.
bool RepeatsNulls(ado::Connection& source, const ado::TableName& table, const NameList& columns);

/// The values of a select list's expressions over all rows, 0 for NULL.
std::vector<std::int64_t> NumbersOf(ado::Connection& source, const ado::TableName& table,
                                    const std::vector<std::string>& expressions);

}  // namespace dorvane::to_mssql
