#include "mssql/to_mysql/cures.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "endpoint/generated_columns.h"
#include "platform/text/ascii.h"

namespace dorvane::to_mysql {

namespace {

constexpr int kMostBigIntDigits = 18;

void LeaveDefaultOff(ColumnDefinition& column) {
  column.notes.push_back(
      fmt::format("the default {} of column {} was left off", column.default_clause, column.name));
  column.default_clause.clear();
}

bool HasExpression(const ColumnDefinition& column) {
  return column.default_clause.starts_with('(');
}

/// The number behind "VARCHAR(" or "DECIMAL(", 0 for any other type.
int FirstMeasure(std::string_view type, std::string_view word) {
  if (!text::EqualsIgnoringCase(type.substr(0, word.size()), word)) return 0;
  int measure = 0;
  std::from_chars(type.data() + word.size(), type.data() + type.size(), measure);
  return measure;
}

/// Defaults of TEXT and BLOB columns as expressions.
bool DefaultsAsExpressions(TableDefinition& table, const TableRefusal&) {
  bool is_changed = false;
  for (ColumnDefinition& column : table.columns) {
    if (column.default_clause.empty() || !IsLongType(column.type)) continue;
    is_changed = true;
    if (HasExpression(column)) {
      LeaveDefaultOff(column);
    } else {
      column.default_clause = "(" + column.default_clause + ")";
    }
  }
  return is_changed;
}

/// Servers before expressions call them a mistake in the syntax.
bool ExpressionsOff(TableDefinition& table, const TableRefusal&) {
  bool is_changed = false;
  for (ColumnDefinition& column : table.columns) {
    if (!HasExpression(column)) continue;
    is_changed = true;
    LeaveDefaultOff(column);
  }
  return is_changed;
}

/// The server names the column whose default it cannot take.
bool NamedDefaultOff(TableDefinition& table, const TableRefusal& refusal) {
  for (ColumnDefinition& column : table.columns) {
    if (column.default_clause.empty()) continue;
    if (!IsNamed(refusal.words, column.name)) continue;
    LeaveDefaultOff(column);
    return true;
  }
  return false;
}

/// A type that a row holds, and the one that it holds a mere reference to.
struct RowType {
  std::string_view word;
  std::string_view long_type;
};
constexpr std::array kRowTypes{RowType{"VARCHAR(", "Text"}, RowType{"VARBINARY(", "LONGBLOB"}};

const RowType* RowTypeOf(std::string_view type) {
  const auto found = std::ranges::find_if(
      kRowTypes, [&](const RowType& each) { return FirstMeasure(type, each.word) > 0; });
  return found != kRowTypes.end() ? &*found : nullptr;
}

/// The widest VARCHAR or VARBINARY leaves the row; one of a key only when no other is left.
bool WidestAsLong(TableDefinition& table, const TableRefusal& refusal) {
  const auto rank = [&](const ColumnDefinition& column) {
    const bool is_in_key = std::ranges::any_of(refusal.indexes, [&](const ado::Index& index) {
      return std::ranges::find(index.columns, column.name) != index.columns.end();
    });
    const RowType* type = RowTypeOf(column.type);
    const bool is_sized = type != nullptr && column.generation.empty();
    const int width = is_sized ? FirstMeasure(column.type, type->word) : 0;
    return std::pair(width > 0 && !is_in_key, width);
  };
  const auto widest = std::ranges::max_element(table.columns, {}, rank);
  if (widest == table.columns.end() || rank(*widest).second == 0) return false;
  widest->type = RowTypeOf(widest->type)->long_type;
  widest->notes.push_back(
      fmt::format("column {} became {}, since the row was too wide", widest->name, widest->type));
  return true;
}

/// MySQL counts in integers only.
bool IdentityAsInteger(TableDefinition& table, const TableRefusal&) {
  const auto identity = std::ranges::find(table.columns, true, &ColumnDefinition::is_identity);
  if (identity == table.columns.end()) return false;
  const int precision = FirstMeasure(identity->type, "DECIMAL(");
  if (precision == 0) return false;
  if (precision <= kMostBigIntDigits) {
    identity->notes.push_back(
        fmt::format("column {} became BIGINT, since MySQL counts in integers", identity->name));
    identity->type = "BIGINT";
    return true;
  }
  identity->notes.push_back(
      fmt::format("column {} does not count by itself any more, since {} is too large for it",
                  identity->name, identity->type));
  identity->attributes.clear();
  identity->is_identity = false;
  return true;
}

/// The digits stay, as text where a number cannot have them.
bool ShortenFineDecimals(TableDefinition& table, const TableRefusal& refusal) {
  bool is_changed = false;
  for (ColumnDefinition& column : table.columns) {
    int precision = 0;
    int scale = 0;
    if (std::sscanf(column.type.c_str(), "DECIMAL(%d,%d)", &precision, &scale) != 2) continue;
    if (scale <= kMostDecimalScale) continue;
    is_changed = true;
    column.facts.is_text = refusal.has_fine_decimals(column.name);
    // Beside its digits a number has a sign, a point and perhaps a zero in front of it.
    column.type = column.facts.is_text
                      ? fmt::format("VARCHAR({})", precision + 3)
                      : fmt::format("DECIMAL({},{})", precision, kMostDecimalScale);
    column.notes.push_back(
        fmt::format("column {} became {}, since MySQL's DECIMAL has {} digits "
                    "behind the point",
                    column.name, column.type, kMostDecimalScale));
  }
  return is_changed;
}

/// A server that takes no table without a primary key gets it at once.
bool PrimaryKeyInside(TableDefinition& table, const TableRefusal& refusal) {
  if (refusal.primary_key.empty() || !table.constraints.empty()) return false;
  table.constraints = "," + std::string(refusal.primary_key);
  return true;
}

struct Cure {
  std::int32_t native_error;
  bool (*apply)(TableDefinition& table, const TableRefusal& refusal);
};

constexpr std::array kCures{
    Cure{1101, DefaultsAsExpressions},  // a default on TEXT or BLOB
    Cure{1064, ExpressionsOff},         // syntax
    Cure{1067, NamedDefaultOff},        // an invalid default
    Cure{1118, WidestAsLong},           // a row too wide
    Cure{1063, IdentityAsInteger},      // auto_increment of a DECIMAL
    Cure{1425, ShortenFineDecimals},    // a scale above 30
    Cure{3750, PrimaryKeyInside},       // a table without a primary key
};

}  // namespace

bool IsLongType(std::string_view type) {
  constexpr std::array<std::string_view, 4> kLongTypes{"Text", "LONGTEXT", "BLOB", "LONGBLOB"};
  return std::ranges::find(kLongTypes, type) != kLongTypes.end();
}

bool CureDefinition(TableDefinition& table, const TableRefusal& refusal) {
  const auto* cure = std::ranges::find(kCures, refusal.native_error, &Cure::native_error);
  return cure != kCures.end() && cure->apply(table, refusal);
}

}  // namespace dorvane::to_mysql
