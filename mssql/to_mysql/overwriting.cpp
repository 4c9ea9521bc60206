#include <fmt/format.h>

#include <set>

#include "endpoint/names.h"
#include "endpoint/references.h"
#include "mssql/to_mysql/conversion.h"

namespace dorvane::to_mysql {

namespace {

// Keys from and to other databases keep their tables: they are read for the one that they are in.
constexpr std::string_view kReferenceQuery =
    "select constraint_name, if(constraint_schema = database(), table_name, ''), "
    "referenced_table_name from information_schema.referential_constraints where "
    "unique_constraint_schema = database() order by table_name, constraint_name";

}  // namespace

std::vector<Reference> MsSqlToMySql::DestReferences() {
  std::vector<Reference> references;
  ado::Recordset rows =
      OnDestination(Destination(), [&] { return Destination().Execute(kReferenceQuery); });
  for (; !rows.AtEnd(); rows.MoveNext()) {
    references.push_back({rows.Field(0).Text(), rows.Field(1).Text(), rows.Field(2).Text()});
  }
  return references;
}

// A table cannot be dropped while a key of another one refers to it.
void MsSqlToMySql::PrepareOverwriting(const std::vector<const TableDefinition*>& tables) {
  const auto report = [this](const RunTimeError& error) {
    const ErrorSummary summary = SummaryOf(error);
    RaiseError(fmt::format("Error no. {} - {}", summary.number, summary.description),
               "Unexpected error");
  };
  std::set<std::string> names;
  for (const TableDefinition* table : tables) names.insert(table->dest_name);
  std::vector<Reference> references;
  try {
    references = ReferencesToDrop(DestReferences(), names, FoldsTableNames());
  } catch (const RunTimeError& error) {
    report(error);
  }
  for (const Reference& reference : references) {
    try {
      ExecuteOn(Destination(), fmt::format("ALTER TABLE {} DROP FOREIGN KEY {}",
                                           MySqlName(reference.table), MySqlName(reference.name)));
    } catch (const RunTimeError& error) {
      report(error);
    }
  }
}

}  // namespace dorvane::to_mysql
