#include "mssql/to_mysql/conversion.h"

#include <fmt/format.h>

#include <utility>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mssql/to_mysql/columns.h"
#include "mssql/to_mysql/cures.h"
#include "mssql/to_mysql/literals.h"

namespace dorvane::to_mysql {

namespace {

constexpr std::int32_t kTableExists = 1050;

/// The first row's first value is 1; a question that fails is answered with no.
bool AnswersOne(ado::Connection& connection, const std::string& sql) {
  try {
    ado::Recordset answer = connection.Execute(sql);
    return !answer.AtEnd() && answer.Field(0).Text() == "1";
  } catch (const RunTimeError&) {
    return false;
  }
}

}  // namespace

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
  if (IsOverwriting() || !IsOnDestination(table.dest_name)) AskTheData(tab_src, table);
  return table;
}

bool MsSqlToMySql::IsOnDestination(const std::string& dest_name) {
  return AnswersOne(Destination(),
                    fmt::format("select count(*) from information_schema.tables where "
                                "table_schema = database() and table_name = '{}'",
                                Quote(dest_name)));
}

std::string MsSqlToMySql::FindIdentityColumn(const std::string& table_name) {
  constexpr std::string_view kNoIdentity = "No identity column defined.";
  try {
    ado::Recordset help = Source().Execute("sp_help " + MsSqlName(table_name));
    if (help.NextRecordset() && help.NextRecordset()) {
      std::string name = help.Field(0).Text();
      // An end that is read needs no further trip to break off.
      while (help.NextRecordset()) {
      }
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

bool MsSqlToMySql::CureTable(TableDefinition& table, std::int32_t native_error) {
  const ado::Error* entry = PrimaryError(Destination().Errors(), 0);
  const std::string words = entry != nullptr ? entry->description : std::string();
  const std::vector<ado::Index>& indexes = SourceCatalog().TableByName(table.name).Indexes();
  return CureDefinition(table, {native_error, words, indexes, PrimaryKeyClause(indexes)});
}

std::string MsSqlToMySql::SelectList(const TableDefinition&) const {
  return "*";
}

bool MsSqlToMySql::FoldsTableNames() {
  ado::Recordset folding = Destination().Execute("select @@lower_case_table_names");
  return !folding.AtEnd() && folding.Field(0).Text() != "0";
}

std::string MsSqlToMySql::SourceName(std::string_view name) const {
  return MsSqlName(name);
}

void MsSqlToMySql::RelateTable(const std::string& name) {
  Events().TableRelationsConversionStarted(name);
  AddRelationships(SourceCatalog().TableByName(name));
  if (unchecked_tables_.contains(DestName(name))) ReportOrphans(DestName(name));
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

std::unique_ptr<Conversion> MsSqlToMySql::Fork(Context context) const {
  return std::make_unique<MsSqlToMySql>(std::move(context));
}

void MsSqlToMySql::Join(Conversion& fork) {
  unchecked_tables_.merge(static_cast<MsSqlToMySql&>(fork).unchecked_tables_);
}

}  // namespace dorvane::to_mysql
