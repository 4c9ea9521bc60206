#pragma once

#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "sandbox/catalog/session.h"
#include "sandbox/catalog/system_views.h"
#include "sandbox/values/ticks.h"
#include "sandbox/values/type_rules.h"

// What the views of sys and INFORMATION_SCHEMA are made of.
namespace sandbox::sys {

const TypeInfo kName = NVarChar(128);
const TypeInfo kInt = IntType();
const TypeInfo kBit = BitType();
const TypeInfo kTiny = TinyIntType();
const TypeInfo kSmall = SmallIntType();
const TypeInfo kKind{SqlType::Char, 2, 0, 0};
const TypeInfo kTime = DateTimeType();
const TypeInfo kText = NVarChar(4000);
const TypeInfo kVariant{SqlType::Variant, 8000, 0, 0};

inline Value Int(std::int64_t number) {
  return number;
}
inline Value Word(const char* text) {
  return std::string(text);
}
inline Value Time(std::int64_t ticks) {
  return DateTimeValue{static_cast<std::int32_t>(ticks / kTicksPerDay), ticks % kTicksPerDay, 0};
}
inline Value TextOrNull(const std::string& text) {
  return text.empty() ? Value() : Value(text);
}

/// A view's column: what it shows of an item, of which each row shows one.
template <class Item>
struct ViewColumn {
  const char* name;
  TypeInfo type;
  Value (*value)(const Item& item);
};

/// A column that shows the same in every row.
template <class Item>
ViewColumn<Item> Never(const char* name) {
  return {name, kBit, [](const Item&) { return Value(false); }};
}

template <class Item>
using ViewColumns = std::vector<ViewColumn<Item>>;

template <class Item>
ViewColumns<Item> operator+(ViewColumns<Item> columns, const ViewColumns<Item>& more) {
  columns.insert(columns.end(), more.begin(), more.end());
  return columns;
}

/// A view whose rows show what `items(session, link)` returns.
template <class Item, class Items>
SystemView MakeView(const char* schema, const char* name, const ViewColumns<Item>& columns,
                    Items items) {
  SystemView view{schema, name, {}, {}};
  for (const ViewColumn<Item>& column : columns) view.columns.push_back({column.name, column.type});
  view.fill = [columns, items](Session& session, DatabaseLink& link, SystemView::Rows& rows) {
    for (const Item& item : items(session, link)) {
      std::vector<Value>& row = rows.emplace_back();
      for (const ViewColumn<Item>& column : columns) row.push_back(column.value(item));
    }
  };
  return view;
}

/// The same of the schema sys.
template <class Item, class Items>
SystemView MakeView(const char* name, const ViewColumns<Item>& columns, Items items) {
  return MakeView("sys", name, columns, items);
}

/// One object of any kind, as sys.objects lists it. What it is besides that is one of the pointers.
struct Object {
  std::string name;
  int schema = 0;
  int id = 0;
  int parent = 0;
  const char* kind = "";
  const char* description = "";
  std::int64_t created = 0;
  const Catalog* catalog = nullptr;
  const TableDef* table = nullptr;  // itself or its parent
  const ColumnDef* column = nullptr;
  const IndexDef* index = nullptr;
  const ForeignKeyDef* foreign_key = nullptr;
  const CheckDef* check = nullptr;
};

/// Every object; those of one kind ("U ") alone unless it is empty.
std::vector<Object> Objects(DatabaseLink& link, std::string_view kind = "");

/// The columns that every view of objects has.
ViewColumns<Object> ObjectColumns();

/// The number of an index within its table.
inline int IndexId(const IndexDef& index) {
  return index.clustered ? 1 : index.id + 1;
}

}  // namespace sandbox::sys
