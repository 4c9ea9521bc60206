#pragma once

#include <sql.h>

#include <optional>
#include <string>

#include "platform/ado/catalog_types.h"
#include "platform/ado/odbc/server_types.h"

namespace dorvane::ado::odbc {

/// A column as a catalog tells of it.
struct ColumnDescription {
  std::string name;
  std::string type_name;
  SQLSMALLINT type_code = 0;  // counts where the name is unknown
  DeclaredSize size;
  bool is_nullable = false;
  std::optional<std::string> default_expression;  // as the server writes it
};

Column DescribeColumn(const ColumnDescription& description);

}  // namespace dorvane::ado::odbc
