#include "mssql/to_mysql/conversion.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mssql/to_mysql/columns.h"
#include "mssql/to_mysql/cures.h"
#include "mssql/to_mysql/literals.h"

namespace dorvane::to_mysql {

namespace {

constexpr std::int32_t kTableExists = 1050;

/// Nothing for a number beyond 64 bits, which no column of MySQL's counts to.
std::optional<std::int64_t> NumberOf(const std::string& text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
  return number;
}

/// The destination's identity goes on where the source's stands.
void SetNextNumber(ado::Table& tab_src, TableDefinition& table) {
  for (const ado::Column& column : tab_src.Columns()) {
    if (!column.identity || column.identity->increment.empty()) continue;
    const ado::Identity& identity = *column.identity;
    if (identity.increment != "1") {
      table.notes.push_back(
          fmt::format("column {} counts by 1, no more by {}", column.name, identity.increment));
    }
    const bool is_used = !identity.last.empty();
    const auto start = NumberOf(is_used ? identity.last : identity.seed);
    const auto step = NumberOf(is_used ? identity.increment : "0");
    std::int64_t next = 0;
    if (!start || !step || __builtin_add_overflow(*start, *step, &next)) continue;
    if (next > 1) table.Find(column.name)->next_value = fmt::to_string(next);
  }
}

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
  ExecuteOn(Destination(), "Drop Table If Exists " + MySqlTable(table.dest_name));
}

TableDefinition MsSqlToMySql::DefineTable(ado::Table& tab_src) {
  const std::string identity_column = FindIdentityColumn(tab_src);
  TableDefinition table{
      .name = tab_src.Name(), .dest_name = DestTable(tab_src.Name()), .columns = {}};
  const bool is_made = IsOverwriting() || !IsOnDestination(table.dest_name);
  std::set<std::string> fine_columns;
  if (IsExact() && is_made) fine_columns = AskForFineSeconds(tab_src);
  for (const ado::Column& column : tab_src.Columns()) {
    table.columns.push_back(IsExact() ? GetExactColumnType(column, identity_column, fine_columns)
                                      : GetColumnType(column, identity_column));
  }
  SetNextNumber(tab_src, table);
  if (!IsExact() && is_made) AskTheData(tab_src, table);
  if (is_made) AskForFoldedKeys(tab_src, table);
  if (IsExact()) DescribeExtras(table);
  if (KeepsComputed()) KeepComputed(tab_src, table);
  return table;
}

bool MsSqlToMySql::IsOnDestination(const ado::TableName& dest_name) {
  return AnswersOne(Destination(),
                    fmt::format("select count(*) from information_schema.tables where "
                                "table_schema = {} and table_name = '{}'",
                                SchemaText(dest_name), Quote(dest_name.name)));
}

ado::TableName MsSqlToMySql::DestTable(const ado::TableName& name) const {
  if (name.IsBare()) return DestName(name.name);
  switch (Options().schemas) {
    case SchemaPolicy::Drop:
      return DestName(name.name);
    case SchemaPolicy::Database:
      return {DestName(name.schema), DestName(name.name)};
    case SchemaPolicy::Prefix:
      break;
  }
  return DestName(name.schema + "_" + name.name);
}

void MsSqlToMySql::MakeSchema(const std::string& name) {
  if (AnswersOne(Destination(),
                 fmt::format("select count(*) from information_schema.schemata where "
                             "schema_name = '{}'",
                             Quote(name)))) {
    return;
  }
  // As the database beside it.
  ado::Recordset text = OnDestination(Destination(), [this] {
    return Destination().Execute("select @@character_set_database, @@collation_database");
  });
  const std::string statement =
      fmt::format("Create Database {} character set {} collate {}", MySqlName(name),
                  text.Field(0).Text(), text.Field(1).Text());
  text.Close();
  ExecuteOn(Destination(), statement);
}

std::string MsSqlToMySql::FindIdentityColumn(ado::Table& tab_src) {
  const auto tells = [](const ado::Column& column) { return column.identity.has_value(); };
  const auto found = std::ranges::find_if(tab_src.Columns(), tells);
  if (found != tab_src.Columns().end()) return found->name;
  if (tab_src.TellsIdentity()) return {};
  constexpr std::string_view kNoIdentity = "No identity column defined.";
  const std::string table = MsSqlTable(tab_src.Name());
  try {
    // A name of two parts is a text to the procedure.
    ado::Recordset help = Source().Execute(
        "sp_help " + (tab_src.Name().IsBare() ? table : "N'" + SqlText(table) + "'"));
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
                  SqlText(table)));
  return identity.AtEnd() ? std::string() : identity.Field(0).Text();
}

std::string MsSqlToMySql::CreateTableStatement(const TableDefinition& table) const {
  std::string statement = "Create Table " + MySqlTable(table.dest_name) + "(";
  const char* separator = "";
  for (const ColumnDefinition& column : table.columns) {
    statement += separator + MySqlName(DestName(column.name)) + " " + column.Text() +
                 CommentClause(column.comment);
    separator = ",";
  }
  statement += table.constraints + ")" + CommentClause(table.comment);
  const ColumnDefinition* identity = table.Identity();
  if (identity == nullptr || identity->next_value.empty()) return statement;
  return statement + " AUTO_INCREMENT=" + identity->next_value;
}

std::int32_t MsSqlToMySql::TableExistsError() const {
  return kTableExists;
}

bool MsSqlToMySql::CureTable(TableDefinition& table, std::int32_t native_error) {
  const ado::Error* entry = PrimaryError(Destination().Errors(), 0);
  const std::string words = entry != nullptr ? entry->description : std::string();
  const std::vector<ado::Index>& indexes = SourceCatalog().TableByName(table.name.Text()).Indexes();
  const auto has_fine_decimals = [&](const std::string& column) {
    return !IsExact() || HasFineDecimals(table.name, column);
  };
  return CureDefinition(
      table, {native_error, words, indexes, PrimaryKeyClause(indexes), has_fine_decimals});
}

bool MsSqlToMySql::FoldsTableNames() {
  ado::Recordset folding = Destination().Execute("select @@lower_case_table_names");
  return !folding.AtEnd() && folding.Field(0).Text() != "0";
}

std::string MsSqlToMySql::SourceName(const ado::TableName& name) const {
  return MsSqlTable(name);
}

std::string MsSqlToMySql::DestQuoted(const ado::TableName& name) const {
  return MySqlTable(name);
}

void MsSqlToMySql::RelateTable(const std::string& name) {
  Events().TableRelationsConversionStarted(name);
  AddRelationships(SourceCatalog().TableByName(name));
  const ado::TableName dest_name = DestTableOf(name);
  if (unchecked_tables_.contains(dest_name)) ReportOrphans(dest_name);
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
    RaiseError(fmt::format("Can not drop table {} - Error no. {} - {}", DestTableOf(name).Text(),
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
