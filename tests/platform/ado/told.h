#pragma once

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <string>
#include <vector>

#include "platform/ado/provider.h"

namespace dorvane::ado {

/// What the catalog tells of a thing, all in one line.
inline std::string Told(const Column& c) {
  return fmt::format("{} type {} size {} {}.{} attributes {} default {} {}", c.name,
                     static_cast<int>(c.type), c.defined_size, c.precision, c.numeric_scale,
                     c.attributes, c.default_value.value_or("none"), c.other_default);
}

/// As in "pk primary unique (b,a)".
inline std::string Told(const Index& i) {
  return fmt::format("{}{}{} ({})", i.name, i.primary_key ? " primary" : "",
                     i.unique ? " unique" : "", fmt::join(i.columns, ","));
}

/// As in "fk foreign (a=x b=y) to parent, cascade on delete, none on update".
inline std::string Told(const Key& k) {
  constexpr std::array kTypes{"none", "primary", "foreign", "unique"};
  constexpr std::array kRules{"none", "cascade", "set null", "set default"};
  std::string columns;
  for (const KeyColumn& each : k.columns) {
    columns += (columns.empty() ? "" : " ") + each.name;
    if (!each.related_column.empty()) columns += "=" + each.related_column;
  }
  const std::string start =
      fmt::format("{} {} ({})", k.name, kTypes.at(static_cast<std::size_t>(k.type)), columns);
  if (k.type != KeyType::Foreign) return start;
  return fmt::format("{} to {}, {} on delete, {} on update", start, k.related_table.Text(),
                     kRules.at(static_cast<std::size_t>(k.delete_rule)),
                     kRules.at(static_cast<std::size_t>(k.update_rule)));
}

template <typename Item>
std::vector<std::string> Told(const std::vector<Item>& items) {
  std::vector<std::string> texts;
  for (const Item& item : items) texts.push_back(Told(item));
  return texts;
}

}  // namespace dorvane::ado
