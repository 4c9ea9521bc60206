#pragma once

#include <string>
#include <string_view>

#include "platform/ado/table_name.h"

namespace dorvane {

/// A name as MySQL's statements quote it: `name`, with each backquote in it doubled.
std::string MySqlName(std::string_view name);

/// A name as SQL Server's statements quote it: [name], with each closing bracket in it doubled.
std::string MsSqlName(std::string_view name);

/// A table's name for either server's statements, with what it stands in unless it is bare:
/// `database`.`name`, [schema].[name].
std::string MySqlTable(const ado::TableName& table);
std::string MsSqlTable(const ado::TableName& table);

/// Takes what is quoted off the front, without its quotes; a closing quote in it is doubled.
std::string TakeQuoted(std::string_view& rest, char close);

/// Takes a table's name, as either server's statements quote it, off the front.
ado::TableName TakeTableName(std::string_view& text);

}  // namespace dorvane
