#include <fmt/format.h>

#include <algorithm>

#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"
#include "platform/ado/items.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mssql {

namespace {

constexpr std::string_view kTitle = "Creating Relationship Error";
constexpr std::string_view kExistsAlready = "There is already an object";
constexpr const char* kNoAction = "No Action";
// The server's own number.
constexpr std::int32_t kSeveralCascades = 1785;

// Stands for a backquote inside a name while the ones around names are turned into brackets.
constexpr char kInnerQuote = '\x01';

/// SQL Server has no Restrict; the classic mapping keeps Set Null back as well.
std::string Rule(const std::string& rule, bool is_exact) {
  const bool has_none = text::EqualsIgnoringCase(rule, "restrict") ||
                        (!is_exact && text::EqualsIgnoringCase(rule, "set null"));
  return has_none ? kNoAction : rule;
}

}  // namespace

void MySqlToMsSql::AddRelationships(ado::Table& tab_src) {
  const ado::TableName& name = tab_src.Name();
  try {
    ado::Recordset row = Source().Execute("show create table  " + MySqlTable(name));
    const std::string definition = row.Field(1).Text();
    row.Close();
    for (const ForeignKeyText& key : ReadForeignKeys(definition)) {
      AddRelationship(name, key);
    }
  } catch (const RunTimeError& error) {
    RaiseError(fmt::format("Unexpected error {} - {}", error.Number(), error.Description()),
               kTitle);
  }
}

void MySqlToMsSql::AddRelationship(const ado::TableName& table, const ForeignKeyText& key) {
  const ado::TableName dest_table = DestTable(table);
  const std::string table_reference = MsSqlTable(dest_table);
  const std::string name = DestNames(key.name);
  const std::string columns = DestNames(key.columns);
  // A name of two parts stays what it is.
  const bool is_bare = key.referenced.find("`.`") == std::string::npos;
  const std::string schema =
      is_bare && !dest_table.IsBare() ? MsSqlName(dest_table.schema) + "." : "";
  const std::string referenced = schema + DestNames(key.referenced);
  // The server would refuse it, without a word to anyone.
  if (IsRehearsing() && MayBeOld(table) && HasRelationship(dest_table, name)) return;
  const auto execute = [&](const std::string& delete_rule, const std::string& update_rule) {
    if (IsRehearsing()) {
      RehearseRules(table, key, delete_rule, update_rule);
      RehearseRelatedRows(table, SourceKey(table, key));
    }
    ExecuteOn(Destination(),
              fmt::format("Alter Table {} add CONSTRAINT {} Foreign Key ({}) "
                          "References {} On Delete {} On Update {}",
                          table_reference, name, columns, referenced, delete_rule, update_rule));
  };
  try {
    RehearseRelationship(name, dest_table, ReferencedTable(key));
    try {
      execute(Rule(key.delete_rule, IsExact()), Rule(key.update_rule, IsExact()));
    } catch (const DestinationFailure& failure) {
      if (failure.NativeError() != kSeveralCascades) throw;
      execute(kNoAction, kNoAction);
      Host().Inform(
          fmt::format("Table {}: relationship {} has No Action for its rules, since SQL "
                      "Server takes no cycles and no second path of them",
                      table.Text(), name));
    }
  } catch (const DestinationFailure& failure) {
    const ErrorSummary summary = failure.Summary();
    if (failure.Primary() == nullptr || summary.number != ado::hresult::kErrorsInCommand) {
      RaiseError(fmt::format("Unexpected error {} - {}", summary.number, summary.description),
                 kTitle);
      return;
    }
    const bool exists = summary.description.find(kExistsAlready) != std::string::npos;
    if (exists && MayBeOld(table) && HasRelationship(dest_table, name)) return;
    RaiseError(
        fmt::format("Could not create relationship between {}({}) and {}. Error {} - {}",
                    table_reference, columns, referenced, summary.number, summary.description),
        kTitle);
  }
}

ado::Key MySqlToMsSql::SourceKey(const ado::TableName& table, const ForeignKeyText& key) {
  std::string_view quoted = key.name;
  const std::string name = TakeTableName(quoted).name;
  return ado::FindItem(SourceCatalog().TableByName(table.Text()).Keys(), name, "ADOX.Keys");
}

ado::TableName MySqlToMsSql::ReferencedTable(const ForeignKeyText& key) const {
  std::string_view text = key.referenced;
  const ado::TableName referenced = TakeTableName(text);
  return referenced.IsBare() ? DestTable(referenced) : referenced;
}

void MySqlToMsSql::RehearseRules(const ado::TableName& table, const ForeignKeyText& key,
                                 const std::string& delete_rule, const std::string& update_rule) {
  const std::string child = text::ToLower(DestTable(table).Text());
  const std::string parent = text::ToLower(ReferencedTable(key).Text());
  const auto is_second = [&](CascadePaths& paths, const std::string& rule) {
    return !text::EqualsIgnoringCase(rule, kNoAction) && !paths.Add(parent, child);
  };
  if (!is_second(deletions_, delete_rule) && !is_second(updates_, update_rule)) return;
  const ado::ProviderError refusal =
      Refusal(ServerKind::MsSql, kSeveralCascades,
              fmt::format("Introducing FOREIGN KEY constraint {} may cause cycles or multiple "
                          "cascade paths.",
                          key.name));
  throw DestinationFailure(refusal, refusal.Entries());
}

bool MySqlToMsSql::HasRelationship(const ado::TableName& dest_table,
                                   const std::string& quoted_name) {
  try {
    return std::ranges::any_of(Destination().Keys(dest_table), [&](const ado::Key& key) {
      return key.type == ado::KeyType::Foreign &&
             text::EqualsIgnoringCase(MsSqlName(key.name), quoted_name);
    });
  } catch (const RunTimeError&) {
    return false;
  }
}

std::string MySqlToMsSql::DestNames(std::string_view definition_part) const {
  std::string text = ChangeNames(definition_part, [this](std::string name) {
    std::ranges::replace(name, '`', kInnerQuote);
    return DestName(name);
  });
  util_.ReplaceDashes(text);
  std::ranges::replace(text, kInnerQuote, '`');
  return text;
}

}  // namespace dorvane::to_mssql
