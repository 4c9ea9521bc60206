#include "sandbox/sql/session.h"
#include "sandbox/sql/system_views.h"
#include "sandbox/sql/type_rules.h"
#include "sandbox/storage/encoding.h"

namespace sandbox {
namespace {

using Rows = SystemView::Rows;

const TypeInfo kName = NVarChar(128);
const TypeInfo kInt = IntType();
const TypeInfo kBit = BitType();
const TypeInfo kTiny = TinyIntType();
const TypeInfo kSmall = SmallIntType();
const TypeInfo kKind{SqlType::Char, 2, 0, 0};
const TypeInfo kTime = DateTimeType();
const TypeInfo kText = NVarChar(4000);

Value Int(std::int64_t number) {
  return number;
}
Value Word(const char* text) {
  return std::string(text);
}
Value Time(std::int64_t ticks) {
  return DateTimeValue{static_cast<std::int32_t>(ticks / kTicksPerDay), ticks % kTicksPerDay, 0};
}

// One object of any kind, as sys.objects lists it.
struct Object {
  std::string name;
  int schema;
  int id;
  int parent;
  const char* kind;
  const char* description;
  std::int64_t created;
};

std::vector<Object> Objects(DatabaseLink& link) {
  std::vector<Object> objects;
  const Catalog& catalog = link.Definitions();
  for (const auto& [id, table] : catalog.tables) {
    const int schema = catalog.SchemaId(table.schema);
    const auto add = [&, table_id = id, created = table.created](
                         const std::string& name, int object, const char* kind, const char* text) {
      objects.push_back({name, schema, object, table_id, kind, text, created});
    };
    objects.push_back({table.name, schema, id, 0, "U ", "USER_TABLE", table.created});
    for (const IndexDef& index : table.indexes) {
      if (!index.IsConstraint()) continue;
      add(index.name, index.object_id, index.primary ? "PK" : "UQ",
          index.primary ? "PRIMARY_KEY_CONSTRAINT" : "UNIQUE_CONSTRAINT");
    }
    for (const ForeignKeyDef& key : table.foreign_keys)
      add(key.name, key.id, "F ", "FOREIGN_KEY_CONSTRAINT");
    for (const CheckDef& check : table.checks) add(check.name, check.id, "C ", "CHECK_CONSTRAINT");
    for (const ColumnDef& column : table.columns) {
      if (column.default_id != 0)
        add(column.default_name, column.default_id, "D ", "DEFAULT_CONSTRAINT");
    }
  }
  for (const auto& [id, view] : catalog.views) {
    objects.push_back(
        {view.name, catalog.SchemaId(view.schema), id, 0, "V ", "VIEW", view.created});
  }
  return objects;
}

void ObjectRows(DatabaseLink& link, Rows& rows, std::string_view kind) {
  for (const Object& object : Objects(link)) {
    if (!kind.empty() && kind != object.kind) continue;
    rows.push_back({object.name, Int(object.id), Value(), Int(object.schema), Int(object.parent),
                    Word(object.kind), Word(object.description), Time(object.created),
                    Time(object.created), false});
  }
}

void AllObjects(Session&, DatabaseLink& link, Rows& rows) {
  ObjectRows(link, rows, "");
}
void Tables(Session&, DatabaseLink& link, Rows& rows) {
  ObjectRows(link, rows, "U ");
}
void Views(Session&, DatabaseLink& link, Rows& rows) {
  ObjectRows(link, rows, "V ");
}

void OldObjects(Session&, DatabaseLink& link, Rows& rows) {
  for (const Object& object : Objects(link)) {
    rows.push_back({object.name, Int(object.id), Word(object.kind), Int(object.schema),
                    Int(object.parent), Time(object.created)});
  }
}

void Columns(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    for (const ColumnDef& column : table.columns) {
      const int type = Facts(column.type.type).system_type_id;
      const bool text = IsText(column.type.type) && column.type.type != SqlType::Xml;
      rows.push_back(
          {Int(id), column.name, Int(column.id), Int(type), Int(type), Int(MaxLength(column.type)),
           Int(CatalogPrecision(column.type)),
           Int(IsNumber(column.type.type) || IsTemporal(column.type.type) ? column.type.scale : 0),
           text ? Word("SQL_Latin1_General_CP1_CI_AS") : Value(), column.nullable, true,
           column.row_guid, column.identity, false, Int(column.default_id)});
    }
  }
}

void IdentityColumns(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    const ColumnDef* column = table.IdentityColumn();
    if (!column) continue;
    const auto last = link.LastIdentity(table);
    rows.push_back({Int(id), column->name, Int(column->id), Int(column->seed),
                    Int(column->increment), last ? Value(*last) : Value()});
  }
}

