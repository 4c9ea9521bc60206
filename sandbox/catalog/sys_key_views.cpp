#include <algorithm>

#include "sandbox/catalog/sys_view_parts.h"

namespace sandbox {
namespace sys {

namespace {

// An index, or what a table without a clustered one has in its place.
struct Index {
  int table;
  std::optional<IndexDef> def;  // nothing: the heap
};

std::vector<Index> Indexes(Session&, DatabaseLink& link) {
  std::vector<Index> indexes;
  for (const auto& [id, table] : link.Definitions().tables) {
    if (table.IsTemporary()) continue;
    const bool clustered = std::any_of(table.indexes.begin(), table.indexes.end(),
                                       [](const IndexDef& index) { return index.clustered; });
    if (!clustered) indexes.push_back({id, std::nullopt});
    for (const IndexDef& index : table.indexes) indexes.push_back({id, index});
  }
  return indexes;
}

ShownColumns<Index> OfIndexes() {
  return {
      {"object_id", kInt, [](const Index& i) { return Int(i.table); }},
      {"name", kName, [](const Index& i) { return i.def ? Value(i.def->name) : Value(); }},
      {"index_id", kInt, [](const Index& i) { return Int(i.def ? IndexId(*i.def) : 0); }},
      {"type", kTiny, [](const Index& i) { return Int(!i.def             ? 0
                                                      : i.def->clustered ? 1
                                                                         : 2); }},
      {"type_desc", kName,
       [](const Index& i) {
         return Word(!i.def ? "HEAP" : i.def->clustered ? "CLUSTERED" : "NONCLUSTERED");
       }},
      {"is_unique", kBit, [](const Index& i) { return Value(i.def && i.def->unique); }},
      {"is_primary_key", kBit, [](const Index& i) { return Value(i.def && i.def->primary); }},
      {"is_unique_constraint", kBit,
       [](const Index& i) { return Value(i.def && i.def->IsConstraint() && !i.def->primary); }},
      Never<Index>("is_padded"),
      {"is_disabled", kBit, [](const Index& i) { return Value(i.def && i.def->disabled); }},
      Never<Index>("is_hypothetical"),
      {"filter_definition", kText,
       [](const Index& i) { return i.def ? TextOrNull(i.def->filter) : Value(); }}};
}

struct KeyColumn {
  int table;
  int index;
  int ordinal;  // within the key; 0: included
  int column;
  bool descending;
};

std::vector<KeyColumn> IndexColumns(Session&, DatabaseLink& link) {
  std::vector<KeyColumn> columns;
  for (const auto& [id, table] : link.Definitions().tables) {
    if (table.IsTemporary()) continue;
    for (const IndexDef& index : table.indexes) {
      int ordinal = 0;
      for (const IndexColumn& column : index.columns)
        columns.push_back({id, IndexId(index), ++ordinal, column.column_id, column.descending});
      for (const int column : index.included)
        columns.push_back({id, IndexId(index), 0, column, false});
    }
  }
  return columns;
}

ShownColumns<KeyColumn> OfIndexColumns() {
  return {{"object_id", kInt, [](const KeyColumn& c) { return Int(c.table); }},
          {"index_id", kInt, [](const KeyColumn& c) { return Int(c.index); }},
          {"column_id", kInt, [](const KeyColumn& c) { return Int(c.column); }},
          {"key_ordinal", kTiny, [](const KeyColumn& c) { return Int(c.ordinal); }},
          {"is_descending_key", kBit, [](const KeyColumn& c) { return Value(c.descending); }}};
}

struct KeyPair {
  const TableDef* table;
  const ForeignKeyDef* key;
  std::size_t i;
};

std::vector<KeyPair> KeyPairs(Session&, DatabaseLink& link) {
  std::vector<KeyPair> pairs;
  for (const auto& [id, table] : link.Definitions().tables) {
    if (table.IsTemporary()) continue;
    for (const ForeignKeyDef& key : table.foreign_keys) {
      for (std::size_t i = 0; i < key.columns.size(); ++i) pairs.push_back({&table, &key, i});
    }
  }
  return pairs;
}

ShownColumns<KeyPair> OfKeyPairs() {
  return {{"constraint_object_id", kInt, [](const KeyPair& p) { return Int(p.key->id); }},
          {"constraint_column_id", kInt,
           [](const KeyPair& p) { return Int(static_cast<std::int64_t>(p.i) + 1); }},
          {"parent_object_id", kInt, [](const KeyPair& p) { return Int(p.table->id); }},
          {"parent_column_id", kInt, [](const KeyPair& p) { return Int(p.key->columns[p.i]); }},
          {"referenced_object_id", kInt, [](const KeyPair& p) { return Int(p.key->parent_table); }},
          {"referenced_column_id", kInt,
           [](const KeyPair& p) { return Int(p.key->parent_columns[p.i]); }}};
}

// Names that the server makes begin with the constraint's kind and two underlines.
Shown<Object> SystemNamed() {
  return {"is_system_named", kBit, [](const Object& o) {
            return Value(o.name.size() > 4 && std::string_view(o.name).substr(2, 2) == "__");
          }};
}

ShownColumns<Object> OfForeignKeys() {
  return {
      {"referenced_object_id", kInt,
       [](const Object& o) { return Int(o.foreign_key->parent_table); }},
      {"is_disabled", kBit, [](const Object& o) { return Value(o.foreign_key->disabled); }},
      {"is_not_trusted", kBit, [](const Object& o) { return Value(o.foreign_key->not_trusted); }},
      {"delete_referential_action", kTiny,
       [](const Object& o) { return Int(static_cast<int>(o.foreign_key->on_delete)); }},
      {"update_referential_action", kTiny,
       [](const Object& o) { return Int(static_cast<int>(o.foreign_key->on_update)); }},
      SystemNamed()};
}

ShownColumns<Object> OfChecks() {
  return {{"is_disabled", kBit, [](const Object& o) { return Value(o.check->disabled); }},
          {"is_not_trusted", kBit, [](const Object& o) { return Value(o.check->not_trusted); }},
          {"parent_column_id", kInt, [](const Object& o) { return Int(o.check->column_id); }},
          {"definition", kText, [](const Object& o) { return Value(o.check->text); }},
          SystemNamed()};
}

ShownColumns<Object> OfDefaults() {
  return {{"parent_column_id", kInt, [](const Object& o) { return Int(o.column->id); }},
          {"definition", kText, [](const Object& o) { return Value(o.column->default_text); }},
          SystemNamed()};
}

auto ObjectsWith(bool (*wanted)(const Object&)) {
  return [wanted](Session&, DatabaseLink& link) {
    std::vector<Object> objects = Objects(link);
    std::erase_if(objects, [&](const Object& object) { return !wanted(object); });
    return objects;
  };
}

}  // namespace
}  // namespace sys

std::vector<SystemView> SysKeyViews() {
  using namespace sys;
  return {MakeView("indexes", OfIndexes(), Indexes),
          MakeView("index_columns", OfIndexColumns(), IndexColumns),
          MakeView("foreign_keys", ObjectColumns() + OfForeignKeys(),
                   ObjectsWith([](const Object& o) { return o.foreign_key != nullptr; })),
          MakeView("foreign_key_columns", OfKeyPairs(), KeyPairs),
          MakeView("default_constraints", ObjectColumns() + OfDefaults(),
                   ObjectsWith([](const Object& o) { return o.column != nullptr; })),
          MakeView("check_constraints", ObjectColumns() + OfChecks(),
                   ObjectsWith([](const Object& o) { return o.check != nullptr; }))};
}

}  // namespace sandbox
