#include "sandbox/catalog/session.h"
#include "sandbox/catalog/system_views.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

const TypeInfo kName = NVarChar(128);
const TypeInfo kWord = VarChar(30);
const TypeInfo kInt = IntType();
const TypeInfo kSmall = SmallIntType();
const TypeInfo kText = NVarChar(4000);

Value Word(const char* text) {
  return std::string(text);
}
Value YesNo(bool yes) {
  return std::string(yes ? "YES" : "NO");
}
Value Int(std::int64_t number) {
  return number;
}

std::vector<Value> ColumnRow(const std::string& database, const TableDef& table,
                             const ColumnInfo& column, std::int64_t position,
                             const std::string& default_text, const std::string& collation) {
  const TypeInfo& type = column.type;
  const bool sized = IsText(type.type) || IsBinary(type.type);
  const bool number = IsNumber(type.type) && type.type != SqlType::Bit;
  const bool text = IsText(type.type) && type.type != SqlType::Xml;
  const int longest = type.type == SqlType::NText ? 1073741823 : 2147483647;
  const int characters = type.length >= 0               ? type.length
                         : Facts(type.type).length != 0 ? longest
                                                        : -1;
  const int bytes = characters < 0                                 ? -1
                    : Facts(type.type).length != 0 && IsLong(type) ? Facts(type.type).length
                                                                   : MaxLength(type);
  Value fraction;
  if (IsTemporal(type.type) && type.type != SqlType::Date) {
    fraction = Int(type.type == SqlType::SmallDateTime ? 0 : type.scale);
  }
  if (type.type == SqlType::Date) fraction = Int(0);
  return {database,
          table.schema,
          table.name,
          column.name,
          position,
          default_text.empty() ? Value() : Value(default_text),
          YesNo(column.nullable),
          Word(TypeName(type)),
          sized && type.type != SqlType::Timestamp ? Int(characters) : Value(),
          sized && type.type != SqlType::Timestamp ? Int(bytes) : Value(),
          number ? Int(type.precision) : Value(),
          number ? (IsApproximate(type.type) ? Int(2) : Int(10)) : Value(),
          number && !IsApproximate(type.type) ? Int(type.scale) : Value(),
          fraction,
          text ? (IsUnicode(type.type) ? Word("UNICODE") : Word("iso_1")) : Value(),
          collation.empty() ? Value() : Value(collation)};
}

void Tables(Session&, DatabaseLink& link, SystemView::Rows& rows) {
  for (const TableDef* table : link.Definitions().Sorted()) {
    rows.push_back({link.Name(), table->schema, table->name, Word("BASE TABLE")});
  }
  for (const auto& [id, view] : link.Definitions().views) {
    rows.push_back({link.Name(), view.schema, view.name, Word("VIEW")});
  }
}

void Columns(Session&, DatabaseLink& link, SystemView::Rows& rows) {
  for (const TableDef* table : link.Definitions().Sorted()) {
    std::int64_t position = 0;
    for (const ColumnDef& column : table->columns) {
      rows.push_back(ColumnRow(link.Name(), *table,
                               {column.name, column.type, column.nullable, false}, ++position,
                               column.default_text, CollationName(column.type, column.collation)));
    }
  }
}

void TableConstraints(Session&, DatabaseLink& link, SystemView::Rows& rows) {
  for (const TableDef* table : link.Definitions().Sorted()) {
    const auto add = [&](const std::string& name, const char* type) {
      rows.push_back({link.Name(), table->schema, name, link.Name(), table->schema, table->name,
                      Word(type), Word("NO"), Word("NO")});
    };
    for (const IndexDef& index : table->indexes) {
      if (index.IsConstraint()) add(index.name, index.primary ? "PRIMARY KEY" : "UNIQUE");
    }
    for (const ForeignKeyDef& key : table->foreign_keys) add(key.name, "FOREIGN KEY");
    for (const CheckDef& check : table->checks) add(check.name, "CHECK");
  }
}