void Types(Session&, DatabaseLink&, Rows& rows) {
  for (int i = 0; i <= static_cast<int>(SqlType::Variant); ++i) {
    const auto type = static_cast<SqlType>(i);
    const TypeFacts& facts = Facts(type);
    rows.push_back({Word(facts.name), Int(facts.system_type_id), Int(facts.system_type_id), Int(4),
                    Int(std::min(facts.length, 8000)), Int(std::min(facts.precision, 53)), Int(0),
                    true, false});
  }
}

void Schemas(Session&, DatabaseLink& link, Rows& rows) {
  for (const SchemaDef& schema : link.Definitions().schemas) {
    const UserDef* owner = link.Definitions().FindUser(schema.owner);
    rows.push_back({schema.name, Int(schema.id), Int(owner ? owner->id : 1)});
  }
}

void Databases(Session& session, DatabaseLink&, Rows& rows) {
  for (const auto& database : session.Folder().All()) {
    rows.push_back({database->name, Int(database->id), Time(database->created), Int(150),
                    Word("SQL_Latin1_General_CP1_CI_AS"), Int(0), Word("ONLINE"), false});
  }
}

void Indexes(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    bool clustered = false;
    for (const IndexDef& index : table.indexes) clustered |= index.clustered;
    if (!clustered) {
      rows.push_back({Int(id), Value(), Int(0), Int(0), Word("HEAP"), false, false, false, false});
    }
    for (const IndexDef& index : table.indexes) {
      rows.push_back({Int(id), index.name, Int(index.clustered ? 1 : index.id + 1),
                      Int(index.clustered ? 1 : 2),
                      Word(index.clustered ? "CLUSTERED" : "NONCLUSTERED"), index.unique,
                      index.primary, index.IsConstraint() && !index.primary, false});
    }
  }
}

void IndexColumns(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    for (const IndexDef& index : table.indexes) {
      std::int64_t position = 0;
      for (const IndexColumn& column : index.columns) {
        ++position;
        rows.push_back({Int(id), Int(index.clustered ? 1 : index.id + 1), position,
                        Int(column.column_id), position, column.descending, false});
      }
    }
  }
}

const char* RuleText(ForeignKeyRule rule) {
  static constexpr const char* kTexts[] = {"NO_ACTION", "CASCADE", "SET_NULL", "SET_DEFAULT"};
  return kTexts[static_cast<int>(rule)];
}

void ForeignKeys(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    for (const ForeignKeyDef& key : table.foreign_keys) {
      rows.push_back({key.name, Int(key.id), Int(link.Definitions().SchemaId(table.schema)),
                      Int(id), Word("F "), Int(key.parent_table),
                      Int(static_cast<int>(key.on_delete)), Word(RuleText(key.on_delete)),
                      Int(static_cast<int>(key.on_update)), Word(RuleText(key.on_update)), false});
    }
  }
}

void ForeignKeyColumns(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    for (const ForeignKeyDef& key : table.foreign_keys) {
      for (std::size_t i = 0; i < key.columns.size(); ++i) {
        rows.push_back({Int(key.id), Int(static_cast<std::int64_t>(i) + 1), Int(id),
                        Int(key.columns[i]), Int(key.parent_table), Int(key.parent_columns[i])});
      }
    }
  }
}

void Defaults(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    for (const ColumnDef& column : table.columns) {
      if (column.default_id == 0) continue;
      rows.push_back({column.default_name, Int(column.default_id), Int(id), Int(column.id),
                      column.default_text});
    }
  }
}

void KeyConstraints(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    for (const IndexDef& index : table.indexes) {
      if (!index.IsConstraint()) continue;
      rows.push_back({index.name, Int(index.object_id), Int(id), Word(index.primary ? "PK" : "UQ"),
                      Int(index.clustered ? 1 : index.id + 1)});
    }
  }
}

void CheckConstraints(Session&, DatabaseLink& link, Rows& rows) {
  for (const auto& [id, table] : link.Definitions().tables) {
    for (const CheckDef& check : table.checks) {
      rows.push_back({check.name, Int(check.id), Int(id), Int(check.column_id), check.text, false});
    }
  }
}

void RunningRequests(Session& session, DatabaseLink&, Rows& rows) {
  session.ServerRequests().ForEach([&](int spid, bool is_sending) {
    rows.push_back({Int(spid), Word(is_sending ? "suspended" : "running"),
                    is_sending ? Word("ASYNC_NETWORK_IO") : Value()});
  });
}

// There are no triggers here.
void NoTriggers(Session& /*session*/, DatabaseLink& /*link*/, SystemView::Rows& /*rows*/) {}

}  // namespace

