#include <fmt/format.h>

#include <set>

#include "endpoint/names.h"
#include "endpoint/references.h"
#include "mysql/to_mssql/conversion.h"

namespace dorvane::to_mssql {

std::vector<Reference> MySqlToMsSql::DestReferences(const std::set<ado::TableName>& /*tables*/) {
  std::vector<Reference> references;
  ado::Recordset rows = Destination().Execute(
      "select f.name, case when s.name = isnull(schema_name(), 'dbo') then '' else s.name end, "
      "object_name(f.parent_object_id), case when r.name = isnull(schema_name(), 'dbo') then '' "
      "else r.name end, o.name from sys.foreign_keys f join sys.schemas s on s.schema_id = "
      "f.schema_id join sys.objects o on o.object_id = f.referenced_object_id join sys.schemas r "
      "on r.schema_id = o.schema_id order by f.name");
  const auto text = [&](std::size_t i) { return rows.Field(i).Text(); };
  for (; !rows.AtEnd(); rows.MoveNext()) {
    references.push_back({text(0), {text(1), text(2)}, {text(3), text(4)}});
  }
  return references;
}

// A bare name of a table that is not there would mean a table of dbo.
ado::TableName MySqlToMsSql::NameToDrop(const ado::TableName& table) const {
  if (!table.IsBare() || default_schema_ == "dbo") return table;
  return {default_schema_, table.name};
}

void MySqlToMsSql::PrepareOverwriting(const std::vector<const TableDefinition*>& tables) {
  DropReferencesAmong(tables);
  // All tables are dropped before the first one is created.
  for (const TableDefinition* table : tables) {
    try {
      ExecuteOn(Destination(), "drop table  " + MsSqlTable(NameToDrop(table->dest_name)));
    } catch (const DestinationFailure& failure) {
      if (failure.NativeError() != kNoSuchTable) kept_.insert(table->name.Text());
      ReportTableFailure(table->name.Text(), failure);
    }
  }
}

void MySqlToMsSql::DropReferencesAmong(const std::vector<const TableDefinition*>& tables) {
  std::set<ado::TableName> names;
  for (const TableDefinition* table : tables) names.insert(table->dest_name);
  try {
    for (const Reference& reference :
         ReferencesToDrop(DestReferences(names), names, FoldsTableNames())) {
      Destination().Execute(fmt::format("alter table {} drop constraint {}",
                                        MsSqlTable(reference.table), MsSqlName(reference.name)));
    }
  } catch (const RunTimeError&) {
    // The tables that cannot be dropped then say so.
  }
}

}  // namespace dorvane::to_mssql
