#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/functions/functions.h"

namespace sandbox {

namespace {

using namespace sys;

Value Position(std::size_t i) {
  return Int(static_cast<std::int64_t>(i) + 1);
}

struct PrimaryKeyColumn {
  std::string database;
  const TableDef* table;
  std::size_t i;  // within the key
};

const ShownColumns<PrimaryKeyColumn> kPrimaryKeys{
    {"TABLE_QUALIFIER", kName, [](const PrimaryKeyColumn& c) { return Value(c.database); }},
    {"TABLE_OWNER", kName, [](const PrimaryKeyColumn& c) { return Value(c.table->schema); }},
    {"TABLE_NAME", kName, [](const PrimaryKeyColumn& c) { return Value(c.table->name); }},
    {"COLUMN_NAME", kName,
     [](const PrimaryKeyColumn& c) {
       return Value(c.table->Column(c.table->PrimaryKey()->columns[c.i].column_id).name);
     }},
    {"KEY_SEQ", kSmall, [](const PrimaryKeyColumn& c) { return Position(c.i); }},
    {"PK_NAME", kName,
     [](const PrimaryKeyColumn& c) { return Value(c.table->PrimaryKey()->name); }},
};

int PrimaryKeys(Session& session, const Arguments& args) {
  const TableDef* table = FindArgument(session, args, 0, 1);
  const IndexDef* key = table ? table->PrimaryKey() : nullptr;
  std::vector<PrimaryKeyColumn> columns;
  for (std::size_t i = 0; key && i < key->columns.size(); ++i)
    columns.push_back({session.DatabaseName(), table, i});
  SendItems(session, kPrimaryKeys, columns);
  return 0;
}

struct KeyPair {
  std::string database;
  const TableDef* parent;
  const TableDef* child;
  const ForeignKeyDef* key;
  std::size_t i;  // within the key
};

Value RuleCode(ForeignKeyRule rule) {
  static constexpr int kCodes[] = {1, 0, 2, 3};  // no action, cascade, set null, set default
  return Int(kCodes[static_cast<int>(rule)]);
}

Value ParentKeyName(const KeyPair& p) {
  const IndexDef* index = p.parent->UniqueIndexOn(p.key->parent_columns);
  return index ? Value(index->name) : Value();
}

const ShownColumns<KeyPair> kForeignKeys{
    {"PKTABLE_QUALIFIER", kName, [](const KeyPair& p) { return Value(p.database); }},
    {"PKTABLE_OWNER", kName, [](const KeyPair& p) { return Value(p.parent->schema); }},
    {"PKTABLE_NAME", kName, [](const KeyPair& p) { return Value(p.parent->name); }},
    {"PKCOLUMN_NAME", kName,
     [](const KeyPair& p) { return Value(p.parent->Column(p.key->parent_columns[p.i]).name); }},
    {"FKTABLE_QUALIFIER", kName, [](const KeyPair& p) { return Value(p.database); }},
    {"FKTABLE_OWNER", kName, [](const KeyPair& p) { return Value(p.child->schema); }},
    {"FKTABLE_NAME", kName, [](const KeyPair& p) { return Value(p.child->name); }},
    {"FKCOLUMN_NAME", kName,
     [](const KeyPair& p) { return Value(p.child->Column(p.key->columns[p.i]).name); }},
    {"KEY_SEQ", kSmall, [](const KeyPair& p) { return Position(p.i); }},
    {"UPDATE_RULE", kSmall, [](const KeyPair& p) { return RuleCode(p.key->on_update); }},
    {"DELETE_RULE", kSmall, [](const KeyPair& p) { return RuleCode(p.key->on_delete); }},
    {"FK_NAME", kName, [](const KeyPair& p) { return Value(p.key->name); }},
    {"PK_NAME", kName, ParentKeyName},
    {"DEFERRABILITY", kSmall, [](const KeyPair&) { return Int(7); }},
};

int ForeignKeys(Session& session, const Arguments& args) {
  const bool has_parent = args.Text(0).has_value(), has_child = args.Text(3).has_value();
  const TableDef* wanted_parent = FindArgument(session, args, 0, 1);
  const TableDef* wanted_child = FindArgument(session, args, 3, 4);
  const Catalog& catalog = session.Link().Definitions();
  std::vector<KeyPair> pairs;
  for (const auto& [id, child] : catalog.tables) {
    if (has_child && &child != wanted_child) continue;
    for (const ForeignKeyDef& key : child.foreign_keys) {
      const TableDef& parent = catalog.tables.at(key.parent_table);
      if (has_parent && &parent != wanted_parent) continue;
      for (std::size_t i = 0; i < key.columns.size(); ++i)
        pairs.push_back({session.DatabaseName(), &parent, &child, &key, i});
    }
  }
  if (has_parent && !has_child) {
    SendItems(session, kForeignKeys, pairs, {4, 5, 6, 11, 8});
  } else {
    SendItems(session, kForeignKeys, pairs, {0, 1, 2, 11, 8});
  }
  return 0;
}

// A column of an index, or the table itself.
struct IndexedColumn {
  std::string database;
  const TableDef* table;
  const IndexDef* index = nullptr;
  std::size_t i = 0;  // within the index
};

// What the column shows of an index; NULL for the table itself.
template <Value (*value)(const IndexedColumn& c)>
Value OfIndex(const IndexedColumn& c) {
  return c.index ? value(c) : Value();
}

using Indexed = const IndexedColumn&;

const ShownColumns<IndexedColumn> kStatistics{
    {"TABLE_QUALIFIER", kName, [](Indexed c) { return Value(c.database); }},
    {"TABLE_OWNER", kName, [](Indexed c) { return Value(c.table->schema); }},
    {"TABLE_NAME", kName, [](Indexed c) { return Value(c.table->name); }},
    {"NON_UNIQUE", kSmall, OfIndex<[](Indexed c) { return Int(!c.index->unique); }>},
    {"INDEX_QUALIFIER", kName, OfIndex<[](Indexed c) { return Value(c.table->name); }>},
    {"INDEX_NAME", kName, OfIndex<[](Indexed c) { return Value(c.index->name); }>},
    {"TYPE", kSmall, [](Indexed c) { return Int(!c.index             ? 0
                                                : c.index->clustered ? 1
                                                                     : 3); }},
    {"SEQ_IN_INDEX", kSmall, OfIndex<[](Indexed c) { return Position(c.i); }>},
    {"COLUMN_NAME", kName, OfIndex<[](Indexed c) {
       return Value(c.table->Column(c.index->columns[c.i].column_id).name);
     }>},
    {"COLLATION",
     {SqlType::Char, 1, 0, 0},
     OfIndex<[](Indexed c) { return Word(c.index->columns[c.i].descending ? "D" : "A"); }>},
    Null<IndexedColumn>("CARDINALITY", kInt),
    Null<IndexedColumn>("PAGES", kInt),
    Null<IndexedColumn>("FILTER_CONDITION", VarChar(128)),
};

int Statistics(Session& session, const Arguments& args) {
  const auto index_name = args.Text(3);
  const bool unique_only = args.Text(4).value_or("N") == "Y";
  const TableDef* table = FindArgument(session, args, 0, 1);
  static const std::vector<IndexDef> kNone;
  std::vector<IndexedColumn> columns;
  if (table) columns.push_back({session.DatabaseName(), table});
  for (const IndexDef& index : table ? table->indexes : kNone) {
    if (index_name && !MatchesPattern(index.name, *index_name, '\\')) continue;
    if (unique_only && !index.unique) continue;
    for (std::size_t i = 0; i < index.columns.size(); ++i)
      columns.push_back({session.DatabaseName(), table, &index, i});
  }
  SendItems(session, kStatistics, columns, {3, 6, 5, 7});
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
  };
  return kProcedures;
}

}  // namespace sandbox
