#include <fmt/format.h>

#include <algorithm>

#include "endpoint/names.h"
#include "endpoint/row_identity.h"
#include "mssql/to_mysql/conversion.h"
#include "mssql/to_mysql/rehearsed_server.h"
#include "platform/ado/items.h"

namespace dorvane::to_mysql {

std::unique_ptr<IRehearsedServer> MsSqlToMySql::ServerOver(ado::Connection& connection) const {
  return std::make_unique<RehearsedMySql>(connection);
}

/// By a key whose texts its collation takes for one, and by characters that the database lacks.
bool MsSqlToMySql::MayRefuseRows(const TableDefinition& table,
                                 const std::vector<ado::FieldInfo>& fields) {
  const auto is_text = [](const ado::FieldInfo& field) { return IsFoldedType(field.type); };
  if (std::ranges::none_of(fields, is_text)) return false;
  const auto is_text_column = [&](const std::string& column) {
    const ado::FieldInfo* field = ado::FindItemOrNull(fields, column);
    return field != nullptr && is_text(*field);
  };
  const auto may_fold = [&](const ado::Index& index) {
    return (index.unique || index.primary_key) &&
           std::ranges::any_of(index.columns, is_text_column);
  };
  if (std::ranges::any_of(SourceCatalog().TableByName(table.name.Text()).Indexes(), may_fold)) {
    return true;
  }
  ado::Recordset set = Destination().Execute("select @@character_set_database");
  return !set.AtEnd() && set.Field(0).Text() != "utf8mb4";
}

}  // namespace dorvane::to_mysql
