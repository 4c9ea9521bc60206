#include <algorithm>

#include "mysql/to_mssql/columns.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/rehearsed_server.h"

namespace dorvane::to_mssql {

std::unique_ptr<IRehearsedServer> MySqlToMsSql::ServerOver(ado::Connection& connection) const {
  return std::make_unique<RehearsedMsSql>(connection);
}

/// By a key that is longer in them than an index takes.
bool MySqlToMsSql::MayRefuseRows(const TableDefinition& table,
                                 const std::vector<ado::FieldInfo>& /*fields*/) {
  const auto may_be_long = [&](const ado::Index& index) {
    std::int64_t bytes = 0;
    for (const std::string& name : index.columns) {
      const ColumnDefinition* column = table.Find(name);
      if (column != nullptr) bytes += KeyBytes(column->type).value_or(0);
    }
    return bytes > kMostKeyBytes;
  };
  return std::ranges::any_of(SourceCatalog().TableByName(table.name.Text()).Indexes(), may_be_long);
}

}  // namespace dorvane::to_mssql
