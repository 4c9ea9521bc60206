#include <fmt/format.h>

#include "mysql/mysql_database.h"

namespace dorvane {

namespace {

constexpr std::string_view kDestinationTitle = "MS SQL Server";
constexpr std::string_view kSourceTitle = "MySQL Server";

// SQL Server's own numbers.
constexpr std::int32_t kNoSuchTable = 3701;
constexpr std::int32_t kTableIsReferenced = 3726;
constexpr std::int32_t kObjectExists = 2714;

}  // namespace

// All tables are dropped before the first one is created.
void MySqlDatabase::PrepareDestination(const NameList& src_tables) {
  if (!IsOverwriting()) return;
  for (const std::string& name : src_tables) {
    try {
      ExecuteOn(Destination(), "drop table  [" + DestName(name) + "]");
    } catch (const RunTimeError& error) {
      ReportTableFailure(name, error);
    }
  }
}

void MySqlDatabase::ConvertTable(const std::string& name) {
  bool has_identity_column = false;
  try {
    ado::Table& tab_src = SourceCatalog().TableByName(name);
    const bool is_new = CreateTable(CreateTableStatement(tab_src, has_identity_column));
    if (is_new) AddPrimaryKeyConstraint(tab_src);
    if (CopyTableContent() && !CopyTableContent(tab_src, has_identity_column, is_new)) return;
    Events().TableConversionSuccessed(name);
  } catch (const RunTimeError& error) {
    ReportTableFailure(name, error);
  }
}

std::string MySqlDatabase::CreateTableStatement(ado::Table& tab_src, bool& has_identity_column) {
  const std::vector<ado::Column>& columns = tab_src.Columns();
  const std::vector<ColumnDescription> descriptions = ShowColumns(tab_src.Name());
  Facts().assign(columns.size(), ColumnFacts());
  std::string statement = "Create Table [" + DestName(tab_src.Name()) + "](";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) statement += ", ";
    statement += "[" + DestName(columns[i].name) + "] ";
    statement += GetColumnType(columns[i], descriptions, has_identity_column, i);
  }
  return statement + ")";
}

bool MySqlDatabase::CreateTable(const std::string& create_statement) {
  try {
    ExecuteOn(Destination(), create_statement);
    return true;
  } catch (const DestinationFailure& failure) {
    if (IsMerging() && failure.Number() == ado::hresult::kErrorsInCommand) return false;
    throw;
  }
}

void MySqlDatabase::RelateTable(const std::string& name) {
  try {
    AddRelationships(SourceCatalog().TableByName(name));
  } catch (const RunTimeError& error) {
    ReportTableFailure(name, error);
  }
}

void MySqlDatabase::ReportTableFailure(const std::string& name, const RunTimeError& error) {
  const auto* failure = dynamic_cast<const DestinationFailure*>(&error);
  const ado::Error* entry = failure != nullptr ? failure->FirstEntry() : nullptr;
  if (failure == nullptr && error.Number() == ado::kItemNotFound) {
    RaiseError(fmt::format("Table {} does not exist in the source database  '{}'", name, DbName()),
               kDestinationTitle);
    return;
  }
  if (entry == nullptr) {
    RaiseError(fmt::format("Unknown error {} - {}", error.Number(), error.Description()),
               kSourceTitle);
    return;
  }
  if (entry->native_error == kNoSuchTable) return;
  if (entry->native_error == kTableIsReferenced) {
    RaiseError(fmt::format("Could not drop table '{}' due to relationship(s) with other table(s)",
                           DestName(name)),
               kDestinationTitle);
    return;
  }
  if (entry->native_error != kObjectExists || !IsOverwriting()) {
    RaiseError(fmt::format("Unknown error {} - {}", entry->native_error, entry->description),
               kSourceTitle);
  }
  Events().TableConversionFailed(name);
}

}  // namespace dorvane
