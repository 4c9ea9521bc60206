#include "mysql/to_mssql/computed_columns.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "endpoint/generated_columns.h"
#include "endpoint/generated_expression.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/check_text.h"
#include "mysql/to_mssql/conversion.h"
#include "platform/ado/items.h"

namespace dorvane::to_mssql {

namespace {

using Kind = ExpressionToken::Kind;

struct KindOfType {
  std::string_view word;  // in front of the measures
  ValueKind kind;
};
constexpr auto kKinds = std::to_array<KindOfType>({
    {"tinyint", ValueKind::Integer},
    {"smallint", ValueKind::Integer},
    {"mediumint", ValueKind::Integer},
    {"int", ValueKind::Integer},
    {"bigint", ValueKind::Integer},
    {"decimal", ValueKind::Decimal},
    {"double", ValueKind::Double},
    {"varchar", ValueKind::Text},
    {"date", ValueKind::Date},
    {"datetime", ValueKind::Date},
    {"timestamp", ValueKind::Date},
});

constexpr int kMostDigits = 38;
constexpr std::int64_t kMostCharacters = 4000;  // of a text that SQL Server joins without cutting

// SQL Server has other names for some of them. Of a moment only the parts that the exact mapping
// keeps.
constexpr auto kFunctions = std::to_array<FunctionRule>({
    {"abs", Arguments::Number, "abs({})"},
    {"ceiling", Arguments::Fraction, "ceiling({})"},
    {"floor", Arguments::Fraction, "floor({})"},
    {"upper", Arguments::Text, "upper({})"},
    {"ucase", Arguments::Text, "upper({})"},
    {"lower", Arguments::Text, "lower({})"},
    {"lcase", Arguments::Text, "lower({})"},
    {"ltrim", Arguments::Text, "ltrim({})"},
    {"rtrim", Arguments::Text, "rtrim({})"},
    {"left", Arguments::TextAndCounts, "left({})"},
    {"right", Arguments::TextAndCounts, "right({})"},
    {"year", Arguments::Date, "year({})"},
    {"month", Arguments::Date, "month({})"},
    {"dayofmonth", Arguments::Date, "day({})"},
    {"ifnull", Arguments::Alternatives, "coalesce({})"},
    {"coalesce", Arguments::Alternatives, "coalesce({})"},
    {"concat", Arguments::Texts, ""},
    {"if", Arguments::Choice, ""},
});

/// What a column is in an expression, all but its name.
Operand OperandOf(const ado::Column& column, bool is_exact) {
  const std::string_view type = column.server_type;
  const std::string_view word = type.substr(0, type.find_first_of("( "));
  const auto* known = std::ranges::find(kKinds, word, &KindOfType::word);
  if (known == kKinds.end() || column.kind.is_given) return {};
  Operand operand{.kind = known->kind, .digits = column.precision, .scale = column.numeric_scale};
  switch (known->kind) {
    case ValueKind::Integer:
      if (column.type == ado::DataType::UnsignedBigInt) operand.kind = ValueKind::Decimal;
      break;
    case ValueKind::Decimal:
      if (column.precision > kMostDigits) return {};  // which becomes text where needed
      break;
    case ValueKind::Text:
      if (column.defined_size > kMostCharacters) return {};
      operand.digits = static_cast<int>(column.defined_size);
      break;
    case ValueKind::Date:
      if (!is_exact) return {};
      break;
    default:
      break;
  }
  return operand;
}

bool IsText(std::string_view rest) {
  return rest.starts_with('\'') || rest.starts_with("\\'");
}

std::optional<std::vector<ExpressionToken>> TokensOf(const std::string& expression) {
  std::string_view rest = expression;
  std::vector<ExpressionToken> tokens;
  while (!rest.empty()) {
    const char first = rest.front();
    if (first == ' ') {
      rest.remove_prefix(1);
    } else if (first == '`') {
      tokens.push_back({Kind::Name, TakeQuoted(rest, '`')});
    } else if (IsText(rest)) {
      std::string text;
      if (!TakeText(rest, text)) return std::nullopt;
      tokens.push_back({Kind::Text, std::move(text)});
    } else if (std::optional<ExpressionToken> number; first >= '0' && first <= '9') {
      number = TakeNumber(rest);
      if (!number) return std::nullopt;
      tokens.push_back(*number);
    } else if (ExpressionToken word = TakeWord(rest); !word.text.empty()) {
      const bool is_character_set = word.text.starts_with('_') && IsText(rest);
      if (!is_character_set) tokens.push_back(std::move(word));
    } else {
      tokens.push_back(TakeSign(rest));
    }
  }
  return tokens;
}

std::string Concatenated(const std::vector<std::string>& texts) {
  return fmt::format("({})", fmt::join(texts, " + "));
}

std::string AsBigInt(const std::string& integer) {
  return fmt::format("convert(bigint, {})", integer);
}

/// The definition behind the column's name. The type is told, since SQL Server would choose another
/// one; a collation follows the whole.
std::string Generation(const ColumnDefinition& column, const std::string& text, bool is_stored) {
  const std::size_t end = std::min(column.type.find(" collate "), column.type.size());
  return fmt::format("as (convert({}, {}){}){}", column.type.substr(0, end), text,
                     column.type.substr(end), is_stored ? " persisted" : "");
}

}  // namespace

std::optional<std::string> ExpressionText(
    const ado::Column& column, const std::vector<ado::Column>& columns, bool is_exact,
    const std::function<std::string(std::string_view name)>& dest_name) {
  const auto operand = [&](const std::string& name) {
    const ado::Column* found = ado::FindItemOrNull(columns, name);
    if (found == nullptr) return Operand();
    Operand value = OperandOf(*found, is_exact);
    value.text = dest_name(found->name);
    return value;
  };
  const auto tokens = TokensOf(FromCatalog(column.kind.computed));
  if (!tokens) return std::nullopt;
  const std::optional<Operand> value = TranslateExpression(*tokens, {.column = operand,
                                                                     .functions = kFunctions,
                                                                     .plus_joins_texts = false,
                                                                     .join = Concatenated,
                                                                     .wide = AsBigInt});
  ado::Column stored = column;
  stored.kind.is_given = false;
  if (!value || !CanBeStoredAs(*value, OperandOf(stored, is_exact).kind)) return std::nullopt;
  return value->text;
}

void MySqlToMsSql::KeepComputed(ado::Table& tab_src, TableDefinition& table) {
  const auto dest_name = [this](std::string_view name) { return MsSqlName(DestName(name)); };
  const auto generation = [&](const ado::Column& column,
                              const ColumnDefinition& definition) -> std::optional<std::string> {
    const auto text = ExpressionText(column, tab_src.Columns(), IsExact(), dest_name);
    if (!text) return std::nullopt;
    return Generation(definition, *text, column.kind.is_persisted);
  };
  KeepComputedColumns(
      tab_src, table,
      {.server = "SQL Server",
       .is_computed = [](const ado::Column& column) { return column.kind.is_given; },
       .generation = generation});
}

}  // namespace dorvane::to_mssql
