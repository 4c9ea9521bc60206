#include "sandbox/catalog/sys_view_parts.h"

namespace sandbox {
namespace {

using sys::kInt;
using sys::kName;
using sys::kSmall;
using sys::kText;
using sys::kTiny;
using sys::TextOrNull;
using sys::ViewColumns;
using sys::Word;

const TypeInfo kWord = VarChar(30);

/// What a row of any of the views shows.
struct Entry {
  std::string database, schema, name{};  // of a table, view, constraint or schema
  const char* kind = "";
  const TableDef* table = nullptr;
  const ColumnDef* column = nullptr;
  std::int64_t position = 0;  // of the column, from 1
  const ForeignKeyDef* key = nullptr;
  const TableDef* parent = nullptr;
  std::string text{};  // of a check or view; of a schema its owner
};

using Columns = ViewColumns<Entry>;
using Entries = std::vector<Entry>;

// ---- what columns show

Value Database(const Entry& e) {
  return e.database;
}
Value Schema(const Entry& e) {
  return e.schema;
}
Value Name(const Entry& e) {
  return e.name;
}
Value TableName(const Entry& e) {
  return e.table->name;
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
Value TextOf(const Entry& e) {
  return e.text;
}
Value No(const Entry&) {
  return Word("NO");
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

Value Bytes(const Entry& e) {
  const TypeInfo& type = e.column->type;
  if (!HasLength(type.type)) return {};
  const int fixed = Facts(type.type).length;
  if (type.length < 0 && fixed == 0) return std::int64_t{-1};
  return std::int64_t{fixed != 0 && IsLong(type) ? fixed : MaxLength(type)};
}

Value Precision(const Entry& e) {
  const TypeInfo& type = e.column->type;
  return HasDigits(type.type) ? Value(std::int64_t{type.precision}) : Value();
}
Value Radix(const Entry& e) {
  const SqlType type = e.column->type.type;
  return HasDigits(type) ? Value(std::int64_t{IsApproximate(type) ? 2 : 10}) : Value();
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

Value ParentConstraint(const Entry& e) {
  for (const IndexDef& index : e.parent->indexes) {
    if (index.unique && index.columns.size() == e.key->parent_columns.size() &&
        index.columns.front().column_id == e.key->parent_columns.front()) {
      return index.name;
    }
  }
  return {};
}

// ---- what there is

Entry OfTable(DatabaseLink& link, const TableDef& table, const std::string& name) {
  Entry entry{.database = link.Name(), .schema = table.schema, .name = name};
  entry.table = &table;
  return entry;
}

Entries AllViews(Session&, DatabaseLink& link) {
  Entries all;
  for (const auto& [id, view] : link.Definitions().views) {
    all.push_back({.database = link.Name(),
                   .schema = view.schema,
                   .name = view.name,
                   .kind = "VIEW",
                   .text = view.text});
  }
  return all;
}

Entries AllTables(Session& session, DatabaseLink& link) {
  Entries all;
  for (const TableDef* table : link.Definitions().Sorted()) {
    all.push_back(OfTable(link, *table, table->name));
    all.back().kind = "BASE TABLE";
  }
  for (Entry& view : AllViews(session, link)) all.push_back(std::move(view));
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

Entries AllConstraints(Session&, DatabaseLink& link) {
  Entries all;
  for (const TableDef* table : link.Definitions().Sorted()) {
    const auto add = [&](const std::string& name, const char* kind) {
      all.push_back(OfTable(link, *table, name));
      all.back().kind = kind;
    };
    for (const IndexDef& index : table->indexes) {
      if (index.IsConstraint()) add(index.name, index.primary ? "PRIMARY KEY" : "UNIQUE");
    }
    for (const ForeignKeyDef& key : table->foreign_keys) add(key.name, "FOREIGN KEY");
    for (const CheckDef& check : table->checks) add(check.name, "CHECK");
  }
  return all;
}

Entries AllKeyColumns(Session&, DatabaseLink& link) {
  Entries all;
  for (const TableDef* table : link.Definitions().Sorted()) {
    const auto add = [&](const std::string& name, int column, std::size_t i) {
      all.push_back(OfTable(link, *table, name));
      all.back().column = &table->Column(column);
      all.back().position = static_cast<std::int64_t>(i) + 1;
    };
    for (const IndexDef& index : table->indexes) {
      for (std::size_t i = 0; index.IsConstraint() && i < index.columns.size(); ++i) {
        add(index.name, index.columns[i].column_id, i);
      }
    }
    for (const ForeignKeyDef& key : table->foreign_keys) {
      for (std::size_t i = 0; i < key.columns.size(); ++i) add(key.name, key.columns[i], i);
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

Entries AllChecks(Session&, DatabaseLink& link) {
  Entries all;
  for (const TableDef* table : link.Definitions().Sorted()) {
    for (const CheckDef& check : table->checks) {
      all.push_back(OfTable(link, *table, check.name));
      all.back().text = check.text;
    }
  }
  return all;
}

Entries AllSchemas(Session&, DatabaseLink& link) {
  Entries all;
  for (const SchemaDef& schema : link.Definitions().schemas) {
    all.push_back({.database = link.Name(), .schema = schema.name, .text = schema.owner});
  }
  return all;
}

// ---- the views

const Columns kTableName{{"TABLE_CATALOG", kName, Database},
                         {"TABLE_SCHEMA", kName, Schema},
                         {"TABLE_NAME", kName, Name}};

const Columns kTables = kTableName + Columns{{"TABLE_TYPE", kWord, Kind}};

const Columns kColumns =
    kTableName +
    Columns{
        {"COLUMN_NAME", kName, ColumnName},
        {"ORDINAL_POSITION", kInt, Position},
        {"COLUMN_DEFAULT", kText,
         [](const Entry& e) { return TextOrNull(e.column->default_text); }},
        {"IS_NULLABLE", kWord,
         [](const Entry& e) { return Word(e.column->nullable ? "YES" : "NO"); }},
        {"DATA_TYPE", kName, [](const Entry& e) { return Word(TypeName(e.column->type)); }},
        {"CHARACTER_MAXIMUM_LENGTH", kInt, Characters},
        {"CHARACTER_OCTET_LENGTH", kInt, Bytes},
        {"NUMERIC_PRECISION", kTiny, Precision},
        {"NUMERIC_PRECISION_RADIX", kSmall, Radix},
        {"NUMERIC_SCALE", kInt, Scale},
        {"DATETIME_PRECISION", kSmall, Fraction},
        {"CHARACTER_SET_NAME", kName, CharacterSet},
        {"COLLATION_NAME", kName,
         [](const Entry& e) {
           return TextOrNull(CollationName(e.column->type, e.column->collation));
         }},
    };

const Columns kConstraintName{{"CONSTRAINT_CATALOG", kName, Database},
                              {"CONSTRAINT_SCHEMA", kName, Schema},
                              {"CONSTRAINT_NAME", kName, Name}};

const Columns kConstraintTable{{"TABLE_CATALOG", kName, Database},
                               {"TABLE_SCHEMA", kName, Schema},
                               {"TABLE_NAME", kName, TableName}};

const Columns kTableConstraints = kConstraintName + kConstraintTable +
                                  Columns{{"CONSTRAINT_TYPE", kWord, Kind},
                                          {"IS_DEFERRABLE", kWord, No},
                                          {"INITIALLY_DEFERRED", kWord, No}};

const Columns kKeyColumns =
    kConstraintName + kConstraintTable +
    Columns{{"COLUMN_NAME", kName, ColumnName}, {"ORDINAL_POSITION", kInt, Position}};

const Columns kReferentialConstraints =
    kConstraintName +
    Columns{
        {"UNIQUE_CONSTRAINT_CATALOG", kName, Database},
        {"UNIQUE_CONSTRAINT_SCHEMA", kName, [](const Entry& e) { return Value(e.parent->schema); }},
        {"UNIQUE_CONSTRAINT_NAME", kName, ParentConstraint},
        {"MATCH_OPTION", kWord, [](const Entry&) { return Word("SIMPLE"); }},
        {"UPDATE_RULE", kWord, [](const Entry& e) { return Rule(e.key->on_update); }},
        {"DELETE_RULE", kWord, [](const Entry& e) { return Rule(e.key->on_delete); }}};

const Columns kSchemata{
    {"CATALOG_NAME", kName, Database},
    {"SCHEMA_NAME", kName, Schema},
    {"SCHEMA_OWNER", kName, TextOf},
    {"DEFAULT_CHARACTER_SET_NAME", kName, [](const Entry&) { return Word("iso_1"); }}};

const Columns kViews =
    kTableName + Columns{{"VIEW_DEFINITION", kText, TextOf},
                         {"CHECK_OPTION", kWord, [](const Entry&) { return Word("NONE"); }},
                         {"IS_UPDATABLE", kWord, No}};

SystemView View(const char* name, const Columns& columns,
                Entries (*entries)(Session&, DatabaseLink&)) {
  return sys::MakeView("INFORMATION_SCHEMA", name, columns, entries);
}

}  // namespace

std::vector<SystemView> InformationSchemaViews() {
  return {View("TABLES", kTables, AllTables),
          View("COLUMNS", kColumns, AllColumns),
          View("TABLE_CONSTRAINTS", kTableConstraints, AllConstraints),
          View("KEY_COLUMN_USAGE", kKeyColumns, AllKeyColumns),
          View("REFERENTIAL_CONSTRAINTS", kReferentialConstraints, AllForeignKeys),
          View("CHECK_CONSTRAINTS", kConstraintName + Columns{{"CHECK_CLAUSE", kText, TextOf}},
               AllChecks),
          View("SCHEMATA", kSchemata, AllSchemas),
          View("VIEWS", kViews, AllViews)};
}

}  // namespace sandbox
