#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "endpoint/names.h"
#include "mssql/to_mysql/conversion.h"
#include "mssql/to_mysql/literals.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mysql {

namespace {

constexpr std::string_view kTitle = "Creating Relationship Error";
constexpr std::int32_t kSyntax = 1064;
constexpr std::int32_t kNameTaken = 1826;
constexpr std::int32_t kCannotCreateTable = 1005;  // its words hold the reason's number

enum class Refusal { Other, CannotBeMade, ExistsAlready };

struct RefusalOfNumber {
  std::int32_t native_error;
  Refusal refusal;
};
constexpr std::array kRefusals{
    RefusalOfNumber{1215, Refusal::CannotBeMade},   // cannot add the constraint
    RefusalOfNumber{1822, Refusal::CannotBeMade},   // no index of the referenced columns
    RefusalOfNumber{1824, Refusal::CannotBeMade},   // no such referenced table
    RefusalOfNumber{1825, Refusal::CannotBeMade},   // other options of the referenced table
    RefusalOfNumber{3734, Refusal::CannotBeMade},   // no such referenced column
    RefusalOfNumber{3780, Refusal::CannotBeMade},   // other types
    RefusalOfNumber{6125, Refusal::CannotBeMade},   // no unique key of the referenced columns
    RefusalOfNumber{1826, Refusal::ExistsAlready},  // a constraint of that name
    RefusalOfNumber{1022, Refusal::ExistsAlready},  // likewise
};

Refusal RefusalOf(const ado::Error& error) {
  if (error.native_error == kCannotCreateTable) {
    if (error.description.find("errno: 150") != std::string::npos) return Refusal::CannotBeMade;
    if (error.description.find("errno: 121") != std::string::npos) return Refusal::ExistsAlready;
  }
  const auto* row =
      std::ranges::find(kRefusals, error.native_error, &RefusalOfNumber::native_error);
  return row != kRefusals.end() ? row->refusal : Refusal::Other;
}

/// Empty for a rule that MySQL has no word for.
std::string_view RuleWord(ado::RuleType rule) {
  switch (rule) {
    case ado::RuleType::None:
      return "NO ACTION";
    case ado::RuleType::Cascade:
      return "CASCADE";
    case ado::RuleType::SetNull:
      return "SET NULL";
    case ado::RuleType::SetDefault:
      break;
  }
  return {};
}

bool SetsDefault(const ado::Key& key) {
  return key.delete_rule == ado::RuleType::SetDefault ||
         key.update_rule == ado::RuleType::SetDefault;
}

/// True when a bare name can be read as that name or as a mistake, never as anything else.
bool IsHarmlessBare(std::string_view name) {
  return std::ranges::all_of(name, [](char c) {
    const char lower = text::ToLower(c);
    return text::IsDigit(c) || (lower >= 'a' && lower <= 'z') || c == '_' || c == '$' || c == ' ' ||
           static_cast<unsigned char>(c) >= 0x80;
  });
}

bool AreHarmlessBare(const ado::Key& key) {
  return IsHarmlessBare(key.related_table.schema) && IsHarmlessBare(key.related_table.name) &&
         std::ranges::all_of(key.columns, [](const ado::KeyColumn& column) {
           return IsHarmlessBare(column.name) && IsHarmlessBare(column.related_column);
         });
}

/// Counts the rows whose key is not NULL and has no row in the related table.
std::string OrphanQuery(const ado::TableName& table, const ado::Key& key) {
  std::string join;
  std::string is_set;
  for (const ado::KeyColumn& column : key.columns) {
    const std::string name = MySqlName(column.name);
    join += fmt::format("{}p.{} = c.{}", join.empty() ? "" : " and ",
                        MySqlName(column.related_column), name);
    is_set += fmt::format("c.{} is not null and ", name);
  }
  return fmt::format("select count(*) from {} c left join {} p on {} where {}p.{} is null",
                     MySqlTable(table), MySqlTable(key.related_table), join, is_set,
                     MySqlName(key.columns.front().related_column));
}

void AppendName(std::string& list, const std::string& name) {
  if (!list.empty()) list += ',';
  list += name;
}

}  // namespace

