#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "sandbox/values/type_rules.h"
#include "sandbox/values/types.h"

// What the views and the procedures of the catalog show: tables whose columns have their name,
// their type and what they show of an item in one place.
namespace sandbox::sys {

const TypeInfo kName = NVarChar(128);
const TypeInfo kInt = IntType();
const TypeInfo kBit = BitType();
const TypeInfo kTiny = TinyIntType();
const TypeInfo kSmall = SmallIntType();
const TypeInfo kKind{SqlType::Char, 2, 0, 0};
const TypeInfo kText = NVarChar(4000);
const TypeInfo kRemarks = VarChar(254);
const TypeInfo kVariant{SqlType::Variant, 8000, 0, 0};

inline Value Int(std::int64_t number) {
  return number;
}
inline Value Word(const char* text) {
  return std::string(text);
}
inline Value TextOrNull(const std::string& text) {
  return text.empty() ? Value() : Value(text);
}

/// A column: what it shows of an item, of which each row shows one.
template <typename Item>
struct Shown {
  const char* name;
  TypeInfo type;
  Value (*value)(const Item& item);
};

template <typename Item>
using ShownColumns = std::vector<Shown<Item>>;

template <typename Item>
ShownColumns<Item> operator+(ShownColumns<Item> columns, const ShownColumns<Item>& more) {
  columns.insert(columns.end(), more.begin(), more.end());
  return columns;
}

/// Columns that show the same in every row: 0 as a bit, NULL.
template <typename Item>
Shown<Item> Never(const char* name) {
  return {name, kBit, [](const Item&) { return Value(false); }};
}
template <typename Item>
Shown<Item> Null(const char* name, const TypeInfo& type) {
  return {name, type, [](const Item&) { return Value(); }};
}

using Rows = std::vector<std::vector<Value>>;

template <typename Item>
std::vector<ColumnInfo> InfosOf(const ShownColumns<Item>& columns) {
  std::vector<ColumnInfo> infos;
  for (const Shown<Item>& column : columns) infos.push_back({column.name, column.type});
  return infos;
}

template <typename Item, typename Items>
Rows RowsOf(const ShownColumns<Item>& columns, const Items& items) {
  Rows rows;
  for (const Item& item : items) {
    std::vector<Value>& row = rows.emplace_back();
    for (const Shown<Item>& column : columns) row.push_back(column.value(item));
  }
  return rows;
}

}  // namespace sandbox::sys
