#include "sandbox/catalog/sys_view_parts.h"

namespace sandbox {
namespace sys {

namespace {

void AddPartsOf(const TableDef& table, const Object& part_of_table, std::vector<Object>& objects) {
  const auto add = [&](const std::string& name, int id, const char* kind,
                       const char* description) -> Object& {
    Object& object = objects.emplace_back(part_of_table);
    object.name = name;
    object.id = id;
    object.kind = kind;
    object.description = description;
    return object;
  };
  for (const IndexDef& index : table.indexes) {
    if (!index.IsConstraint()) continue;
    add(index.name, index.object_id, index.primary ? "PK" : "UQ",
        index.primary ? "PRIMARY_KEY_CONSTRAINT" : "UNIQUE_CONSTRAINT")
        .index = &index;
  }
  for (const ForeignKeyDef& key : table.foreign_keys)
    add(key.name, key.id, "F ", "FOREIGN_KEY_CONSTRAINT").foreign_key = &key;
  for (const CheckDef& check : table.checks)
    add(check.name, check.id, "C ", "CHECK_CONSTRAINT").check = &check;
  for (const ColumnDef& column : table.columns) {
    if (column.default_id != 0)
      add(column.default_name, column.default_id, "D ", "DEFAULT_CONSTRAINT").column = &column;
  }
}

bool IsTemporal(const TableDef& table) {
  return std::any_of(table.columns.begin(), table.columns.end(),
                     [](const ColumnDef& column) { return column.generated != Generated::No; });
}

// What the oldest catalog's status says of an object's kind, in its lowest four bits.
std::int64_t OldStatus(std::string_view kind) {
  return kind == "U " ? 3 : kind == "V " ? 2 : kind == "D " ? 6 : 11;
}

ShownColumns<Object> OldColumns() {
  return {{"name", kName, [](const Object& o) { return Value(o.name); }},
          {"id", kInt, [](const Object& o) { return Int(o.id); }},
          {"xtype", kKind, [](const Object& o) { return Word(o.kind); }},
          {"uid", kSmall, [](const Object& o) { return Int(o.schema); }},
          {"type", kKind, [](const Object& o) { return Word(o.kind); }},
          {"sysstat", kSmall, [](const Object& o) { return Int(OldStatus(o.kind)); }}};
}

std::vector<SchemaDef> Schemas(Session&, DatabaseLink& link) {
  return link.Definitions().schemas;
}

auto ObjectsOf(const char* kind) {
  return [kind](Session&, DatabaseLink& link) { return Objects(link, kind); };
}

struct Property {
  int table;
  PropertyDef def;
};

std::vector<Property> Properties(Session&, DatabaseLink& link) {
  std::vector<Property> properties;
  for (const TableDef* table : link.Definitions().Sorted()) {
    for (const PropertyDef& each : table->properties) properties.push_back({table->id, each});
  }
  return properties;
}

// There are no triggers here.
struct Nothing {};
std::vector<Nothing> None(Session&, DatabaseLink&) {
  return {};
}

}  // namespace

std::vector<Object> Objects(DatabaseLink& link, std::string_view kind) {
  std::vector<Object> objects;
  const Catalog& catalog = link.Definitions();
  for (const auto& [id, table] : catalog.tables) {
    if (table.IsTemporary()) continue;
    Object object{table.name, catalog.SchemaId(table.schema), id, 0, "U ", "USER_TABLE", &catalog,
                  &table};
    objects.push_back(object);
    object.parent = id;
    AddPartsOf(table, object, objects);
  }
  for (const auto& [id, view] : catalog.views) {
    objects.push_back({view.name, catalog.SchemaId(view.schema), id, 0, "V ", "VIEW", &catalog});
  }
  if (!kind.empty()) std::erase_if(objects, [&](const Object& o) { return kind != o.kind; });
  return objects;
}

ShownColumns<Object> ObjectColumns() {
  return {{"name", kName, [](const Object& o) { return Value(o.name); }},
          {"object_id", kInt, [](const Object& o) { return Int(o.id); }},
          {"schema_id", kInt, [](const Object& o) { return Int(o.schema); }},
          {"parent_object_id", kInt, [](const Object& o) { return Int(o.parent); }},
          {"type", kKind, [](const Object& o) { return Word(o.kind); }},
          {"type_desc", kName, [](const Object& o) { return Word(o.description); }}};
}

}  // namespace sys

std::vector<SystemView> SysObjectViews() {
  using namespace sys;
  const ShownColumns<Object> of_tables{
      {"temporal_type", kTiny, [](const Object& o) { return Int(IsTemporal(*o.table) ? 2 : 0); }}};
  return {MakeView("objects", ObjectColumns(), ObjectsOf("")),
          MakeView("tables", ObjectColumns() + of_tables, ObjectsOf("U ")),
          MakeView("views", ObjectColumns(), ObjectsOf("V ")),
          MakeView("sysobjects", OldColumns(), ObjectsOf("")),
          MakeView<SchemaDef>("schemas",
                              {{"name", kName, [](const SchemaDef& s) { return Value(s.name); }},
                               {"schema_id", kInt, [](const SchemaDef& s) { return Int(s.id); }}},
                              Schemas),
          MakeView<Nothing>("triggers",
                            {Null<Nothing>("name", kName), Null<Nothing>("object_id", kInt),
                             Null<Nothing>("parent_id", kInt), Null<Nothing>("type", kKind),
                             Null<Nothing>("is_disabled", kBit)},
                            None),
          MakeView<Property>(
              "extended_properties",
              {{"class", kTiny, [](const Property&) { return Int(1); }},
               {"major_id", kInt, [](const Property& p) { return Int(p.table); }},
               {"minor_id", kInt, [](const Property& p) { return Int(p.def.column_id); }},
               {"name", kName, [](const Property& p) { return Value(p.def.name); }},
               {"value", kVariant, [](const Property& p) { return Value(p.def.value); }}},
              Properties)};
}

}  // namespace sandbox
