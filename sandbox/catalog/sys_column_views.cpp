#include "sandbox/catalog/sys_view_parts.h"

namespace sandbox {
namespace sys {

namespace {

int ScaleOf(const TypeInfo& type) {
  return IsNumber(type.type) || sandbox::IsTemporal(type.type) ? type.scale : 0;
}

// A column of a table.
struct Column {
  const TableDef* table;
  ColumnDef def;
  std::optional<std::int64_t> last;  // of the identity
};

template <typename Wanted>
auto ColumnsWhere(Wanted wanted) {
  return [wanted](Session&, DatabaseLink& link) {
    std::vector<Column> columns;
    for (const auto& [id, table] : link.Definitions().tables) {
      if (table.IsTemporary()) continue;
      for (const ColumnDef& column : table.columns) {
        if (!wanted(column)) continue;
        columns.push_back(
            {&table, column, column.identity ? link.LastIdentity(table) : std::nullopt});
      }
    }
    return columns;
  };
}

ShownColumns<Column> OfColumns() {
  const auto system_type = [](const Column& c) {
    return Int(Facts(c.def.type.type).system_type_id);
  };
  return {{"object_id", kInt, [](const Column& c) { return Int(c.table->id); }},
          {"name", kName, [](const Column& c) { return Value(c.def.name); }},
          {"column_id", kInt, [](const Column& c) { return Int(c.def.id); }},
          {"system_type_id", kTiny, system_type},
          {"user_type_id", kInt,
           [](const Column& c) {
             return Int(c.def.user_type ? c.def.user_type : Facts(c.def.type.type).system_type_id);
           }},
          {"max_length", kSmall, [](const Column& c) { return Int(MaxLength(c.def.type)); }},
          {"precision", kTiny, [](const Column& c) { return Int(CatalogPrecision(c.def.type)); }},
          {"scale", kTiny, [](const Column& c) { return Int(ScaleOf(c.def.type)); }},
          {"collation_name", kName,
           [](const Column& c) { return TextOrNull(CollationName(c.def.type, c.def.collation)); }},
          {"is_nullable", kBit, [](const Column& c) { return Value(c.def.nullable); }},
          {"is_rowguidcol", kBit, [](const Column& c) { return Value(c.def.row_guid); }},
          {"is_identity", kBit, [](const Column& c) { return Value(c.def.identity); }},
          {"is_computed", kBit, [](const Column& c) { return Value(c.def.IsComputed()); }},
          {"default_object_id", kInt, [](const Column& c) { return Int(c.def.default_id); }},
          {"is_sparse", kBit, [](const Column& c) { return Value(c.def.sparse); }},
          {"generated_always_type", kTiny,
           [](const Column& c) { return Int(static_cast<int>(c.def.generated)); }},
          {"is_hidden", kBit, [](const Column& c) { return Value(c.def.hidden); }},
          {"is_masked", kBit, [](const Column& c) { return Value(c.def.masked); }}};
}

constexpr int kLastOwnType = 256;

struct Type {
  AliasTypeDef def;
  int schema;
};

std::vector<AliasTypeDef> OwnTypes() {
  std::vector<AliasTypeDef> types;
  for (int i = 0; i <= static_cast<int>(SqlType::Variant); ++i) {
    const auto type = static_cast<SqlType>(i);
    const TypeFacts& facts = Facts(type);
    const bool sized = (IsText(type) || IsBinary(type)) && facts.length == 0;
    const int scale = IsExact(type) && !IsMoney(type) ? 38 : IsMoney(type) ? 4 : 0;
    types.push_back({facts.system_type_id,
                     "sys",
                     facts.name,
                     {type, sized ? (IsUnicode(type) ? 4000 : 8000) : 0,
                      facts.precision ? facts.precision : 38, scale},
                     type != SqlType::Timestamp});
  }
  types.push_back({kLastOwnType, "sys", "sysname", NVarChar(128), false});
  return types;
}

std::vector<Type> AllTypes(Session&, DatabaseLink& link) {
  const Catalog& catalog = link.Definitions();
  std::vector<AliasTypeDef> types = OwnTypes();
  types.insert(types.end(), catalog.types.begin(), catalog.types.end());
  std::vector<Type> all;
  all.reserve(types.size());
  for (const AliasTypeDef& type : types) all.push_back({type, catalog.SchemaId(type.schema)});
  return all;
}

ShownColumns<Type> OfTypes() {
  return {{"name", kName, [](const Type& t) { return Value(t.def.name); }},
          {"system_type_id", kTiny,
           [](const Type& t) { return Int(Facts(t.def.type.type).system_type_id); }},
          {"user_type_id", kInt, [](const Type& t) { return Int(t.def.id); }},
          {"schema_id", kInt, [](const Type& t) { return Int(t.schema); }},
          {"max_length", kSmall, [](const Type& t) { return Int(MaxLength(t.def.type)); }},
          {"precision", kTiny, [](const Type& t) { return Int(CatalogPrecision(t.def.type)); }},
          {"scale", kTiny, [](const Type& t) { return Int(ScaleOf(t.def.type)); }},
          {"collation_name", kName,
           [](const Type& t) { return TextOrNull(CollationName(t.def.type, "")); }},
          {"is_nullable", kBit, [](const Type& t) { return Value(t.def.nullable); }},
          {"is_user_defined", kBit, [](const Type& t) { return Value(t.def.id > kLastOwnType); }},
          {"default_object_id", kInt, [](const Type&) { return Int(0); }}};
}

}  // namespace
}  // namespace sys

std::vector<SystemView> SysColumnViews() {
  using namespace sys;
  return {
      MakeView("columns", OfColumns(), ColumnsWhere([](const ColumnDef&) { return true; })),
      MakeView("identity_columns",
               OfColumns() +
                   ShownColumns<Column>{
                       {"seed_value", kVariant, [](const Column& c) { return Int(c.def.seed); }},
                       {"increment_value", kVariant,
                        [](const Column& c) { return Int(c.def.increment); }},
                       {"last_value", kVariant,
                        [](const Column& c) { return c.last ? Int(*c.last) : Value(); }},
                   },
               ColumnsWhere([](const ColumnDef& column) { return column.identity; })),
      MakeView(
          "computed_columns",
          OfColumns() +
              ShownColumns<Column>{
                  {"definition", kText, [](const Column& c) { return Value(c.def.computed_text); }},
                  {"is_persisted", kBit, [](const Column& c) { return Value(c.def.persisted); }}},
          ColumnsWhere([](const ColumnDef& column) { return column.IsComputed(); })),
      MakeView("types", OfTypes(), AllTypes)};
}

}  // namespace sandbox