void MsSqlToMySql::AddRelationships(ado::Table& tab_src) {
  try {
    for (ado::Key key : tab_src.Keys()) {
      if (key.type != ado::KeyType::Foreign) continue;
      if (key.is_disabled) {
        Host().Inform(fmt::format("Table {}: relationship {} was left out: it is disabled",
                                  tab_src.Name().Text(), key.name));
        continue;
      }
      key.related_table = SourceCatalog().Listed(key.related_table);
      if (const ado::TableName* other = Namesake(key.related_table)) {
        RaiseError(fmt::format("Could not create relationship between table {} and table {}. "
                               "Table {} has its name on the destination",
                               tab_src.Name().Text(), key.related_table.Text(), other->Text()),
                   kTitle, message_style::kInformation);
        continue;
      }
      if (!AddRelationship(tab_src.Name(), key)) return;
    }
  } catch (const RunTimeError& error) {
    RaiseError(fmt::format("Unexpected error {} - {}", error.Number(), error.Description()),
               kTitle);
  }
}

ado::TableName MsSqlToMySql::ReferencedTable(const ado::TableName& table, const ado::Key& key) {
  ado::TableName related = DestTable(key.related_table);
  if (!related.IsBare() || DestTable(table).IsBare()) return related;
  // To MySQL a bare name means the database of the table that refers to it.
  ado::Recordset selected = Destination().Execute("select database()");
  related.schema = selected.Field(0).Text();
  return related;
}

std::string MsSqlToMySql::RelationshipStatement(const ado::TableName& table, const ado::Key& key,
                                                NameForm form) {
  const bool is_quoted = form == NameForm::Quoted;
  std::string columns;
  std::string related_columns;
  for (const ado::KeyColumn& column : key.columns) {
    const auto written = [&](const std::string& name) {
      return is_quoted ? MySqlName(DestName(name)) : name;
    };
    AppendName(columns, written(column.name));
    AppendName(related_columns, written(column.related_column));
  }
  const ado::TableName related = ReferencedTable(table, key);
  const auto rule_word = [is_quoted](ado::RuleType rule) {
    // The quoted form is what a refusal is answered by: it has a word for every rule.
    const std::string_view word = RuleWord(rule);
    return is_quoted && word.empty() ? RuleWord(ado::RuleType::None) : word;
  };
  return fmt::format(
      "ALTER TABLE {} ADD CONSTRAINT  {} FOREIGN KEY ({}) REFERENCES {}({}) ON DELETE {} ON "
      "UPDATE {}",
      MySqlTable(DestTable(table)), MySqlName(key.name), columns,
      is_quoted ? MySqlTable(related) : related.Text(), related_columns, rule_word(key.delete_rule),
      rule_word(key.update_rule));
}

bool MsSqlToMySql::AddRelationship(const ado::TableName& table, ado::Key key) {
  // Names of relationships are one schema's own on SQL Server, one database's on MySQL.
  const std::string other_name =
      (table.IsBare() ? DestTable(table).name : table.schema) + "_" + key.name;
  NameForm form = AreHarmlessBare(key) ? NameForm::Bare : NameForm::Quoted;
  // The server would refuse it, without a word to anyone.
  if (IsRehearsing() && MayBeOld(table) && HasRelationship(DestTable(table), key.name)) return true;
  for (;;) {
    try {
      RehearseRelationship(key.name, DestTable(table), DestTable(key.related_table));
      if (IsRehearsing()) RehearseName(DestTable(table), key.name);
      RehearseRelatedRows(table, key);
      ExecuteOn(Destination(), RelationshipStatement(table, key, form));
      if (SetsDefault(key)) {
        Host().Inform(fmt::format("Table {}: SET DEFAULT of relationship {} became NO ACTION",
                                  table.Text(), key.name));
      }
      if (!key.is_trusted) {
        Host().Inform(
            fmt::format("Table {}: relationship {} was not checked against every row on the source",
                        table.Text(), key.name));
      }
      return true;
    } catch (const DestinationFailure& failure) {
      const ado::Error* entry = failure.Primary();
      const bool is_taken = entry != nullptr && RefusalOf(*entry) == Refusal::ExistsAlready &&
                            key.name != other_name && Options().schemas != SchemaPolicy::Database;
      if (is_taken && HasSchemas() &&
          !(MayBeOld(table) && HasRelationship(DestTable(table), key.name))) {
        Host().Inform(
            fmt::format("Table {}: relationship {} is called {}, since MySQL has one of "
                        "its name",
                        table.Text(), key.name, other_name));
        key.name = other_name;
        continue;
      }
      if (failure.NativeError() != kSyntax || form == NameForm::Quoted) {
        return ReportRelationship(table, key, failure);
      }
      form = NameForm::Quoted;
    }
  }
}

