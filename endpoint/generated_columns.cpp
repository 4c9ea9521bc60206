#include "endpoint/generated_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "endpoint/conversion.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

/// Makes a column one that is filled with the source's values, and notes why.
void HoldValues(ColumnDefinition& column, std::string_view why) {
  column.generation.clear();
  column.notes.push_back(
      fmt::format("column {} holds its values and is not computed: {}", column.name, why));
}

bool IsOfPrimaryKey(const std::vector<ado::Index>& indexes, const std::string& column) {
  return std::ranges::any_of(indexes, [&column](const ado::Index& index) {
    return index.primary_key && std::ranges::find(index.columns, column) != index.columns.end();
  });
}

}  // namespace

void KeepComputedColumns(ado::Table& tab_src, TableDefinition& table,
                         const ComputedColumnRules& rules) {
  for (const ado::Column& column : tab_src.Columns()) {
    if (!rules.is_computed(column)) continue;
    ColumnDefinition& definition = *table.Find(column.name);
    if (IsOfPrimaryKey(tab_src.Indexes(), column.name)) {
      HoldValues(definition, "it is of the primary key");
    } else if (std::optional<std::string> generation = rules.generation(column, definition)) {
      definition.generation = std::move(*generation);
    } else {
      HoldValues(definition,
                 fmt::format("{} may compute {} otherwise", rules.server, column.kind.computed));
    }
  }
}

bool HoldRefusedValues(TableDefinition& table, std::string_view server, std::string_view words) {
  const auto is_named = [words](const ColumnDefinition& column) {
    return IsNamed(words, column.name, "'`");
  };
  // A server may name the column that an expression must not have in it.
  const auto is_of_named = [&](const ColumnDefinition& column) {
    return std::ranges::any_of(table.columns, [&](const ColumnDefinition& other) {
      return is_named(other) && IsNamed(column.generation, other.name, "`");
    });
  };
  std::vector<ColumnDefinition*> generated;
  for (ColumnDefinition& column : table.columns) {
    if (!column.generation.empty()) generated.push_back(&column);
  }
  const auto meant = [&generated](const auto& is_meant) {
    std::vector<ColumnDefinition*> columns;
    std::ranges::copy_if(generated, std::back_inserter(columns),
                         [&](const ColumnDefinition* column) { return is_meant(*column); });
    return columns;
  };
  std::vector<ColumnDefinition*> refused = meant(is_named);
  if (refused.empty()) refused = meant(is_of_named);
  if (refused.empty()) refused = generated;
  for (ColumnDefinition* column : refused) {
    HoldValues(*column, fmt::format("{} refused: {}", server, words));
  }
  return !refused.empty();
}

bool IsNamed(std::string_view words, const std::string& name, std::string_view quotes) {
  std::string underscored = name;
  std::ranges::replace(underscored, ' ', '_');
  return std::ranges::any_of(quotes, [&](char quote) {
    return words.find(quote + name + quote) != std::string_view::npos ||
           words.find(quote + underscored + quote) != std::string_view::npos;
  });
}

std::set<std::string> Conversion::ColumnsLeftOut(const TableDefinition& table, bool is_new) {
  std::set<std::string> names;
  if (is_new) {
    for (const ColumnDefinition& column : table.columns) {
      if (!column.generation.empty()) names.insert(column.name);
    }
    return names;
  }
  const std::vector<ado::Column> dest_columns =
      OnDestination(*destination_, [&] { return destination_->Columns(table.dest_name); });
  for (const ado::Column& dest_column : dest_columns) {
    if (!dest_column.kind.is_given) continue;
    for (const ColumnDefinition& column : table.columns) {
      if (!text::EqualsIgnoringCase(DestName(column.name), dest_column.name)) continue;
      names.insert(column.name);
      if (!column.generation.empty()) continue;
      host_.Inform(
          fmt::format("Table {}: column {} was left out: the destination itself gives its "
                      "values",
                      table.name.Text(), column.name));
    }
  }
  return names;
}

std::string Conversion::SelectList(const TableDefinition& table,
                                   const std::set<std::string>& left_out) const {
  const auto is_plain = [](const ColumnDefinition& column) {
    return !column.is_invisible && column.read_as.empty();
  };
  if (left_out.empty() && std::ranges::all_of(table.columns, is_plain)) return "*";
  std::string list;
  for (const ColumnDefinition& column : table.columns) {
    if (left_out.contains(column.name)) continue;
    if (!list.empty()) list += ", ";
    if (!column.read_as.empty()) list += column.read_as + " as ";
    list += SourceName(column.name);
  }
  return list;
}

}  // namespace dorvane
