#include "mysql/to_mssql/columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "mysql/to_mssql/defaults.h"
#include "mysql/to_mssql/exact_types.h"

namespace dorvane::to_mssql {

namespace {

using ado::DataType;

struct TypeText {
  DataType type;
  std::string_view text;
};

// The types whose text does not depend on the column's measures.
constexpr TypeText kPlainTypes[] = {
    {DataType::SmallInt, "int"},          {DataType::Integer, "BigInt"},
    {DataType::Single, "real"},           {DataType::Double, "float"},
    {DataType::Date, "datetime"},         {DataType::Boolean, "bit"},
    {DataType::TinyInt, "Tinyint"},       {DataType::UnsignedTinyInt, "Tinyint"},
    {DataType::UnsignedSmallInt, "int"},  {DataType::UnsignedInt, "BigInt"},
    {DataType::BigInt, "BigInt"},         {DataType::UnsignedBigInt, "numeric(20,0)"},
    {DataType::Guid, "uniqueidentifier"}, {DataType::DBDate, "datetime"},
    {DataType::DBTime, "datetime"},       {DataType::DBTimeStamp, "datetime"},
    {DataType::LongVarChar, "text"},      {DataType::LongVarWChar, "nvarchar(max)"},
    {DataType::LongVarBinary, "image"},
};

// Characters or bytes that a column of the sized types can hold.
constexpr std::int64_t kMostBytes = 8000;
constexpr std::int64_t kMostWideCharacters = 4000;

/// A column that holds nothing but empty values still needs a size.
std::string Sized(std::string_view word, std::int64_t size) {
  return fmt::format("{}({})", word, std::max<std::int64_t>(size, 1));
}

/// `word`(size), or `wide_word`(max) where that is not enough.
std::string SizedOrMax(std::string_view word, std::string_view wide_word, std::int64_t size,
                       std::int64_t most) {
  return size > most ? fmt::format("{}(max)", wide_word) : Sized(word, size);
}

/// Empty for a type that SQL Server has no text for.
std::string TypeOf(const ado::Column& col) {
  switch (col.type) {
    case DataType::Char:
    case DataType::VarChar:
      return SizedOrMax("varchar", "varchar", col.defined_size, kMostBytes);
    case DataType::WChar:
    case DataType::VarWChar:
      return SizedOrMax("nvarchar", "nvarchar", col.defined_size, kMostWideCharacters);
    case DataType::Binary:
      return SizedOrMax("binary", "varbinary", col.defined_size, kMostBytes);
    case DataType::VarBinary:
      return SizedOrMax("varbinary", "varbinary", col.defined_size, kMostBytes);
    case DataType::Currency:
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return fmt::format("numeric({},{})", col.precision, col.numeric_scale);
    default:
      break;
  }
  for (const TypeText& row : kPlainTypes) {
    if (row.type == col.type) return std::string(row.text);
  }
  return {};
}

const ColumnDescription& DescriptionOf(const ado::Column& col,
                                       const std::vector<ColumnDescription>& descriptions) {
  const auto found = std::ranges::find(descriptions, col.name, &ColumnDescription::field);
  if (found == descriptions.end()) {
    throw RunTimeError(ado::kNoCurrentRecord, "MySql", "No description of column " + col.name);
  }
  return *found;
}

/// All of a column but its type and its default.
ColumnDefinition Described(const ado::Column& col, const ColumnDescription& description) {
  ColumnDefinition definition{.name = col.name};
  definition.facts.nullable = description.null.starts_with('Y');
  const std::string_view extra = description.extra;
  definition.is_identity = extra.substr(0, extra.find_first_of(" ,")) == "auto_increment";
  definition.is_invisible = extra.find("INVISIBLE") != std::string_view::npos;
  if (definition.is_identity) definition.attributes += " Identity";
  if (description.key == "UNI") definition.attributes += " Unique";
  return definition;
}

void SetDefault(ColumnDefinition& definition, const ado::Column& col,
                const ColumnDescription& description,
                std::optional<std::string> (*literal_of)(const ado::Column& col,
                                                         const std::string& described)) {
  if (description.default_value.empty()) return;
  const std::optional<std::string> literal = literal_of(col, description.default_value);
  if (literal) {
    definition.default_clause = definition.facts.default_text = *literal;
  } else {
    definition.notes.push_back(fmt::format("the default of column {} was left off: {}", col.name,
                                           description.default_value));
  }
}

}  // namespace

std::vector<ColumnDescription> ShowColumns(ado::Connection& source,
                                           const std::string& table_reference) {
  std::vector<ColumnDescription> descriptions;
  ado::Recordset rows = source.Execute("show columns from " + table_reference);
  for (; !rows.AtEnd(); rows.MoveNext()) {
    descriptions.push_back({rows.Field("Field").Text(), rows.Field("Null").Text(),
                            rows.Field("Key").Text(), rows.Field("Default").Text(),
                            rows.Field("Extra").Text()});
  }
  return descriptions;
}

ColumnDefinition GetColumnType(const ado::Column& col,
                               const std::vector<ColumnDescription>& descriptions) {
  const ColumnDescription& description = DescriptionOf(col, descriptions);
  ColumnDefinition definition = Described(col, description);
  definition.type = TypeOf(col);
  SetDefault(definition, col, description, DefaultLiteral);
  return definition;
}

ColumnDefinition GetExactColumnType(const ado::Column& col,
                                    const std::vector<ColumnDescription>& descriptions,
                                    std::int64_t answer, const std::string& dest_name) {
  const ColumnDescription& description = DescriptionOf(col, descriptions);
  ColumnDefinition definition = Described(col, description);
  const bool counts = definition.is_identity;
  ExactType exact = ExactTypeOf(col, counts ? 1 : answer, dest_name);
  definition.type = std::move(exact.text);
  definition.check = std::move(exact.check);
  definition.facts.fraction_digits = exact.fraction_digits;
  definition.facts.is_text = exact.is_text;
  definition.facts.is_exact = true;
  if (!exact.change.empty()) {
    definition.notes.push_back(fmt::format("column {} {}", col.name, exact.change));
  }
  SetDefault(definition, col, description, ExactDefaultLiteral);
  return definition;
}

std::optional<std::int64_t> KeyBytes(const std::string& type) {
  struct SizedType {
    std::string_view word;
    std::int64_t bytes;  // of a character
  };
  constexpr SizedType kSizedTypes[] = {
      {"varchar(", 1}, {"nvarchar(", 2}, {"nchar(", 2}, {"binary(", 1}, {"varbinary(", 1}};
  constexpr std::int64_t kMostNumberBytes = 17;
  if (type == "text" || type == "image" || type.ends_with("(max)")) return std::nullopt;
  for (const SizedType& row : kSizedTypes) {
    if (!type.starts_with(row.word)) continue;
    return row.bytes * std::stoll(type.substr(row.word.size()));
  }
  return kMostNumberBytes;
}

}  // namespace dorvane::to_mssql
