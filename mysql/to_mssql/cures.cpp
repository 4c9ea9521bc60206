#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "endpoint/references.h"
#include "mysql/to_mssql/columns.h"
#include "mysql/to_mssql/conversion.h"
#include "mysql/to_mssql/questions.h"

namespace dorvane::to_mssql {

namespace {

constexpr std::string_view kUnique = " Unique";
constexpr std::string_view kIdentity = " Identity";
constexpr int kMostDigits = 38;
constexpr int kMostTextOfNumber = 67;  // 65 digits, a sign and a point

bool CutPiece(std::string& text, std::string_view piece) {
  const std::size_t at = text.find(piece);
  if (at == std::string::npos) return false;
  text.erase(at, piece.size());
  return true;
}

/// "(5,1)" of " Identity(5,1)"; empty for one that counts from 1.
std::string SeedOf(const ColumnDefinition& column) {
  const std::size_t open = column.attributes.find('(');
  if (open == std::string::npos) return {};
  return column.attributes.substr(open, column.attributes.find(')') - open + 1);
}

/// The keys that follow say what becomes of them.
bool LeaveUniqueOff(TableDefinition& table, ado::Connection&) {
  bool is_changed = false;
  for (ColumnDefinition& column : table.columns) {
    if (!KeyBytes(column.type)) is_changed |= CutPiece(column.attributes, kUnique);
  }
  return is_changed;
}

bool LeaveIdentityOff(TableDefinition& table, ado::Connection&) {
  bool is_changed = false;
  for (ColumnDefinition& column : table.columns) {
    if (!column.is_identity) continue;
    is_changed |= CutPiece(column.attributes, std::string(kIdentity) + SeedOf(column));
    column.is_identity = false;
    column.notes.push_back(fmt::format("column {} is no identity: SQL Server has none of type {}",
                                       column.name, column.type));
  }
  return is_changed;
}

bool NarrowDecimals(TableDefinition& table, ado::Connection& source) {
  bool is_changed = false;
  for (ColumnDefinition& column : table.columns) {
    int precision = 0;
    int scale = 0;
    const std::size_t measures = std::min(column.type.find('('), column.type.size());
    const std::string word = column.type.substr(0, measures);
    if (word != "numeric" && word != "decimal") continue;
    std::sscanf(column.type.c_str() + measures, "(%d,%d)", &precision, &scale);
    if (precision <= kMostDigits) continue;
    const bool fits = !ExceedsDigits(source, table.name, column.name, kMostDigits - scale);
    column.facts.is_text = column.facts.is_exact && !fits;
    // Beside its digits a text has a sign and a point.
    const int size = column.facts.is_exact ? kMostTextOfNumber : precision + 2;
    const std::string type = fits ? fmt::format("{}({},{})", word, kMostDigits, scale)
                                  : fmt::format("varchar({})", size);
    column.notes.push_back(
        fmt::format("column {} is {}: SQL Server has no {}", column.name, type, column.type));
    column.type = type;
    is_changed = true;
  }
  return is_changed;
}

/// Servers of old cannot tell JSON from other text.
bool LeaveJsonUnchecked(TableDefinition& table, ado::Connection&) {
  bool is_changed = false;
  for (ColumnDefinition& column : table.columns) {
    if (!column.check.starts_with("isjson(")) continue;
    column.notes.push_back(
        fmt::format("column {} has no check, since the server knows no JSON", column.name));
    column.check.clear();
    is_changed = true;
  }
  return is_changed;
}

/// What to change in a definition that the server refused with this number of its own; false when
/// there is nothing.
struct CureOfError {
  std::int32_t native_error;
  bool (*cure)(TableDefinition& table, ado::Connection& source);
};
constexpr CureOfError kCures[] = {
    {195, LeaveJsonUnchecked},  // no such function
    {1919, LeaveUniqueOff},     // a type that is no key's
    {2749, LeaveIdentityOff},   // a type that is no identity's
    {2750, NarrowDecimals},     // more than 38 digits
};

}  // namespace

bool MySqlToMsSql::CureTable(TableDefinition& table, std::int32_t native_error) {
  const auto* found = std::ranges::find(kCures, native_error, &CureOfError::native_error);
  return found != std::end(kCures) && found->cure(table, Source());
}

void MySqlToMsSql::AskTheRows(const std::vector<ado::Column>& columns, TableDefinition& table) {
  std::optional<bool> is_needed;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    ColumnDefinition& column = table.columns[i];
    const bool may_be_negative =
        !column.facts.is_exact && columns[i].type == ado::DataType::TinyInt;
    const bool may_repeat_nulls =
        column.facts.nullable && column.attributes.find(kUnique) != std::string::npos;
    if (!may_be_negative && !may_repeat_nulls) continue;
    if (!is_needed) is_needed = WillBeCreated(table);
    if (!*is_needed) return;
    if (may_be_negative && HoldsNegatives(table.name, column.name)) {
      column.type = "smallint";
      column.notes.push_back(
          fmt::format("column {} is smallint: it holds values below zero", column.name));
    }
    // An index of its own takes them.
    if (may_repeat_nulls && RepeatsNulls(Source(), table.name, {column.name})) {
      CutPiece(column.attributes, kUnique);
    }
  }
}

bool MySqlToMsSql::HoldsNegatives(const ado::TableName& table, const std::string& column) {
  return std::ranges::any_of(WithReferencedColumns(SourceCatalog(), {table, column}),
                             [this](const ColumnPlace& place) {
                               return HasNegatives(Source(), place.table, place.column);
                             });
}

bool MySqlToMsSql::WillBeCreated(const TableDefinition& table) {
  if (IsOverwriting()) return true;
  return OnDestination(Destination(), [&] {
    ado::Recordset id =
        Destination().Execute("select object_id('" + SqlText(MsSqlTable(table.dest_name)) + "')");
    return id.AtEnd() || id.Field(0).IsNull();
  });
}

}  // namespace dorvane::to_mssql
