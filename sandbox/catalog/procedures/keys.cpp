#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/catalog/session.h"
#include "sandbox/functions/functions.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

int PrimaryKeys(Session& session, const Arguments& args) {
  ResultRows result;
  result.columns = {NameColumn("TABLE_QUALIFIER"),   NameColumn("TABLE_OWNER"),
                    NameColumn("TABLE_NAME", false), NameColumn("COLUMN_NAME", false),
                    SmallColumn("KEY_SEQ"),          NameColumn("PK_NAME")};
  const TableDef* table = FindArgument(session, args, 0, 1);
  const IndexDef* key = table ? table->PrimaryKey() : nullptr;
  std::int64_t position = 0;
  if (key) {
    for (const IndexColumn& column : key->columns) {
      result.rows.push_back({session.DatabaseName(), table->schema, table->name,
                             table->Column(column.column_id).name, ++position, key->name});
    }
  }
  session.SendRows(result.columns, result.rows);
  return 0;
}

std::int64_t RuleCode(ForeignKeyRule rule) {
  switch (rule) {
    case ForeignKeyRule::Cascade:
      return 0;
    case ForeignKeyRule::NoAction:
      return 1;
    case ForeignKeyRule::SetNull:
      return 2;
    case ForeignKeyRule::SetDefault:
      break;
  }
  return 3;
}

// The unique index of the parent that the key refers to.
std::string ParentKeyName(const TableDef& parent, const ForeignKeyDef& key) {
  for (const IndexDef& index : parent.indexes) {
    if (!index.unique || index.columns.size() != key.parent_columns.size()) continue;
    bool same = true;
    for (const IndexColumn& column : index.columns) {
      same &= std::find(key.parent_columns.begin(), key.parent_columns.end(), column.column_id) !=
              key.parent_columns.end();
    }
    if (same) return index.name;
  }
  return "";
}

int ForeignKeys(Session& session, const Arguments& args) {
  const bool has_parent = args.Text(0).has_value(), has_child = args.Text(3).has_value();
  const TableDef* wanted_parent = FindArgument(session, args, 0, 1);
  const TableDef* wanted_child = FindArgument(session, args, 3, 4);
  ResultRows result;
  result.columns = {
      NameColumn("PKTABLE_QUALIFIER"), NameColumn("PKTABLE_OWNER"),     NameColumn("PKTABLE_NAME"),
      NameColumn("PKCOLUMN_NAME"),     NameColumn("FKTABLE_QUALIFIER"), NameColumn("FKTABLE_OWNER"),
      NameColumn("FKTABLE_NAME"),      NameColumn("FKCOLUMN_NAME"),     SmallColumn("KEY_SEQ"),
      SmallColumn("UPDATE_RULE"),      SmallColumn("DELETE_RULE"),      NameColumn("FK_NAME"),
      NameColumn("PK_NAME"),           SmallColumn("DEFERRABILITY")};
  const Catalog& catalog = session.Link().Definitions();
  const std::string database = session.DatabaseName();
  for (const auto& [id, child] : catalog.tables) {
    if (has_child && &child != wanted_child) continue;
    for (const ForeignKeyDef& key : child.foreign_keys) {
      const TableDef& parent = catalog.tables.at(key.parent_table);
      if (has_parent && &parent != wanted_parent) continue;
      for (std::size_t i = 0; i < key.columns.size(); ++i) {
        result.rows.push_back(
            {database, parent.schema, parent.name, parent.Column(key.parent_columns[i]).name,
             database, child.schema, child.name, child.Column(key.columns[i]).name,
             Number(static_cast<std::int64_t>(i) + 1), RuleCode(key.on_update),
             RuleCode(key.on_delete), key.name, ParentKeyName(parent, key), Number(7)});
      }
    }
  }
  if (has_parent && !has_child) {
    SortRows(result, {4, 5, 6, 11, 8});
  } else {
    SortRows(result, {0, 1, 2, 11, 8});
  }
  session.SendRows(result.columns, result.rows);
  return 0;
}

int Statistics(Session& session, const Arguments& args) {
  const auto index_name = args.Text(3);
  const bool unique_only = args.Text(4).value_or("N") == "Y";
  ResultRows result;
  result.columns = {
      NameColumn("TABLE_QUALIFIER"),      NameColumn("TABLE_OWNER"),
      NameColumn("TABLE_NAME", false),    SmallColumn("NON_UNIQUE"),
      NameColumn("INDEX_QUALIFIER"),      NameColumn("INDEX_NAME"),
      SmallColumn("TYPE", false),         SmallColumn("SEQ_IN_INDEX"),
      NameColumn("COLUMN_NAME"),          {"COLLATION", {SqlType::Char, 1, 0, 0}, true, false},
      IntColumn("CARDINALITY"),           IntColumn("PAGES"),
      TextColumn("FILTER_CONDITION", 128)};
  const TableDef* table = FindArgument(session, args, 0, 1);
  if (!table) {
    session.SendRows(result.columns, result.rows);
    return 0;
  }
  const std::string database = session.DatabaseName();
  result.rows.push_back({database, table->schema, table->name, Value(), Value(), Value(), Number(0),
                         Value(), Value(), Value(), Value(), Value(), Value()});
  for (const IndexDef& index : table->indexes) {
    if (index_name && !MatchesPattern(index.name, *index_name, '\\')) continue;
    if (unique_only && !index.unique) continue;
    std::int64_t position = 0;
    for (const IndexColumn& column : index.columns) {
      result.rows.push_back(
          {database, table->schema, table->name, Number(!index.unique), table->name, index.name,
           Number(index.clustered ? 1 : 3), ++position, table->Column(column.column_id).name,
           std::string(column.descending ? "D" : "A"), Value(), Value(), Value()});
    }
  }
  SortRows(result, {3, 6, 5, 7});
  session.SendRows(result.columns, result.rows);
  return 0;
}

}  // namespace

std::span<const Procedure> KeyProcedures() {
  static const std::vector<const char*> kStatisticsParameters{
      "@table_name", "@table_owner", "@table_qualifier", "@index_name", "@is_unique", "@accuracy"};
  static const std::vector<Procedure> kProcedures{
      {"sp_pkeys", {"@table_name", "@table_owner", "@table_qualifier"}, PrimaryKeys},
      {"sp_fkeys",
       {"@pktable_name", "@pktable_owner", "@pktable_qualifier", "@fktable_name", "@fktable_owner",
        "@fktable_qualifier"},
       ForeignKeys},
      {"sp_statistics", kStatisticsParameters, Statistics},
      {"sp_statistics_100", kStatisticsParameters, Statistics},
  };
  return kProcedures;
}

}  // namespace sandbox
