#pragma once

#include "sandbox/catalog/result_columns.h"
#include "sandbox/catalog/session.h"
#include "sandbox/catalog/system_views.h"

// What the views of sys and INFORMATION_SCHEMA are made of.
namespace sandbox::sys {

/// A view whose rows show what `items(session, link)` returns.
template <typename Item, typename Items>
SystemView MakeView(const char* schema, const char* name, const ShownColumns<Item>& columns,
                    Items items) {
  return {schema, name, InfosOf(columns), [columns, items](Session& session, DatabaseLink& link) {
            return RowsOf(columns, items(session, link));
          }};
}

/// The same of the schema sys.
template <typename Item, typename Items>
SystemView MakeView(const char* name, const ShownColumns<Item>& columns, Items items) {
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
ShownColumns<Object> ObjectColumns();

/// The number of an index within its table.
inline int IndexId(const IndexDef& index) {
  return index.clustered ? 1 : index.id + 1;
}

}  // namespace sandbox::sys
