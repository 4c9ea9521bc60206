#include "sandbox/storage/catalog.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "sandbox/text/text_order.h"

namespace sandbox {

namespace {

// Object ids look like the server's own: large, positive and well apart.
constexpr int kFirstObjectId = 245575913;
constexpr int kObjectIdStep = 16000057;
constexpr std::int64_t kObjectIdRange = 2147483647;

template <typename Range>
auto FindNamed(const Range& range, std::string_view name) -> decltype(&*range.begin()) {
  for (const auto& item : range) {
    if (SameName(item.name, name)) return &item;
  }
  return nullptr;
}

// Of the objects by their ids the one with that schema and name.
template <typename Objects>
auto FindIn(const Objects& objects, std::string_view schema, std::string_view name)
    -> decltype(&objects.begin()->second) {
  for (const auto& [id, object] : objects) {
    if (SameName(object.name, name) && SameName(object.schema, schema)) return &object;
  }
  return nullptr;
}

}  // namespace

const ColumnDef* TableDef::FindColumn(std::string_view column) const {
  return FindNamed(columns, column);
}

const ColumnDef& TableDef::Column(int column_id) const {
  for (const ColumnDef& column : columns) {
    if (column.id == column_id) return column;
  }
  throw std::logic_error("no such column id in " + name);
}

const IndexDef* TableDef::FindIndex(std::string_view index) const {
  return FindNamed(indexes, index);
}

const IndexDef* TableDef::PrimaryKey() const {
  const auto found =
      std::find_if(indexes.begin(), indexes.end(), [](const IndexDef& i) { return i.primary; });
  return found == indexes.end() ? nullptr : &*found;
}

const IndexDef* TableDef::UniqueIndexOn(const std::vector<int>& column_ids) const {
  const auto found = std::ranges::find_if(indexes, [&](const IndexDef& index) {
    return index.unique &&
           std::ranges::is_permutation(index.columns, column_ids, {}, &IndexColumn::column_id);
  });
  return found == indexes.end() ? nullptr : &*found;
}

const ColumnDef* TableDef::IdentityColumn() const {
  const auto found =
      std::find_if(columns.begin(), columns.end(), [](const ColumnDef& c) { return c.identity; });
  return found == columns.end() ? nullptr : &*found;
}

std::string TableDef::StoredName() const {
  return fmt::format("t{}", id);
}

std::string TableDef::StoredIndexName(const IndexDef& index) const {
  return fmt::format("i{}_{}", id, index.id);
}

std::string TableDef::StoredColumn(int column_id) {
  return fmt::format("c{}", column_id);
}

Catalog::Catalog() {
  int id = 0;
  for (const char* name : {kDefaultSchema, "guest", "INFORMATION_SCHEMA", "sys"}) {
    schemas.push_back({++id, name, name});
    users.push_back({id, name, "", name});
  }
}

int Catalog::NewObjectId() {
  const std::int64_t next =
      last_object_id == 0 ? kFirstObjectId : std::int64_t{last_object_id} + kObjectIdStep;
  last_object_id = static_cast<int>(next % kObjectIdRange);
  return last_object_id;
}

const SchemaDef* Catalog::FindSchema(std::string_view name) const {
  return FindNamed(schemas, name);
}

const AliasTypeDef* Catalog::FindType(std::string_view schema, std::string_view name) const {
  for (const AliasTypeDef& type : types) {
    if (SameName(type.name, name) && SameName(type.schema, schema)) return &type;
  }
  return nullptr;
}

const TableDef* Catalog::FindTable(std::string_view schema, std::string_view name) const {
  return FindIn(tables, schema, name);
}

const ViewDef* Catalog::FindView(std::string_view schema, std::string_view name) const {
  return FindIn(views, schema, name);
}

ConstraintRef Catalog::FindConstraint(std::string_view schema, std::string_view name) const {
  using Kind = ConstraintRef::Kind;
  for (const auto& [id, table] : tables) {
    if (!SameName(table.schema, schema)) continue;
    for (const ColumnDef& column : table.columns) {
      if (column.default_id != 0 && SameName(column.default_name, name)) {
        return {&table, Kind::Default, column.id};
      }
    }
    for (const IndexDef& index : table.indexes) {
      if (index.IsConstraint() && SameName(index.name, name)) {
        return {&table, Kind::Index, index.id};
      }
    }
    if (const auto* key = FindNamed(table.foreign_keys, name)) {
      return {&table, Kind::ForeignKey, key->id};
    }
    if (const auto* check = FindNamed(table.checks, name)) return {&table, Kind::Check, check->id};
  }
  return {};
}

bool Catalog::HasObject(std::string_view schema, std::string_view name) const {
  return FindTable(schema, name) || FindView(schema, name) || FindConstraint(schema, name).table;
}

std::vector<const TableDef*> Catalog::Sorted() const {
  std::vector<const TableDef*> sorted;
  for (const auto& [id, table] : tables) {
    if (!table.IsTemporary()) sorted.push_back(&table);
  }
  std::sort(sorted.begin(), sorted.end(), [](const TableDef* a, const TableDef* b) {
    const int schemas_differ = CompareText(a->schema, b->schema);
    return schemas_differ ? schemas_differ < 0 : CompareText(a->name, b->name) < 0;
  });
  return sorted;
}

}  // namespace sandbox
