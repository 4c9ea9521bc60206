#include "mssql/to_mysql/computed_columns.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "endpoint/generated_columns.h"
#include "endpoint/generated_expression.h"
#include "endpoint/names.h"
#include "mssql/to_mysql/check_text.h"
#include "mssql/to_mysql/conversion.h"
#include "platform/ado/items.h"

namespace dorvane::to_mysql {

namespace {

using Kind = ExpressionToken::Kind;

struct KindOfType {
  std::string_view server_type;
  ValueKind kind;
  int digits = 0;  // 0: the column's own
};
constexpr auto kKinds = std::to_array<KindOfType>({
    {"bit", ValueKind::Integer, 1},
    {"tinyint", ValueKind::Integer, 3},
    {"smallint", ValueKind::Integer, 5},
    {"int", ValueKind::Integer, 10},
    {"bigint", ValueKind::Integer, 19},
    {"decimal", ValueKind::Decimal},
    {"numeric", ValueKind::Decimal},
    {"money", ValueKind::Money},
    {"smallmoney", ValueKind::Money},
    {"float", ValueKind::Double},
    {"varchar", ValueKind::Text},
    {"nvarchar", ValueKind::Text},
    {"date", ValueKind::Date},
    {"datetime", ValueKind::Date},
    {"datetime2", ValueKind::Date},
    {"smalldatetime", ValueKind::Date},
});

constexpr std::int64_t kMostDeclared = 8000;  // a larger size is that of (max)

// Of a moment only the parts that no mapping touches; MySQL's have no sign, and neither have their
// differences.
constexpr auto kFunctions = std::to_array<FunctionRule>({
    {"abs", Arguments::Number, "abs({})"},
    {"ceiling", Arguments::Fraction, "ceiling({})"},
    {"floor", Arguments::Fraction, "floor({})"},
    {"upper", Arguments::Text, "upper({})"},
    {"lower", Arguments::Text, "lower({})"},
    {"ltrim", Arguments::Text, "ltrim({})"},
    {"rtrim", Arguments::Text, "rtrim({})"},
    {"left", Arguments::TextAndCounts, "left({})"},
    {"right", Arguments::TextAndCounts, "right({})"},
    {"substring", Arguments::TextAndCounts, "substring({})"},
    {"year", Arguments::Date, "cast(year({}) as signed)"},
    {"month", Arguments::Date, "cast(month({}) as signed)"},
    {"day", Arguments::Date, "cast(day({}) as signed)"},
    {"isnull", Arguments::Replacement, "coalesce({})"},
    {"coalesce", Arguments::Alternatives, "coalesce({})"},
});

/// What a column is in an expression, all but its name.
Operand OperandOf(const ado::Column& column) {
  const auto* known = std::ranges::find(kKinds, column.server_type, &KindOfType::server_type);
  // The server computes no column of a computed one either.
  if (known == kKinds.end() || !column.kind.computed.empty()) return {};
  Operand operand{.kind = known->kind};
  if (known->kind == ValueKind::Text) {
    if (column.defined_size > kMostDeclared) return {};
    operand.digits = static_cast<int>(column.defined_size);
  } else {
    operand.digits = known->digits != 0 ? known->digits : column.precision;
    operand.scale = column.numeric_scale;
  }
  return operand;
}

/// "datepart(year, x)" is "year(x)".
void ShortenDatePart(std::vector<ExpressionToken>& tokens) {
  constexpr std::array<std::string_view, 3> kParts = {"year", "month", "day"};
  const std::size_t size = tokens.size();
  if (size < 4 || tokens[size - 1].text != "," || tokens[size - 3].text != "(") return;
  const bool is_part = std::ranges::find(kParts, tokens[size - 2].text) != kParts.end();
  if (!is_part || tokens[size - 4].text != "datepart") return;
  tokens[size - 4].text = tokens[size - 2].text;
  tokens.resize(size - 2);
}

std::optional<std::vector<ExpressionToken>> TokensOf(std::string_view rest) {
  std::vector<ExpressionToken> tokens;
  while (!rest.empty()) {
    const char first = rest.front();
    if (first == ' ') {
      rest.remove_prefix(1);
    } else if (first == '[') {
      tokens.push_back({Kind::Name, TakeQuoted(rest, ']')});
    } else if (first == '\'' || rest.starts_with("N'")) {
      rest.remove_prefix(first == 'N' ? 1 : 0);
      const std::optional<std::string> text = TakeText(rest);
      if (!text) return std::nullopt;
      tokens.push_back({Kind::Text, *text});
    } else if (std::optional<ExpressionToken> number; first >= '0' && first <= '9') {
      number = TakeNumber(rest);
      if (!number) return std::nullopt;
      tokens.push_back(*number);
    } else if (ExpressionToken word = TakeWord(rest); !word.text.empty()) {
      tokens.push_back(std::move(word));
    } else {
      tokens.push_back(TakeSign(rest));
      ShortenDatePart(tokens);
    }
  }
  return tokens;
}

std::string Concatenated(const std::vector<std::string>& texts) {
  return fmt::format("concat({})", fmt::join(texts, ", "));
}

/// MySQL's are of 64 bits by themselves.
std::string AsItIs(const std::string& integer) {
  return integer;
}

}  // namespace

std::optional<std::string> ExpressionText(
    const ado::Column& column, const std::vector<ado::Column>& columns, bool is_exact,
    const std::function<std::string(std::string_view name)>& dest_name) {
  const auto operand = [&](const std::string& name) {
    const ado::Column* found = ado::FindItemOrNull(columns, name);
    if (found == nullptr) return Operand();
    Operand value = OperandOf(*found);
    value.text = dest_name(found->name);
    // Differences of unsigned numbers have no sign there.
    if (is_exact && found->server_type == "tinyint") {
      value.text = fmt::format("cast({} as signed)", value.text);
    }
    return value;
  };
  const auto tokens = TokensOf(column.kind.computed);
  if (!tokens) return std::nullopt;
  const std::optional<Operand> value = TranslateExpression(*tokens, {.column = operand,
                                                                     .functions = kFunctions,
                                                                     .plus_joins_texts = true,
                                                                     .join = Concatenated,
                                                                     .wide = AsItIs});
  ado::Column stored = column;
  stored.kind.computed.clear();
  if (!value || !CanBeStoredAs(*value, OperandOf(stored).kind)) return std::nullopt;
  return value->text;
}

void MsSqlToMySql::KeepComputed(ado::Table& tab_src, TableDefinition& table) {
  const auto dest_name = [this](std::string_view name) { return MySqlName(DestName(name)); };
  const auto generation = [&](const ado::Column& column,
                              const ColumnDefinition& definition) -> std::optional<std::string> {
    const auto text = ExpressionText(column, tab_src.Columns(), IsExact(), dest_name);
    if (!text) return std::nullopt;
    // What the source does not store is not stored there, and takes indexes all the same.
    return fmt::format("{}{} GENERATED ALWAYS AS ({}) {}", definition.type, definition.attributes,
                       *text, column.kind.is_persisted ? "STORED" : "VIRTUAL");
  };
  KeepComputedColumns(
      tab_src, table,
      {.server = "MySQL",
       .is_computed = [](const ado::Column& column) { return !column.kind.computed.empty(); },
       .generation = generation});
}

}  // namespace dorvane::to_mysql
