#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/ado/table_name.h"

namespace dorvane {

/// What a login may have to be allowed on a table; with Refer, to have another table refer to it.
/// MakeSchema is the right to make what tables stand in, which has a bare name.
enum class TableRight { Create, Alter, Index, Drop, Insert, Refer, MakeSchema };

/// A statement of a conversion that makes, changes or drops a table, or makes what tables stand in.
struct DefinitionStatement {
  TableRight right;  // that it needs
  ado::TableName table;
  std::size_t table_begin;  // where the table's quoted name stands in the statement
  std::size_t table_end;
};

/// None for any other statement.
std::optional<DefinitionStatement> ReadDefinition(std::string_view sql);

}  // namespace dorvane
