#include <fmt/format.h>
#include <fmt/ranges.h>

#include <set>

#include "endpoint/names.h"
#include "endpoint/references.h"
#include "mssql/to_mysql/conversion.h"
#include "mssql/to_mysql/literals.h"

namespace dorvane::to_mysql {

namespace {

// Keys from elsewhere keep their tables.
constexpr std::string_view kReferenceQuery =
    "select constraint_name, if(constraint_schema = database(), '', constraint_schema), "
    "table_name, if(unique_constraint_schema = database(), '', unique_constraint_schema), "
    "referenced_table_name from information_schema.referential_constraints where "
    "unique_constraint_schema in ({}) order by table_name, constraint_name";

}  // namespace

std::vector<Reference> MsSqlToMySql::DestReferences(const std::set<ado::TableName>& tables) {
  std::set<std::string> databases = {SchemaText({})};
  for (const ado::TableName& table : tables) databases.insert(SchemaText(table));
  const std::string query = fmt::format(fmt::runtime(kReferenceQuery), fmt::join(databases, ", "));
  std::vector<Reference> references;
  ado::Recordset rows = OnDestination(Destination(), [&] { return Destination().Execute(query); });
  const auto text = [&](std::size_t i) { return rows.Field(i).Text(); };
  for (; !rows.AtEnd(); rows.MoveNext()) {
    references.push_back({text(0), {text(1), text(2)}, {text(3), text(4)}});
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
  std::set<ado::TableName> names;
  for (const TableDefinition* table : tables) names.insert(table->dest_name);
  std::vector<Reference> references;
  try {
    references = ReferencesToDrop(DestReferences(names), names, FoldsTableNames());
  } catch (const RunTimeError& error) {
    report(error);
  }
  for (const Reference& reference : references) {
    try {
      ExecuteOn(Destination(), fmt::format("ALTER TABLE {} DROP FOREIGN KEY {}",
                                           MySqlTable(reference.table), MySqlName(reference.name)));
    } catch (const RunTimeError& error) {
      report(error);
    }
  }
}

}  // namespace dorvane::to_mysql