void MsSqlToMySql::RehearseName(const ado::TableName& dest_table, const std::string& name) {
  bool is_taken = !relationship_names_.emplace(dest_table.schema, text::ToLower(name)).second;
  ado::Recordset owners = Destination().Execute(
      fmt::format("select table_name from information_schema.referential_constraints where "
                  "constraint_schema = {} and constraint_name = '{}'",
                  SchemaText(dest_table), Quote(name)));
  for (; !owners.AtEnd(); owners.MoveNext()) {
    is_taken = is_taken || !IsToBeDropped({dest_table.schema, owners.Field(0).Text()});
  }
  if (!is_taken) return;
  const ado::ProviderError refusal =
      dorvane::Refusal(ServerKind::MySql, kNameTaken,
                       fmt::format("Duplicate foreign key constraint name '{}'", name));
  throw DestinationFailure(refusal, refusal.Entries());
}

bool MsSqlToMySql::ReportRelationship(const ado::TableName& table, const ado::Key& key,
                                      const DestinationFailure& failure) {
  const ado::Error* entry = failure.Primary();
  const Refusal refusal = entry != nullptr ? RefusalOf(*entry) : Refusal::Other;
  if (refusal == Refusal::CannotBeMade) {
    RaiseError(
        fmt::format("Could not create relationship between table {} and table {}. Error {} - {}",
                    table.Text(), key.related_table.Text(), entry->number, entry->description),
        kTitle, message_style::kInformation);
    return true;
  }
  if (refusal == Refusal::ExistsAlready && MayBeOld(table) &&
      HasRelationship(DestTable(table), key.name)) {
    return true;
  }
  const ErrorSummary summary = failure.Summary();
  RaiseError(fmt::format("Unexpected error {} - {}", summary.number, summary.description), kTitle);
  // A refused statement says nothing of the next one; a lost connection does.
  return refusal != Refusal::Other || IsRowRefusal(summary.number);
}

bool MsSqlToMySql::HasRelationship(const ado::TableName& dest_table, const std::string& key_name) {
  ado::Recordset keys = Destination().Execute(
      fmt::format("select 1 from information_schema.table_constraints where constraint_schema = "
                  "{} and table_name = '{}' and constraint_name = '{}' and "
                  "constraint_type = 'FOREIGN KEY'",
                  SchemaText(dest_table), Quote(dest_table.name), Quote(key_name)));
  return !keys.AtEnd();
}

void MsSqlToMySql::ReportOrphans(const ado::TableName& dest_name) {
  ado::Connection& destination = Destination();
  try {
    for (const ado::Key& key : destination.Keys(dest_name)) {
      if (key.type != ado::KeyType::Foreign) continue;
      const std::string count = OrphansOf(dest_name, key, OrphanQuery(dest_name, key));
      if (count == "0") continue;
      RaiseError(fmt::format("{} rows of table {} refer to rows of table {} that are not there "
                             "(relationship {})",
                             count, dest_name.Text(), key.related_table.Text(), key.name),
                 kTitle);
    }
  } catch (const RunTimeError& error) {
    RaiseError(fmt::format("Unexpected error {} - {}", error.Number(), error.Description()),
               kTitle);
  }
}

}  // namespace dorvane::to_mysql