void KeyColumns(Session&, DatabaseLink& link, SystemView::Rows& rows) {
  for (const TableDef* table : link.Definitions().Sorted()) {
    const auto add = [&](const std::string& name, int column, std::size_t i) {
      rows.push_back({link.Name(), table->schema, name, link.Name(), table->schema, table->name,
                      table->Column(column).name, Int(static_cast<std::int64_t>(i) + 1)});
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
}

Value Rule(ForeignKeyRule rule) {
  static constexpr const char* kRules[] = {"NO ACTION", "CASCADE", "SET NULL", "SET DEFAULT"};
  return Word(kRules[static_cast<int>(rule)]);
}

void Referential(Session&, DatabaseLink& link, SystemView::Rows& rows) {
  const Catalog& catalog = link.Definitions();
  for (const TableDef* table : catalog.Sorted()) {
    for (const ForeignKeyDef& key : table->foreign_keys) {
      Value unique;
      const TableDef& parent = catalog.tables.at(key.parent_table);
      for (const IndexDef& index : parent.indexes) {
        if (index.unique && index.columns.size() == key.parent_columns.size() &&
            index.columns.front().column_id == key.parent_columns.front() && unique.index() == 0) {
          unique = index.name;
        }
      }
      rows.push_back({link.Name(), table->schema, key.name, link.Name(), parent.schema, unique,
                      Word("SIMPLE"), Rule(key.on_update), Rule(key.on_delete)});
    }
  }
}

void Checks(Session&, DatabaseLink& link, SystemView::Rows& rows) {
  for (const TableDef* table : link.Definitions().Sorted()) {
    for (const CheckDef& check : table->checks)
      rows.push_back({link.Name(), table->schema, check.name, check.text});
  }
}

void Schemata(Session&, DatabaseLink& link, SystemView::Rows& rows) {
  for (const SchemaDef& schema : link.Definitions().schemas) {
    rows.push_back({link.Name(), schema.name, schema.owner, Word("iso_1")});
  }
}

void Views(Session&, DatabaseLink& link, SystemView::Rows& rows) {
  for (const auto& [id, view] : link.Definitions().views) {
    rows.push_back({link.Name(), view.schema, view.name, view.text, Word("NONE"), Word("NO")});
  }
}

}  // namespace

std::vector<SystemView> InformationSchemaViews() {
  constexpr const char* kSchema = "INFORMATION_SCHEMA";
  return {
      {kSchema,
       "TABLES",
       {{"TABLE_CATALOG", kName},
        {"TABLE_SCHEMA", kName},
        {"TABLE_NAME", kName},
        {"TABLE_TYPE", kWord}},
       Tables},
      {kSchema,
       "COLUMNS",
       {{"TABLE_CATALOG", kName},
        {"TABLE_SCHEMA", kName},
        {"TABLE_NAME", kName},
        {"COLUMN_NAME", kName},
        {"ORDINAL_POSITION", kInt},
        {"COLUMN_DEFAULT", kText},
        {"IS_NULLABLE", kWord},
        {"DATA_TYPE", kName},
        {"CHARACTER_MAXIMUM_LENGTH", kInt},
        {"CHARACTER_OCTET_LENGTH", kInt},
        {"NUMERIC_PRECISION", TinyIntType()},
        {"NUMERIC_PRECISION_RADIX", kSmall},
        {"NUMERIC_SCALE", kInt},
        {"DATETIME_PRECISION", kSmall},
        {"CHARACTER_SET_NAME", kName},
        {"COLLATION_NAME", kName}},
       Columns},
      {kSchema,
       "TABLE_CONSTRAINTS",
       {{"CONSTRAINT_CATALOG", kName},
        {"CONSTRAINT_SCHEMA", kName},
        {"CONSTRAINT_NAME", kName},
        {"TABLE_CATALOG", kName},
        {"TABLE_SCHEMA", kName},
        {"TABLE_NAME", kName},
        {"CONSTRAINT_TYPE", kWord},
        {"IS_DEFERRABLE", kWord},
        {"INITIALLY_DEFERRED", kWord}},
       TableConstraints},
      {kSchema,
       "KEY_COLUMN_USAGE",
       {{"CONSTRAINT_CATALOG", kName},
        {"CONSTRAINT_SCHEMA", kName},
        {"CONSTRAINT_NAME", kName},
        {"TABLE_CATALOG", kName},
        {"TABLE_SCHEMA", kName},
        {"TABLE_NAME", kName},
        {"COLUMN_NAME", kName},
        {"ORDINAL_POSITION", kInt}},
       KeyColumns},
      {kSchema,
       "REFERENTIAL_CONSTRAINTS",
       {{"CONSTRAINT_CATALOG", kName},
        {"CONSTRAINT_SCHEMA", kName},
        {"CONSTRAINT_NAME", kName},
        {"UNIQUE_CONSTRAINT_CATALOG", kName},
        {"UNIQUE_CONSTRAINT_SCHEMA", kName},
        {"UNIQUE_CONSTRAINT_NAME", kName},
        {"MATCH_OPTION", kWord},
        {"UPDATE_RULE", kWord},
        {"DELETE_RULE", kWord}},
       Referential},
      {kSchema,
       "CHECK_CONSTRAINTS",
       {{"CONSTRAINT_CATALOG", kName},
        {"CONSTRAINT_SCHEMA", kName},
        {"CONSTRAINT_NAME", kName},
        {"CHECK_CLAUSE", kText}},
       Checks},
      {kSchema,
       "SCHEMATA",
       {{"CATALOG_NAME", kName},
        {"SCHEMA_NAME", kName},
        {"SCHEMA_OWNER", kName},
        {"DEFAULT_CHARACTER_SET_NAME", kName}},
       Schemata},
      {kSchema,
       "VIEWS",
       {{"TABLE_CATALOG", kName},
        {"TABLE_SCHEMA", kName},
        {"TABLE_NAME", kName},
        {"VIEW_DEFINITION", kText},
        {"CHECK_OPTION", kWord},
        {"IS_UPDATABLE", kWord}},
       Views},
  };
}

}  // namespace sandbox
