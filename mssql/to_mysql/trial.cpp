#include <fmt/format.h>

#include "endpoint/names.h"
#include "mssql/to_mysql/conversion.h"

namespace dorvane::to_mysql {

std::vector<std::string> MsSqlToMySql::CopyOfExisting(const ado::TableName& dest_name,
                                                      const std::string& copy) {
  return {fmt::format("create temporary table {} like {}", copy, MySqlTable(dest_name))};
}

}  // namespace dorvane::to_mysql
