#include "mysql/to_mssql/conversion.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "endpoint/names.h"
#include "mysql/to_mssql/columns.h"

namespace dorvane::to_mssql {

namespace {

constexpr std::string_view kDestinationTitle = "MS SQL Server";
constexpr std::string_view kSourceTitle = "MySQL Server";

// SQL Server's own numbers.
constexpr std::int32_t kTableIsReferenced = 3726;
constexpr std::int32_t kObjectExists = 2714;

}  // namespace

void MySqlToMsSql::PrepareTable(const TableDefinition&) {}

TableDefinition MySqlToMsSql::DefineTable(ado::Table& tab_src) {
  const std::string& name = tab_src.Name();
  const std::vector<ColumnDescription> descriptions = ShowColumns(Source(), MySqlName(name));
  TableDefinition table{.name = name, .dest_name = DestName(name), .columns = {}};
  for (const ado::Column& column : tab_src.Columns()) {
    table.columns.push_back(GetColumnType(column, descriptions));
  }
  AskTheRows(tab_src.Columns(), table);
  return table;
}

std::string MySqlToMsSql::CreateTableStatement(const TableDefinition& table) const {
  std::string statement = "Create Table " + MsSqlName(table.dest_name) + "(";
  const char* separator = "";
  for (const ColumnDefinition& column : table.columns) {
    statement += separator + MsSqlName(DestName(column.name)) + " " + column.Text();
    separator = ", ";
  }
  return statement + table.constraints + ")";
}

std::int32_t MySqlToMsSql::TableExistsError() const {
  return kObjectExists;
}

std::string MySqlToMsSql::SelectList(const TableDefinition& table) const {
  if (std::ranges::none_of(table.columns, &ColumnDefinition::is_invisible)) return "*";
  std::string list;
  for (const ColumnDefinition& column : table.columns) {
    list += (list.empty() ? "" : ", ") + MySqlName(column.name);
  }
  return list;
}

bool MySqlToMsSql::FoldsTableNames() {
  return true;
}

std::string MySqlToMsSql::SourceName(std::string_view name) const {
  return MySqlName(name);
}

void MySqlToMsSql::RelateTable(const std::string& name) {
  ado::Table& tab_src = SourceCatalog().TableByName(name);
  Events().TableRelationsConversionStarted(tab_src.Name());
  AddRelationships(tab_src);
}

void MySqlToMsSql::ReportTableFailure(const std::string& name, const RunTimeError& error) {
  const auto* failure = dynamic_cast<const DestinationFailure*>(&error);
  const ado::Error* entry = failure != nullptr ? failure->Primary() : nullptr;
  if (failure == nullptr && error.Number() == ado::kItemNotFound) {
    RaiseError(
        fmt::format("Table {} does not exist in the source database  '{}'", name, SourceDatabase()),
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
  // A table that could not be dropped is there still, and has been reported.
  if (entry->native_error != kObjectExists || !kept_.contains(name)) {
    RaiseError(fmt::format("Unknown error {} - {}", entry->native_error, entry->description),
               kSourceTitle);
  }
  Events().TableConversionFailed(name);
}

std::unique_ptr<Conversion> MySqlToMsSql::Fork(Context context) const {
  auto fork = std::make_unique<MySqlToMsSql>(std::move(context));
  fork->kept_ = kept_;
  fork->waiting_ = WaitingRows(Options().tables_at_once);
  return fork;
}

void MySqlToMsSql::Join(Conversion& fork) {
  waiting_.Join(static_cast<MySqlToMsSql&>(fork).waiting_);
}

}  // namespace dorvane::to_mssql
