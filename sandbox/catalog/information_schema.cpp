#include "sandbox/catalog/sys_view_parts.h"

namespace sandbox {

namespace {

using sys::kInt;
using sys::kName;
using sys::kSmall;
using sys::kTiny;
using sys::ShownColumns;
using sys::TextOrNull;
using sys::Word;

const TypeInfo kWord = VarChar(30);

/// What a row of any of the views shows.
struct Entry {
  std::string database, schema, name;  // of a table, view or constraint
  const char* kind = "";
  const TableDef* table = nullptr;
  const ColumnDef* column = nullptr;
  std::int64_t position = 0;  // of the column, from 1
  const ForeignKeyDef* key = nullptr;
  const TableDef* parent = nullptr;
};

using Columns = ShownColumns<Entry>;
using Entries = std::vector<Entry>;

// ---- what columns show

Value Schema(const Entry& e) {
  return e.schema;
}
Value Name(const Entry& e) {
  return e.name;
}
Value ColumnName(const Entry& e) {
  return e.column->name;
}
Value Position(const Entry& e) {
  return e.position;
}
Value Kind(const Entry& e) {
  return Word(e.kind);
}
bool HasLength(SqlType type) {
  return (IsText(type) || IsBinary(type)) && type != SqlType::Timestamp;
}
bool HasDigits(SqlType type) {
  return IsNumber(type) && type != SqlType::Bit;
}

Value Characters(const Entry& e) {
  const TypeInfo& type = e.column->type;
  if (!HasLength(type.type)) return {};
  if (type.length >= 0) return std::int64_t{type.length};
  if (Facts(type.type).length == 0) return std::int64_t{-1};
  return std::int64_t{type.type == SqlType::NText ? 1073741823 : 2147483647};
}

Value Precision(const Entry& e) {
  const TypeInfo& type = e.column->type;
  return HasDigits(type.type) ? Value(std::int64_t{type.precision}) : Value();
}
Value Scale(const Entry& e) {
  const TypeInfo& type = e.column->type;
  const bool exact = HasDigits(type.type) && !IsApproximate(type.type);
  return exact ? Value(std::int64_t{type.scale}) : Value();
}
Value Fraction(const Entry& e) {
  const TypeInfo& type = e.column->type;
  if (!IsTemporal(type.type)) return {};
  const bool whole = type.type == SqlType::SmallDateTime || type.type == SqlType::Date;
  return std::int64_t{whole ? 0 : type.scale};
}
Value CharacterSet(const Entry& e) {
  const SqlType type = e.column->type.type;
  if (!IsText(type) || type == SqlType::Xml) return {};
  return Word(IsUnicode(type) ? "UNICODE" : "iso_1");
}

Value Rule(ForeignKeyRule rule) {
  static constexpr const char* kRules[] = {"NO ACTION", "CASCADE", "SET NULL", "SET DEFAULT"};
  return Word(kRules[static_cast<int>(rule)]);
}

// ---- what there is

Entry OfTable(DatabaseLink& link, const TableDef& table, const std::string& name) {
  Entry entry{.database = link.Name(), .schema = table.schema, .name = name};
  entry.table = &table;
  return entry;
}

Entries AllTables(Session&, DatabaseLink& link) {
  Entries all;
  for (const TableDef* table : link.Definitions().Sorted()) {
    all.push_back(OfTable(link, *table, table->name));
    all.back().kind = "BASE TABLE";
  }
  for (const auto& [id, view] : link.Definitions().views) {
    all.push_back({.database = link.Name(), .schema = view.schema, .name = view.name});
    all.back().kind = "VIEW";
  }
  return all;
}

Entries AllColumns(Session&, DatabaseLink& link) {
  Entries all;
  for (const TableDef* table : link.Definitions().Sorted()) {
    std::int64_t position = 0;
    for (const ColumnDef& column : table->columns) {
      all.push_back(OfTable(link, *table, table->name));
      all.back().column = &column;
      all.back().position = ++position;
    }
  }
  return all;
}

Entries AllForeignKeys(Session&, DatabaseLink& link) {
  Entries all;
  const Catalog& catalog = link.Definitions();
  for (const TableDef* table : catalog.Sorted()) {
    for (const ForeignKeyDef& key : table->foreign_keys) {
      all.push_back(OfTable(link, *table, key.name));
      all.back().key = &key;
      all.back().parent = &catalog.tables.at(key.parent_table);
    }
  }
  return all;
}

// ---- the views

const Columns kTableName{{"TABLE_SCHEMA", kName, Schema}, {"TABLE_NAME", kName, Name}};

const Columns kTables = kTableName + Columns{{"TABLE_TYPE", kWord, Kind}};

const Columns kColumns =
    kTableName +
    Columns{{"COLUMN_NAME", kName, ColumnName},
            {"ORDINAL_POSITION", kInt, Position},
            {"IS_NULLABLE", kWord,
             [](const Entry& e) { return Word(e.column->nullable ? "YES" : "NO"); }},
            {"DATA_TYPE", kName, [](const Entry& e) { return Word(TypeName(e.column->type)); }},
            {"CHARACTER_MAXIMUM_LENGTH", kInt, Characters},
            {"NUMERIC_PRECISION", kTiny, Precision},
            {"NUMERIC_SCALE", kInt, Scale},
            {"DATETIME_PRECISION", kSmall, Fraction},
            {"CHARACTER_SET_NAME", kName, CharacterSet},
            {"COLLATION_NAME", kName, [](const Entry& e) {
               return TextOrNull(CollationName(e.column->type, e.column->collation));
             }}};

const Columns kConstraintName{{"CONSTRAINT_SCHEMA", kName, Schema},
                              {"CONSTRAINT_NAME", kName, Name}};

const Columns kReferentialConstraints =
    kConstraintName +
    Columns{
        {"UNIQUE_CONSTRAINT_SCHEMA", kName, [](const Entry& e) { return Value(e.parent->schema); }},
        {"UPDATE_RULE", kWord, [](const Entry& e) { return Rule(e.key->on_update); }},
        {"DELETE_RULE", kWord, [](const Entry& e) { return Rule(e.key->on_delete); }}};

SystemView View(const char* name, const Columns& columns,
                Entries (*entries)(Session&, DatabaseLink&)) {
  return sys::MakeView("INFORMATION_SCHEMA", name, columns, entries);
}

}  // namespace

std::vector<SystemView> InformationSchemaViews() {
  return {View("TABLES", kTables, AllTables), View("COLUMNS", kColumns, AllColumns),
          View("REFERENTIAL_CONSTRAINTS", kReferentialConstraints, AllForeignKeys)};
}

}  // namespace sandbox
