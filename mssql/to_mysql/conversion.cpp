#include "mssql/to_mysql/conversion.h"

#include <fmt/format.h>

#include "endpoint/names.h"
#include "endpoint/literal_text.h"
#include "mssql/to_mysql/columns.h"

namespace dorvane {

// Nothing to do ahead of the tables: each one is dropped right before it is created.
void MsSqlToMySql::PrepareDestination(const NameList&) {}

void MsSqlToMySql::PrepareTable(const TableDefinition& table) {
  if (IsOverwriting()) {
    ExecuteOn(Destination(), "Drop Table If Exists " + MySqlName(table.dest_name));
  }
}

TableDefinition MsSqlToMySql::DefineTable(ado::Table& tab_src) {
  const std::string identity_column = FindIdentityColumn(tab_src.Name());
  TableDefinition table{tab_src.Name(), DestName(tab_src.Name()), {}};
  for (const ado::Column& column : tab_src.Columns()) {
    table.columns.push_back({GetColumnType(column, identity_column), column.name});
    Host().Yield();
  }
  return table;
}

std::string MsSqlToMySql::FindIdentityColumn(const std::string& table_name) {
  constexpr std::string_view kNoIdentity = "No identity column defined.";
  try {
    ado::Recordset help = Source().Execute("sp_help " + MsSqlName(table_name));
    if (help.NextRecordset() && help.NextRecordset()) {
      std::string name = help.Field(0).Text();
      return name == kNoIdentity ? std::string() : name;
    }
  } catch (const RunTimeError&) {
    // A server that lacks the procedure is asked in another way.
  }
  ado::Recordset identity = Source().Execute(
      fmt::format("select name from sys.columns where object_id = object_id('{}') and "
                  "is_identity = 1",
                  SqlText(MsSqlName(table_name))));
  return identity.AtEnd() ? std::string() : identity.Field(0).Text();
}

std::string MsSqlToMySql::CreateTableStatement(const TableDefinition& table) const {
  std::string statement = "Create Table " + MySqlName(table.dest_name) + "(";
  const char* separator = "";
  for (const TableDefinition::Column& column : table.columns) {
    statement += separator + MySqlName(DestName(column.name)) + " " + column.text;
    separator = ",";
  }
  return statement + ")";
}

std::string MsSqlToMySql::SourceName(std::string_view name) const {
  return MsSqlName(name);
}

void MsSqlToMySql::RelateTable(const std::string& name) {
  Events().TableRelationsConversionStarted(name);
  AddRelationships(SourceCatalog().TableByName(name));
}

void MsSqlToMySql::ReportTableFailure(const std::string& name, const RunTimeError& error) {
  const auto* failure = dynamic_cast<const DestinationFailure*>(&error);
  if (failure == nullptr || failure->Entries().empty()) {
    Host().UnclassifiedFailure(
        fmt::format("Failed to convert table {} {}: {}", name, error.Number(), error.Description()),
        message_style::kError, "Table Conversion");
    return;
  }
  const ErrorSummary summary = failure->Summary();
  if (summary.number == ado::hresult::kTimeout) {
    RaiseError(fmt::format("Can not drop table {} - Error no. {} - {}", DestName(name),
                           summary.number, summary.description),
               "MySQL");
  } else {
    RaiseError(fmt::format("Error no. {} - {}", summary.number, summary.description),
               "Unexpected error");
  }
  Events().TableConversionFailed(name);
}

}  // namespace dorvane
