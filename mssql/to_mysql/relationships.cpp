#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

#include "endpoint/names.h"
#include "mssql/to_mysql/conversion.h"

namespace dorvane {

namespace {

constexpr std::string_view kTitle = "Creating Relationship Error";

/// How the server says that a key cannot be made: a number inside the description, or native
/// errors.
struct Refusal {
  std::string_view digits;
  std::span<const std::int32_t> native_errors;

  bool Covers(const ado::Error& error) const {
    return error.description.find(digits) != std::string::npos ||
           std::ranges::find(native_errors, error.native_error) != native_errors.end();
  }
};

constexpr std::array kCannotBeMadeErrors{1822, 1824, 1825, 3780};
constexpr std::array kExistsAlreadyErrors{1826};
constexpr Refusal kCannotBeMade{"150", kCannotBeMadeErrors};
constexpr Refusal kExistsAlready{"121", kExistsAlreadyErrors};

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

}  // namespace

void MsSqlToMySql::AddRelationships(ado::Table& tab_src) {
  try {
    for (const ado::Key& key : tab_src.Keys()) {
      if (key.type == ado::KeyType::Foreign && !AddRelationship(tab_src.Name(), key)) return;
    }
  } catch (const RunTimeError& error) {
    RaiseError(fmt::format("Unexpected error {} - {}", error.Number(), error.Description()),
               kTitle);
  }
}

bool MsSqlToMySql::AddRelationship(const std::string& table_name, const ado::Key& key) {
  std::string columns;
  std::string related_columns;
  for (const ado::KeyColumn& column : key.columns) {
    if (!columns.empty()) {
      columns += ',';
      related_columns += ',';
    }
    columns += column.name;
    related_columns += column.related_column;
  }
  const std::string statement = fmt::format(
      "ALTER TABLE {} ADD CONSTRAINT  {} FOREIGN KEY ({}) REFERENCES {}({}) ON DELETE {} ON "
      "UPDATE {}",
      MySqlName(DestName(table_name)), MySqlName(key.name), columns, DestName(key.related_table),
      related_columns, RuleWord(key.delete_rule), RuleWord(key.update_rule));
  try {
    ExecuteOn(Destination(), statement);
    return true;
  } catch (const DestinationFailure& failure) {
    const ado::Error* entry = failure.Primary();
    if (entry != nullptr && kCannotBeMade.Covers(*entry)) {
      RaiseError(
          fmt::format("Could not create relationship between table {} and table {}. Error {}",
                      table_name, key.related_table, entry->number),
          kTitle, message_style::kInformation);
      return true;
    }
    if (entry != nullptr && IsMerging() && kExistsAlready.Covers(*entry)) return true;
    const ErrorSummary summary = failure.Summary();
    RaiseError(fmt::format("Unexpected error {} - {}", summary.number, summary.description),
               kTitle);
    return false;
  }
}

}  // namespace dorvane
