#include "mssql/to_mysql/columns.h"

#include <fmt/format.h>

#include "endpoint/names.h"
#include "mssql/to_mysql/defaults.h"
#include "mssql/to_mysql/exact_types.h"
#include "mssql/to_mysql/literals.h"
#include "platform/run_time_error.h"

namespace dorvane::to_mysql {

namespace {

using ado::DataType;

struct TypeText {
  DataType type;
  std::string_view text;
};

// The types whose text does not depend on the column's measures.
constexpr TypeText kPlainTypes[] = {
    {DataType::SmallInt, "SMALLINT(6)"},
    {DataType::Integer, "INT"},
    {DataType::Single, "FLOAT"},
    {DataType::Double, "DOUBLE"},
    {DataType::Currency, "DECIMAL(19,4)"},
    {DataType::Date, "DATETIME"},
    {DataType::BStr, "LONGTEXT"},
    {DataType::Boolean, "TINYINT(1)"},
    {DataType::Variant, "LONGBLOB"},
    {DataType::TinyInt, "TINYINT(1)"},
    {DataType::UnsignedTinyInt, "TINYINT(1)"},
    {DataType::UnsignedSmallInt, "INT"},
    {DataType::UnsignedInt, "BIGINT UNSIGNED"},
    {DataType::BigInt, "BIGINT"},
    {DataType::UnsignedBigInt, "BIGINT UNSIGNED"},
    {DataType::Guid, "LONGBLOB"},
    {DataType::Binary, "BLOB"},
    {DataType::DBDate, "DATE"},
    {DataType::LongVarChar, "LONGTEXT"},
    {DataType::LongVarWChar, "LONGTEXT"},
    {DataType::VarBinary, "BLOB"},
    {DataType::LongVarBinary, "LONGBLOB"},
};

constexpr std::int64_t kTextFromSize = 256;

std::string SizedText(std::string_view word, std::int64_t size) {
  return size < kTextFromSize ? fmt::format("{}({})", word, size) : "Text";
}

/// Empty for a type that MySQL has no text for.
std::string TypeOf(const ado::Column& col) {
  if (IsObject(col)) return "LONGTEXT";
  switch (col.type) {
    case DataType::Char:
    case DataType::WChar:
      return SizedText("varchar", col.defined_size);
    case DataType::VarChar:
    case DataType::VarWChar:
      return SizedText("VARCHAR", col.defined_size);
    case DataType::Decimal:
    case DataType::Numeric:
    case DataType::VarNumeric:
      return fmt::format("DECIMAL({},{})", col.precision, col.numeric_scale);
    case DataType::DBTimeStamp:
      return FractionDigits(col) > 0 ? "DATETIME(6)" : "DATETIME";
    case DataType::DBTime:
      return FractionDigits(col) > 0 ? "TIME(6)" : "TIME";
    default:
      break;
  }
  for (const TypeText& row : kPlainTypes) {
    if (row.type == col.type) return std::string(row.text);
  }
  return {};
}

/// A default that cannot be kept is left off, which is no reason to lose the table.
void SetDefault(ColumnDefinition& definition, const ado::Column& col,
                std::string (*literal_of)(const ado::Column& col, const std::string& value)) {
  if (!col.default_value && col.other_default.empty()) return;
  if (col.default_value && !IsObject(col)) {
    try {
      definition.facts.default_text = literal_of(col, *col.default_value);
    } catch (const RunTimeError&) {
      definition.facts.default_text.clear();
    }
  }
  definition.default_clause = definition.facts.default_text;
  if (definition.default_clause.empty()) {
    definition.notes.push_back(fmt::format("the default {} of column {} was left off",
                                           col.default_value.value_or(col.other_default),
                                           col.name));
  }
}

/// All of a column but its type and its default.
ColumnDefinition Described(const ado::Column& col, const std::string& identity_column) {
  ColumnDefinition definition{.name = col.name};
  definition.facts.nullable = (col.attributes & ado::kColumnNullable) != 0;
  definition.is_invisible = col.kind.is_hidden;
  if (col.kind.is_masked) {
    definition.notes.push_back(fmt::format(
        "column {} is masked on the source, where a login without UNMASK sees no values",
        col.name));
  }
  if (IsObject(col)) {
    const std::string& type = col.kind.base_type;
    definition.read_as = MsSqlName(col.name) + ".ToString()";
    definition.notes.push_back(fmt::format("column {} holds the text of its {} values", col.name,
                                           type.empty() ? col.server_type : type));
  }
  definition.is_identity = !identity_column.empty() && identity_column == col.name;
  if (definition.is_identity) definition.attributes = " primary key auto_increment";
  return definition;
}

}  // namespace

ColumnDefinition GetColumnType(const ado::Column& col, const std::string& identity_column) {
  ColumnDefinition definition = Described(col, identity_column);
  definition.type = TypeOf(col);
  definition.facts.fraction_digits = FractionDigits(col);
  SetDefault(definition, col, DefaultLiteral);
  return definition;
}

ColumnDefinition GetExactColumnType(const ado::Column& col, const std::string& identity_column,
                                    const std::set<std::string>& fine_columns) {
  ColumnDefinition definition = Described(col, identity_column);
  const ExactType exact = ExactTypeOf(col, fine_columns.contains(col.name));
  definition.type = exact.text;
  definition.facts.fraction_digits = exact.fraction_digits;
  definition.facts.is_exact = true;
  if (!exact.change.empty()) {
    definition.notes.push_back(fmt::format("column {} {}", col.name, exact.change));
  }
  SetDefault(definition, col, ExactDefaultLiteral);
  return definition;
}

}  // namespace dorvane::to_mysql
