#include <fmt/format.h>

#include "endpoint/literal_text.h"
#include "mssql/mssql_database.h"

namespace dorvane {

// Nothing to do ahead of the tables: each one is dropped right before it is created.
void MsSqlDatabase::PrepareDestination(const NameList&) {}

void MsSqlDatabase::ConvertTable(const std::string& name) {
  std::string dest_name = DestName(name);
  try {
    ado::Table& tab_src = SourceCatalog().TableByName(name);
    dest_name = DestName(tab_src.Name());
    if (IsOverwriting()) ExecuteOn(Destination(), "Drop Table If Exists `" + dest_name + "`");
    const std::string identity_column = FindIdentityColumn(name);
    if (CreateTable(CreateTableStatement(tab_src, identity_column))) {
      AddPrimaryKeyConstraint(tab_src, identity_column);
    }
    if (CopyTableContent() && !CopyTableContent(tab_src)) return;
    Events().TableConversionSuccessed(name);
  } catch (const RunTimeError& error) {
    ReportTableFailure(name, dest_name, error);
  }
}

std::string MsSqlDatabase::FindIdentityColumn(const std::string& table_name) {
  constexpr std::string_view kNoIdentity = "No identity column defined.";
  try {
    ado::Recordset help = Source().Execute("sp_help [" + table_name + "]");
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
                  SqlText("[" + table_name + "]")));
  return identity.AtEnd() ? std::string() : identity.Field(0).Text();
}

std::string MsSqlDatabase::CreateTableStatement(ado::Table& tab_src,
                                                const std::string& identity_column) {
  const std::vector<ado::Column>& columns = tab_src.Columns();
  Facts().assign(columns.size() + 1, ColumnFacts());
  std::string statement = "Create Table `" + DestName(tab_src.Name()) + "`(";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) statement += ',';
    statement += "`" + DestName(columns[i].name) + "` ";
    statement += GetColumnType(columns[i], identity_column, i);
    Host().Yield();
  }
  return statement + ")";
}

bool MsSqlDatabase::CreateTable(const std::string& create_statement) {
  try {
    ExecuteOn(Destination(), create_statement);
    return true;
  } catch (const DestinationFailure& failure) {
    if (IsMerging() && failure.Number() == ado::hresult::kErrorsInCommand) return false;
    throw;
  }
}

void MsSqlDatabase::RelateTable(const std::string& name) {
  Events().TableRelationsConversionStarted(name);
  try {
    AddRelationships(SourceCatalog().TableByName(name));
  } catch (const RunTimeError& error) {
    ReportTableFailure(name, DestName(name), error);
  }
}

void MsSqlDatabase::ReportTableFailure(const std::string& name, const std::string& dest_name,
                                       const RunTimeError& error) {
  const auto* failure = dynamic_cast<const DestinationFailure*>(&error);
  if (failure == nullptr || failure->Entries().empty()) {
    Host().UnclassifiedFailure(
        fmt::format("Failed to convert table {} {}: {}", name, error.Number(), error.Description()),
        message_style::kError, "Table Conversion");
    return;
  }
  const FailureWords words = failure->Words();
  if (words.number == ado::hresult::kTimeout) {
    RaiseError(fmt::format("Can not drop table {} - Error no. {} - {}", dest_name, words.number,
                           words.description),
               "MySQL");
  } else {
    RaiseError(fmt::format("Error no. {} - {}", words.number, words.description),
               "Unexpected error");
  }
  Events().TableConversionFailed(name);
}

}  // namespace dorvane
