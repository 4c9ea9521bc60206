#include <fmt/format.h>

#include <algorithm>

#include "endpoint/names.h"
#include "mysql/to_mssql/conversion.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

constexpr std::string_view kTitle = "Creating Relationship Error";
constexpr std::string_view kExistsAlready = "There is already an object";

// Stands for a backquote inside a name while the ones around names are turned into brackets.
constexpr char kInnerQuote = '\x01';

/// SQL Server has neither rule in this place.
std::string Rule(const std::string& rule) {
  const bool has_none =
      text::EqualsIgnoringCase(rule, "set null") || text::EqualsIgnoringCase(rule, "restrict");
  return has_none ? "No Action" : rule;
}

}  // namespace

void MySqlToMsSql::AddRelationships(ado::Table& tab_src) {
  const std::string& name = tab_src.Name();
  const std::string table_reference = MsSqlName(DestName(name));
  try {
    ado::Recordset row = Source().Execute("show create table  " + MySqlName(name));
    const std::string definition = row.Field(1).Text();
    row.Close();
    for (const ForeignKeyText& key : ReadForeignKeys(definition)) {
      if (!AddRelationship(table_reference, key)) return;
    }
  } catch (const RunTimeError& error) {
    RaiseError(fmt::format("Unexpected error {} - {}", error.Number(), error.Description()),
               kTitle);
  }
}

bool MySqlToMsSql::AddRelationship(const std::string& table_reference, const ForeignKeyText& key) {
  const std::string columns = DestNames(key.columns);
  const std::string referenced = DestNames(key.referenced);
  const std::string statement = fmt::format(
      "Alter Table {} add CONSTRAINT {} Foreign Key ({}) References {} On Delete {} On Update {}",
      table_reference, DestNames(key.name), columns, referenced, Rule(key.delete_rule),
      Rule(key.update_rule));
  try {
    ExecuteOn(Destination(), statement);
    return true;
  } catch (const DestinationFailure& failure) {
    const ErrorSummary summary = failure.Summary();
    if (failure.Primary() == nullptr || summary.number != ado::hresult::kErrorsInCommand) {
      RaiseError(fmt::format("Unexpected error {} - {}", summary.number, summary.description),
                 kTitle);
      return false;
    }
    const bool exists = summary.description.find(kExistsAlready) != std::string::npos;
    if (!exists || !IsMerging()) {
      RaiseError(fmt::format("Could not create relationship between {}({}) and {}. Error {}",
                             table_reference, columns, referenced, summary.number),
                 kTitle);
    }
    return true;
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

}  // namespace dorvane
