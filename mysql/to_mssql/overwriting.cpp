#include <fmt/format.h>

#include <set>

#include "endpoint/names.h"
#include "endpoint/references.h"
#include "mysql/to_mssql/conversion.h"

namespace dorvane::to_mssql {

std::vector<Reference> MySqlToMsSql::DestReferences() {
  std::vector<Reference> references;
  ado::Recordset rows = Destination().Execute(
      "select name, object_name(parent_object_id), object_name(referenced_object_id) from "
      "sys.foreign_keys order by name");
  for (; !rows.AtEnd(); rows.MoveNext()) {
    references.push_back({rows.Field(0).Text(), rows.Field(1).Text(), rows.Field(2).Text()});
  }
  return references;
}

void MySqlToMsSql::PrepareOverwriting(const std::vector<const TableDefinition*>& tables) {
  DropReferencesAmong(tables);
  // All tables are dropped before the first one is created.
  for (const TableDefinition* table : tables) {
    try {
      ExecuteOn(Destination(), "drop table  " + MsSqlName(table->dest_name));
    } catch (const DestinationFailure& failure) {
      if (failure.NativeError() != kNoSuchTable) kept_.insert(table->name);
      ReportTableFailure(table->name, failure);
    }
  }
}

void MySqlToMsSql::DropReferencesAmong(const std::vector<const TableDefinition*>& tables) {
  std::set<std::string> names;
  for (const TableDefinition* table : tables) names.insert(table->dest_name);
  try {
    for (const Reference& reference :
         ReferencesToDrop(DestReferences(), names, FoldsTableNames())) {
      Destination().Execute(fmt::format("alter table {} drop constraint {}",
                                        MsSqlName(reference.table), MsSqlName(reference.name)));
    }
  } catch (const RunTimeError&) {
    // The tables that cannot be dropped then say so.
  }
}

}  // namespace dorvane::to_mssql
