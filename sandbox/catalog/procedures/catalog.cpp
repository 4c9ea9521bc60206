#include "sandbox/catalog/procedures/column_facts.h"
#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/catalog/system_views.h"
#include "sandbox/functions/functions.h"
#include "sandbox/text/text_order.h"

namespace sandbox {

namespace {

using namespace sys;

constexpr char32_t kEscape = '\\';

// Catalog procedures take names as patterns, unless told otherwise.
bool NameMatches(const std::optional<std::string>& pattern, const std::string& name,
                 bool patterns) {
  if (!pattern) return true;
  return patterns ? MatchesPattern(name, *pattern, kEscape) : SameName(*pattern, name);
}

void CheckQualifier(Session& session, const std::optional<std::string>& qualifier) {
  if (qualifier && !qualifier->empty() && *qualifier != "%" &&
      !SameName(*qualifier, session.DatabaseName())) {
    SqlError error;
    error.messages.push_back(
        {15250, 1, 16,
         "The database name component of the object qualifier must be the name of "
         "the current database.",
         "", 1});
    throw error;
  }
}

bool TypeListed(const std::optional<std::string>& types, const char* type) {
  if (!types || types->empty() || *types == "%") return true;
  return UpperText(*types).find(std::string("'") + type + "'") != std::string::npos ||
         SameName(*types, type);
}

struct NamedTable {
  std::string database, schema, name;
  const char* kind;
};

const ShownColumns<NamedTable> kTables{
    {"TABLE_QUALIFIER", kName, [](const NamedTable& t) { return Value(t.database); }},
    {"TABLE_OWNER", kName, [](const NamedTable& t) { return Value(t.schema); }},
    {"TABLE_NAME", kName, [](const NamedTable& t) { return Value(t.name); }},
    {"TABLE_TYPE", VarChar(32), [](const NamedTable& t) { return Word(t.kind); }},
    Null<NamedTable>("REMARKS", kRemarks),
};

int Tables(Session& session, const Arguments& args) {
  const auto name = args.Text(0), owner = args.Text(1), types = args.Text(3);
  const bool patterns = args.Integer(4, 1) != 0;
  CheckQualifier(session, args.Text(2));
  std::vector<NamedTable> tables;
  const auto add = [&](const std::string& schema, const std::string& table, const char* kind) {
    if (!NameMatches(name, table, patterns) || !NameMatches(owner, schema, patterns)) return;
    const bool lower = session.Traits().lower_case_tables;
    if (TypeListed(types, kind))
      tables.push_back({session.DatabaseName(), schema, lower ? LowerText(table) : table, kind});
  };
  const Catalog& catalog = session.Link().Definitions();
  for (const TableDef* table : catalog.Sorted()) add(table->schema, table->name, "TABLE");
  for (const auto& [id, view] : catalog.views) add(view.schema, view.name, "VIEW");
  for (const ObjectName& view : SystemViewNames()) add(view.schema, view.name, "VIEW");
  SendItems(session, kTables, tables, {3, 0, 1, 2});
  return 0;
}

struct Column {
  std::string database;
  const TableDef* table;
  const ColumnDef* def;
  std::int64_t position;
  OdbcFacts facts;
  std::string type_name;
};

const ShownColumns<Column> kColumns{
    {"TABLE_QUALIFIER", kName, [](const Column& c) { return Value(c.database); }},
    {"TABLE_OWNER", kName, [](const Column& c) { return Value(c.table->schema); }},
    {"TABLE_NAME", kName, [](const Column& c) { return Value(c.table->name); }},
    {"COLUMN_NAME", kName, [](const Column& c) { return Value(c.def->name); }},
    {"DATA_TYPE", kSmall, [](const Column& c) { return c.facts.data_type; }},
    {"TYPE_NAME", kName, [](const Column& c) { return Value(c.type_name); }},
    {"PRECISION", kInt, [](const Column& c) { return c.facts.precision; }},
    {"LENGTH", kInt, [](const Column& c) { return c.facts.length; }},
    {"SCALE", kSmall, [](const Column& c) { return c.facts.scale; }},
    {"RADIX", kSmall, [](const Column& c) { return c.facts.radix; }},
    {"NULLABLE", kSmall, [](const Column& c) { return Int(c.def->nullable); }},
    Null<Column>("REMARKS", kRemarks),
    {"COLUMN_DEF", kText, [](const Column& c) { return TextOrNull(c.def->default_text); }},
    {"SQL_DATA_TYPE", kSmall, [](const Column& c) { return c.facts.sql_data_type; }},
    {"SQL_DATETIME_SUB", kSmall, [](const Column& c) { return c.facts.datetime_sub; }},
    {"CHAR_OCTET_LENGTH", kInt, [](const Column& c) { return c.facts.octet_length; }},
    {"ORDINAL_POSITION", kInt, [](const Column& c) { return Int(c.position); }},
    {"IS_NULLABLE", kRemarks, [](const Column& c) { return Word(c.def->nullable ? "YES" : "NO"); }},
    {"SS_DATA_TYPE", kTiny, [](const Column& c) { return c.facts.ss_data_type; }},
};

int Columns(Session& session, const Arguments& args) {
  const auto name = args.Text(0), owner = args.Text(1), column_name = args.Text(3);
  const bool version3 = args.Integer(4, 2) >= 3;
  const bool patterns = args.Integer(5, 1) != 0;
  CheckQualifier(session, args.Text(2));
  // A plain name without an owner means one table, as it does in a query.
  const TableDef* only = name && !owner ? session.Link().FindTable({"", "", *name}) : nullptr;
  const Catalog& catalog = session.Link().Definitions();
  std::vector<Column> columns;
  for (const TableDef* table : catalog.Sorted()) {
    if (only && table != only) continue;
    if (!NameMatches(name, table->name, patterns) || !NameMatches(owner, table->schema, patterns))
      continue;
    std::int64_t position = 0;
    for (const ColumnDef& column : table->columns) {
      ++position;
      if (!NameMatches(column_name, column.name, patterns)) continue;
      columns.push_back({session.DatabaseName(), table, &column, position,
                         FactsForOdbc(column.type, version3), OdbcTypeName(catalog, column)});
    }
  }
  SendItems(session, kColumns, columns);
  return 0;
}

}  // namespace

std::span<const Procedure> CatalogProcedures() {
  static const std::vector<Procedure> kProcedures{
      {"sp_tables",
       {"@table_name", "@table_owner", "@table_qualifier", "@table_type", "@fUsePattern"},
       Tables},
      {"sp_columns",
       {"@table_name", "@table_owner", "@table_qualifier", "@column_name", "@ODBCVer",
        "@fUsePattern"},
       Columns},
  };
  return kProcedures;
}

}  // namespace sandbox
