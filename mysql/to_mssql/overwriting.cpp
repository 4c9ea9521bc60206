#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

/// A foreign key of the destination.
struct Reference {
  std::string name;
  std::string table;
  std::string referenced;
};

std::vector<Reference> ReadReferences(ado::Connection& destination) {
  std::vector<Reference> references;
  ado::Recordset rows = destination.Execute(
      "select name, object_name(parent_object_id), object_name(referenced_object_id) from "
      "sys.foreign_keys order by name");
  for (; !rows.AtEnd(); rows.MoveNext()) {
    references.push_back({rows.Field(0).Text(), rows.Field(1).Text(), rows.Field(2).Text()});
  }
  // A table may always refer to itself.
  std::erase_if(references, [](const Reference& r) { return r.table == r.referenced; });
  return references;
}

/// The tables that no key keeps from being dropped once the keys among them are gone, in lower case
/// like `tables`: those that only tables of this kind refer to.
std::set<std::string> Droppable(std::set<std::string> tables,
                                const std::vector<Reference>& references) {
  const auto is_kept = [&](const std::string& table) {
    return std::ranges::any_of(references, [&](const Reference& reference) {
      return text::ToLower(reference.referenced) == table &&
             !tables.contains(text::ToLower(reference.table));
    });
  };
  while (std::erase_if(tables, is_kept) > 0) {
  }
  return tables;
}

}  // namespace

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
  for (const TableDefinition* table : tables) names.insert(text::ToLower(table->dest_name));
  try {
    const std::vector<Reference> references = ReadReferences(Destination());
    names = Droppable(std::move(names), references);
    for (const Reference& reference : references) {
      if (!names.contains(text::ToLower(reference.table))) continue;
      if (!names.contains(text::ToLower(reference.referenced))) continue;
      Destination().Execute(fmt::format("alter table {} drop constraint {}",
                                        MsSqlName(reference.table), MsSqlName(reference.name)));
    }
  } catch (const RunTimeError&) {
    // The tables that cannot be dropped then say so.
  }
}

}  // namespace dorvane::to_mssql
