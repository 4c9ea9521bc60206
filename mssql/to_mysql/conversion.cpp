#include "mssql/to_mysql/conversion.h"

#include <fmt/format.h>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mssql/to_mysql/columns.h"

namespace dorvane {

namespace {

constexpr std::int32_t kTableExists = 1050;

}  // namespace

// Each table is dropped right before it is created.
void MsSqlToMySql::PrepareOverwriting(const std::vector<const TableDefinition*>&) {}

void MsSqlToMySql::PrepareTable(const TableDefinition& table) {
  ExecuteOn(Destination(), "Drop Table If Exists " + MySqlName(table.dest_name));
}

TableDefinition MsSqlToMySql::DefineTable(ado::Table& tab_src) {
  const std::string identity_column = FindIdentityColumn(tab_src.Name());
  TableDefinition table{
      .name = tab_src.Name(), .dest_name = DestName(tab_src.Name()), .columns = {}};
  for (const ado::Column& column : tab_src.Columns()) {
    table.columns.push_back(GetColumnType(column, identity_column));
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
  for (const ColumnDefinition& column : table.columns) {
    statement += separator + MySqlName(DestName(column.name)) + " " + column.Text();
    separator = ",";
  }
  return statement + table.constraints + ")";
}

std::int32_t MsSqlToMySql::TableExistsError() const {
  return kTableExists;
}

bool MsSqlToMySql::CureTable(TableDefinition&, std::int32_t) {
  return false;
}

void MsSqlToMySql::CheckExistingTable(ado::Table&, const TableDefinition&) {}

std::string MsSqlToMySql::SelectList(const TableDefinition&) const {
  return "*";
}

bool MsSqlToMySql::FoldsTableNames() {
  ado::Recordset folding = Destination().Execute("select @@lower_case_table_names");
  return folding.Field(0).Text() != "0";
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