std::vector<SystemView> SysViews() {
  const std::vector<SystemView::Column> object_columns{
      {"name", kName},        {"object_id", kInt},        {"principal_id", kInt},
      {"schema_id", kInt},    {"parent_object_id", kInt}, {"type", kKind},
      {"type_desc", kName},   {"create_date", kTime},     {"modify_date", kTime},
      {"is_ms_shipped", kBit}};
  return {
      {"sys", "objects", object_columns, AllObjects},
      {"sys", "tables", object_columns, Tables},
      {"sys", "views", object_columns, Views},
      {"sys",
       "sysobjects",
       {{"name", kName},
        {"id", kInt},
        {"xtype", kKind},
        {"uid", kSmall},
        {"parent_obj", kInt},
        {"crdate", kTime}},
       OldObjects},
      {"sys",
       "columns",
       {{"object_id", kInt},
        {"name", kName},
        {"column_id", kInt},
        {"system_type_id", kTiny},
        {"user_type_id", kInt},
        {"max_length", kSmall},
        {"precision", kTiny},
        {"scale", kTiny},
        {"collation_name", kName},
        {"is_nullable", kBit},
        {"is_ansi_padded", kBit},
        {"is_rowguidcol", kBit},
        {"is_identity", kBit},
        {"is_computed", kBit},
        {"default_object_id", kInt}},
       Columns},
      {"sys",
       "identity_columns",
       {{"object_id", kInt},
        {"name", kName},
        {"column_id", kInt},
        {"seed_value", BigIntType()},
        {"increment_value", BigIntType()},
        {"last_value", BigIntType()}},
       IdentityColumns},
      {"sys",
       "types",
       {{"name", kName},
        {"system_type_id", kTiny},
        {"user_type_id", kInt},
        {"schema_id", kInt},
        {"max_length", kSmall},
        {"precision", kTiny},
        {"scale", kTiny},
        {"is_nullable", kBit},
        {"is_user_defined", kBit}},
       Types},
      {"sys", "schemas", {{"name", kName}, {"schema_id", kInt}, {"principal_id", kInt}}, Schemas},
      {"sys",
       "databases",
       {{"name", kName},
        {"database_id", kInt},
        {"create_date", kTime},
        {"compatibility_level", kTiny},
        {"collation_name", kName},
        {"state", kTiny},
        {"state_desc", kName},
        {"is_read_only", kBit}},
       Databases},
      {"sys",
       "sysdatabases",
       {{"name", kName},
        {"dbid", kSmall},
        {"crdate", kTime},
        {"cmptlevel", kTiny},
        {"collation_name", kName},
        {"status", kInt},
        {"status_desc", kName},
        {"is_read_only", kBit}},
       Databases},
      {"sys",
       "indexes",
       {{"object_id", kInt},
        {"name", kName},
        {"index_id", kInt},
        {"type", kTiny},
        {"type_desc", kName},
        {"is_unique", kBit},
        {"is_primary_key", kBit},
        {"is_unique_constraint", kBit},
        {"is_disabled", kBit}},
       Indexes},
      {"sys",
       "index_columns",
       {{"object_id", kInt},
        {"index_id", kInt},
        {"index_column_id", kInt},
        {"column_id", kInt},
        {"key_ordinal", kTiny},
        {"is_descending_key", kBit},
        {"is_included_column", kBit}},
       IndexColumns},
      {"sys",
       "foreign_keys",
       {{"name", kName},
        {"object_id", kInt},
        {"schema_id", kInt},
        {"parent_object_id", kInt},
        {"type", kKind},
        {"referenced_object_id", kInt},
        {"delete_referential_action", kTiny},
        {"delete_referential_action_desc", kName},
        {"update_referential_action", kTiny},
        {"update_referential_action_desc", kName},
        {"is_disabled", kBit}},
       ForeignKeys},
      {"sys",
       "foreign_key_columns",
       {{"constraint_object_id", kInt},
        {"constraint_column_id", kInt},
        {"parent_object_id", kInt},
        {"parent_column_id", kInt},
        {"referenced_object_id", kInt},
        {"referenced_column_id", kInt}},
       ForeignKeyColumns},
      {"sys",
       "default_constraints",
       {{"name", kName},
        {"object_id", kInt},
        {"parent_object_id", kInt},
        {"parent_column_id", kInt},
        {"definition", kText}},
       Defaults},
      {"sys",
       "key_constraints",
       {{"name", kName},
        {"object_id", kInt},
        {"parent_object_id", kInt},
        {"type", kKind},
        {"unique_index_id", kInt}},
       KeyConstraints},
      {"sys",
       "check_constraints",
       {{"name", kName},
        {"object_id", kInt},
        {"parent_object_id", kInt},
        {"parent_column_id", kInt},
        {"definition", kText},
        {"is_disabled", kBit}},
       CheckConstraints},
      {"sys",
       "triggers",
       {{"name", kName},
        {"object_id", kInt},
        {"parent_class", kTiny},
        {"parent_id", kInt},
        {"type", kKind},
        {"is_disabled", kBit},
        {"is_instead_of_trigger", kBit}},
       NoTriggers},
      {"sys",
       "dm_exec_requests",
       {{"session_id", kSmall}, {"status", kName}, {"wait_type", kName}},
       RunningRequests},
  };
}

}  // namespace sandbox
