#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/values/types.h"

namespace sandbox {

/// The schema of what is made without one by who has no other.
inline constexpr const char* kDefaultSchema = "dbo";

/// What fills a column of a temporal table's period.
enum class Generated { No, RowStart, RowEnd };

/// A column as defined. Default texts are in the server's normalised form, "((0))".
struct ColumnDef {
  int id = 0;  // from 1, never used twice within a table
  std::string name;
  TypeInfo type;
  bool nullable = true;
  bool identity = false;
  std::int64_t seed = 1;
  std::int64_t increment = 1;
  std::string default_name;
  std::string default_text;  // empty when there is none
  int default_id = 0;
  bool row_guid = false;
  int user_type = 0;          // the id of an alias type; 0: none
  std::string collation;      // empty: the database's
  std::string computed_text;  // normalised, "([a]+[b])"; empty: not computed
  bool persisted = false;
  bool sparse = false;
  bool masked = false;
  bool hidden = false;
  Generated generated = Generated::No;
  bool IsComputed() const { return !computed_text.empty(); }
};

struct IndexColumn {
  int column_id = 0;
  bool descending = false;
};

/// An index; primary keys and unique constraints are indexes too.
struct IndexDef {
  int id = 0;         // from 1, within the table
  int object_id = 0;  // of the constraint; 0 for a plain index
  std::string name;
  bool unique = false;
  bool primary = false;
  bool clustered = false;
  bool disabled = false;
  std::vector<IndexColumn> columns;
  std::vector<int> included;  // columns that are no part of the key
  std::string filter;         // normalised, in parentheses; empty: every row is in the index
  bool IsConstraint() const { return object_id != 0; }
};

enum class ForeignKeyRule { NoAction, Cascade, SetNull, SetDefault };

struct ForeignKeyDef {
  int id = 0;
  std::string name;
  std::vector<int> columns;
  int parent_table = 0;  // the referenced table
  std::vector<int> parent_columns;
  ForeignKeyRule on_delete = ForeignKeyRule::NoAction;
  ForeignKeyRule on_update = ForeignKeyRule::NoAction;
  bool disabled = false;
  bool not_trusted = false;  // rows were not looked at
};

struct CheckDef {
  int id = 0;
  std::string name;
  std::string text;   // normalised, in parentheses
  int column_id = 0;  // 0 for a check of the table
  bool disabled = false;
  bool not_trusted = false;
};

/// A text kept with a table or one of its columns.
struct PropertyDef {
  int column_id = 0;  // 0: the table's own
  std::string name;
  std::string value;
};

/// A type made of another one by a name of its own.
struct AliasTypeDef {
  int id = 0;  // from 257
  std::string schema = kDefaultSchema;
  std::string name;
  TypeInfo type;
  bool nullable = true;
};

struct TableDef {
  int id = 0;
  std::string schema = kDefaultSchema;
  std::string name;
  int next_column_id = 1;
  std::vector<ColumnDef> columns;
  std::vector<IndexDef> indexes;
  std::vector<ForeignKeyDef> foreign_keys;
  std::vector<CheckDef> checks;
  std::vector<PropertyDef> properties;

  const ColumnDef* FindColumn(std::string_view column) const;
  const ColumnDef& Column(int column_id) const;
  const IndexDef* FindIndex(std::string_view index) const;
  const IndexDef* PrimaryKey() const;
  /// The unique index of just these columns, in any order.
  const IndexDef* UniqueIndexOn(const std::vector<int>& column_ids) const;
  const ColumnDef* IdentityColumn() const;
  /// Names in SQLite: the table "t<id>", its columns "c<id>", its indexes "i<table id>_<id>".
  std::string StoredName() const;
  /// As messages name it: "dbo.t".
  std::string FullName() const { return (IsTemporary() ? kDefaultSchema : schema) + ("." + name); }
  /// A session's own: its schema is "#" with the session's number, and no list shows it.
  bool IsTemporary() const { return schema.starts_with('#'); }
  std::string StoredIndexName(const IndexDef& index) const;
  static std::string StoredColumn(int column_id);
};

struct ViewDef {
  int id = 0;
  std::string schema = kDefaultSchema;
  std::string name;
  std::string text;  // the whole CREATE VIEW statement
};

struct SchemaDef {
  int id = 0;
  std::string name;
  std::string owner;
};

/// Who a login is in the database.
struct UserDef {
  int id = 0;
  std::string name;
  std::string login;  // empty when none
  std::string default_schema = kDefaultSchema;
};

/// A constraint found by its name, with the table that has it.
struct ConstraintRef {
  enum class Kind { Default, Index, ForeignKey, Check };
  const TableDef* table = nullptr;
  Kind kind = Kind::Default;
  int id = 0;
};

/// All definitions of one database. Every one has the server's own schemas and users.
struct Catalog {
  Catalog();

  std::vector<SchemaDef> schemas;
  std::vector<UserDef> users;
  std::vector<AliasTypeDef> types;
  std::map<int, TableDef> tables;
  std::map<int, ViewDef> views;
  int last_object_id = 0;

  int NewObjectId();
  const SchemaDef* FindSchema(std::string_view name) const;
  /// The id of a schema that an object is in.
  int SchemaId(std::string_view name) const { return FindSchema(name)->id; }
  const AliasTypeDef* FindType(std::string_view schema, std::string_view name) const;
  const TableDef* FindTable(std::string_view schema, std::string_view name) const;
  const ViewDef* FindView(std::string_view schema, std::string_view name) const;
  ConstraintRef FindConstraint(std::string_view schema, std::string_view name) const;
  /// True when any object of the schema (table, view, constraint) has the name.
  bool HasObject(std::string_view schema, std::string_view name) const;
  /// The tables that lists show, in the order of their schemas and names.
  std::vector<const TableDef*> Sorted() const;
};

}  // namespace sandbox
