#include "mysql/to_mssql/conversion.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/columns.h"
#include "mysql/to_mssql/exact_types.h"
#include "mysql/to_mssql/questions.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

constexpr std::string_view kDestinationTitle = "MS SQL Server";
constexpr std::string_view kSourceTitle = "MySQL Server";

// SQL Server's own numbers.
constexpr std::int32_t kTableIsReferenced = 3726;
constexpr std::int32_t kObjectExists = 2714;

constexpr const char* kUsualSchema = "dbo";

/// The usual one for a server that does not tell.
std::string DefaultSchemaOf(ado::Connection& destination) {
  try {
    ado::Recordset name = destination.Execute("select schema_name()");
    if (!name.AtEnd() && !name.Field(0).IsNull()) return name.Field(0).Text();
  } catch (const RunTimeError&) {
    // The run's own statements tell what is wrong.
  }
  return kUsualSchema;
}

}  // namespace

MySqlToMsSql::MySqlToMsSql(Context context)
    : Conversion(std::move(context)),
      default_schema_(NamesSchema() ? DefaultSchemaOf(Destination()) : kUsualSchema) {}

bool MySqlToMsSql::NamesSchema() const {
  return IsOverwriting() || !Options().destination_schema.empty();
}

void MySqlToMsSql::MakeSchema(const std::string& name) {
  ado::Recordset count = OnDestination(Destination(), [&] {
    return Destination().Execute("select count(*) from sys.schemas where name = N'" +
                                 SqlText(name) + "'");
  });
  const bool is_there = !count.AtEnd() && count.Field(0).Text() != "0";
  count.Close();
  if (!is_there) ExecuteOn(Destination(), "create schema " + MsSqlName(name));
}

void MySqlToMsSql::PrepareTable(const TableDefinition&) {}

TableDefinition MySqlToMsSql::DefineTable(ado::Table& tab_src) {
  const ado::TableName& name = tab_src.Name();
  const std::vector<ColumnDescription> descriptions = ShowColumns(Source(), MySqlTable(name));
  TableDefinition table{.name = name, .dest_name = DestTable(name), .columns = {}};
  if (IsExact()) {
    DefineExactly(tab_src.Columns(), descriptions, table);
  } else {
    for (const ado::Column& column : tab_src.Columns()) {
      table.columns.push_back(GetColumnType(column, descriptions));
    }
  }
  AskTheRows(tab_src.Columns(), table);
  AskForFoldedKeys(tab_src, table);
  if (KeepsComputed()) KeepComputed(tab_src, table);
  return table;
}

void MySqlToMsSql::DefineExactly(const std::vector<ado::Column>& columns,
                                 const std::vector<ColumnDescription>& descriptions,
                                 TableDefinition& table) {
  std::vector<std::string> questions;
  const bool is_made = WillBeCreated(table);
  for (const ado::Column& column : columns) {
    questions.push_back(is_made ? QuestionOf(column, table.name) : "");
  }
  std::vector<std::string> asked = questions;
  std::erase(asked, "");
  const std::vector<std::int64_t> answers = NumbersOf(Source(), table.name, asked);
  auto answer = answers.begin();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    table.columns.push_back(GetExactColumnType(
        columns[i], descriptions, questions[i].empty() ? 0 : *answer++, DestName(columns[i].name)));
  }
  DescribeExtras(table);
}

std::string MySqlToMsSql::CreateTableStatement(const TableDefinition& table) const {
  std::string statement = "Create Table " + MsSqlTable(table.dest_name) + "(";
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

bool MySqlToMsSql::FoldsTableNames() {
  return true;
}

std::string MySqlToMsSql::SourceName(const ado::TableName& name) const {
  return MySqlTable(name);
}

ado::TableName MySqlToMsSql::DestTable(const ado::TableName& name) const {
  const std::string& schema = Options().destination_schema;
  // The catalog knows tables of the default schema by their bare names.
  const bool is_default = schema.empty() || text::EqualsIgnoringCase(schema, default_schema_);
  return {is_default ? std::string() : schema, DestName(name.name)};
}

std::string MySqlToMsSql::DestQuoted(const ado::TableName& name) const {
  return MsSqlTable(name);
}

void MySqlToMsSql::RelateTable(const std::string& name) {
  ado::Table& tab_src = SourceCatalog().TableByName(name);
  Events().TableRelationsConversionStarted(tab_src.Name().Text());
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
                           DestTableOf(name).Text()),
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
