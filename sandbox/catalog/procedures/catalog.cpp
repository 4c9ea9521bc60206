#include <array>

#include "sandbox/catalog/procedures/column_facts.h"
#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/catalog/session.h"
#include "sandbox/catalog/system_views.h"
#include "sandbox/functions/functions.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

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

int Tables(Session& session, const Arguments& args) {
  const auto name = args.Text(0), owner = args.Text(1), qualifier = args.Text(2),
             types = args.Text(3);
  const bool patterns = args.Integer(4, 1) != 0;
  ResultRows result;
  result.columns = {NameColumn("TABLE_QUALIFIER"), NameColumn("TABLE_OWNER"),
                    NameColumn("TABLE_NAME"), TextColumn("TABLE_TYPE", 32),
                    TextColumn("REMARKS", 254)};
  const auto blank = [](const auto& text) { return text && text->empty(); };
  if (qualifier == "%" && blank(name) && blank(owner)) {  // which databases there are
    for (const auto& database : session.Folder().All()) {
      result.rows.push_back({database->name, Value(), Value(), Value(), Value()});
    }
  } else if (owner == "%" && blank(name) && blank(qualifier)) {
    for (const SchemaDef& schema : session.Link().Definitions().schemas) {
      result.rows.push_back({Value(), schema.name, Value(), Value(), Value()});
    }
  } else if (types == "%" && blank(name) && blank(owner)) {
    for (const char* type : {"SYSTEM TABLE", "TABLE", "VIEW"}) {
      result.rows.push_back({Value(), Value(), Value(), std::string(type), Value()});
    }
  } else {
    CheckQualifier(session, qualifier);
    const std::string database = session.DatabaseName();
    const auto add = [&](const std::string& schema, const std::string& table, const char* type) {
      if (!NameMatches(name, table, patterns) || !NameMatches(owner, schema, patterns)) return;
      const bool lower = session.Traits().lower_case_tables;
      if (TypeListed(types, type))
        result.rows.push_back(
            {database, schema, lower ? LowerText(table) : table, std::string(type), Value()});
    };
    const Catalog& catalog = session.Link().Definitions();
    for (const TableDef* table : catalog.Sorted()) add(table->schema, table->name, "TABLE");
    for (const auto& [id, view] : catalog.views) add(view.schema, view.name, "VIEW");
    for (const ObjectName& view : SystemViewNames()) add(view.schema, view.name, "VIEW");
    SortRows(result, {3, 0, 1, 2});
  }
  session.SendRows(result.columns, result.rows);
  return 0;
}

// Columns of sp_columns up to SS_DATA_TYPE.
std::vector<ColumnInfo> ColumnColumns() {
  return {NameColumn("TABLE_QUALIFIER"),
          NameColumn("TABLE_OWNER"),
          NameColumn("TABLE_NAME"),
          NameColumn("COLUMN_NAME"),
          SmallColumn("DATA_TYPE"),
          NameColumn("TYPE_NAME"),
          IntColumn("PRECISION"),
          IntColumn("LENGTH"),
          SmallColumn("SCALE"),
          SmallColumn("RADIX"),
          SmallColumn("NULLABLE"),
          TextColumn("REMARKS", 254),
          {"COLUMN_DEF", NVarChar(4000), true, false},
          SmallColumn("SQL_DATA_TYPE"),
          SmallColumn("SQL_DATETIME_SUB"),
          IntColumn("CHAR_OCTET_LENGTH"),
          IntColumn("ORDINAL_POSITION"),
          TextColumn("IS_NULLABLE", 254),
          {"SS_DATA_TYPE", TinyIntType(), true, false}};
}

int ColumnsOf(Session& session, const Arguments& args, bool modern) {
  const auto name = args.Text(0), owner = args.Text(1), qualifier = args.Text(2),
             column_name = args.Text(3);
  const auto version = args.Integer(4, 2);
  const bool patterns = args.Integer(5, 1) != 0;
  CheckQualifier(session, qualifier);
  ResultRows result;
  result.columns = ColumnColumns();
  // A plain name without an owner means one table, as it does in a query.
  const TableDef* only = name && !owner ? session.Link().FindTable({"", "", *name}) : nullptr;
  const Catalog& catalog = session.Link().Definitions();
  for (const TableDef* table : catalog.Sorted()) {
    if (only && table != only) continue;
    if (!NameMatches(name, table->name, patterns) || !NameMatches(owner, table->schema, patterns))
      continue;
    std::int64_t position = 0;
    for (const ColumnDef& column : table->columns) {
      ++position;
      if (!NameMatches(column_name, column.name, patterns)) continue;
      const OdbcFacts facts = FactsForOdbc(column.type, version >= 3, modern);
      result.rows.push_back({session.DatabaseName(), table->schema, table->name, column.name,
                             facts.data_type, OdbcTypeName(catalog, column), facts.precision,
                             facts.length, facts.scale, facts.radix, Number(column.nullable),
                             Value(), TextOrNull(column.default_text), facts.sql_data_type,
                             facts.datetime_sub, facts.octet_length, position,
                             std::string(column.nullable ? "YES" : "NO"), facts.ss_data_type});
    }
  }
  session.SendRows(result.columns, result.rows);
  return 0;
}

int Columns(Session& session, const Arguments& args) {
  return ColumnsOf(session, args, false);
}
int Columns100(Session& session, const Arguments& args) {
  return ColumnsOf(session, args, true);
}

int SpecialColumns(Session& session, const Arguments& args) {
  const bool row_version = args.Text(3).value_or("R") == "V";
  ResultRows result;
  result.columns = {SmallColumn("SCOPE"),    NameColumn("COLUMN_NAME"),   SmallColumn("DATA_TYPE"),
                    NameColumn("TYPE_NAME"), IntColumn("PRECISION"),      IntColumn("LENGTH"),
                    SmallColumn("SCALE"),    SmallColumn("PSEUDO_COLUMN")};
  const TableDef* table = FindArgument(session, args, 0, 1);
  const Catalog& catalog = session.Link().Definitions();
  const auto add = [&](const ColumnDef& column) {
    const OdbcFacts facts = FactsForOdbc(column.type, args.Integer(6, 2) >= 3, true);
    result.rows.push_back({Number(row_version ? 0 : 1), column.name, facts.data_type,
                           OdbcTypeName(catalog, column), facts.precision, facts.length,
                           facts.scale, Number(1)});
  };
  if (table && row_version) {
    for (const ColumnDef& column : table->columns) {
      if (column.type.type == SqlType::Timestamp) add(column);
    }
  } else if (table && table->PrimaryKey()) {
    for (const IndexColumn& key : table->PrimaryKey()->columns) add(table->Column(key.column_id));
  }
  session.SendRows(result.columns, result.rows);
  return 0;
}

int Procedures(Session& session, const Arguments& args) {
  const auto name = args.Text(0);
  ResultRows result;
  result.columns = {NameColumn("PROCEDURE_QUALIFIER"), NameColumn("PROCEDURE_OWNER"),
                    NameColumn("PROCEDURE_NAME"),      IntColumn("NUM_INPUT_PARAMS"),
                    IntColumn("NUM_OUTPUT_PARAMS"),    IntColumn("NUM_RESULT_SETS"),
                    TextColumn("REMARKS", 254),        SmallColumn("PROCEDURE_TYPE")};
  for (const auto group : {CatalogProcedures(), KeyProcedures(), HelpProcedures(),
                           ServerProcedures(), IdleProcedures()}) {
    for (const Procedure& procedure : group) {
      if (!NameMatches(name, procedure.name, true)) continue;
      result.rows.push_back({session.DatabaseName(), std::string("sys"),
                             std::string(procedure.name) + ";1", Number(-1), Number(-1), Number(-1),
                             Value(), Number(2)});
    }
  }
  SortRows(result, {2});
  session.SendRows(result.columns, result.rows);
  return 0;
}

// ---- sp_datatype_info

struct TypeRow {
  SqlType type;
  OdbcFacts facts;
};

bool IsDecimal(SqlType type) {
  return type == SqlType::Decimal || type == SqlType::Numeric;
}
Value NameOf(const TypeRow& row) {
  return std::string(TypeName(row.type));
}
Value Prefix(const TypeRow& row) {
  if (IsNumber(row.type)) return {};
  return std::string(IsBinary(row.type) ? "0x" : IsUnicode(row.type) ? "N'" : "'");
}
Value Suffix(const TypeRow& row) {
  return IsNumber(row.type) || IsBinary(row.type) ? Value() : Value(std::string("'"));
}
Value CreateParameters(const TypeRow& row) {
  if (IsDecimal(row.type)) return std::string("precision,scale");
  const bool sized = IsText(row.type) || IsBinary(row.type);
  return sized && Facts(row.type).length == 0 ? Value(std::string("length")) : Value();
}
Value IsUnsigned(const TypeRow& row) {
  const bool is_unsigned = row.type == SqlType::Bit || row.type == SqlType::TinyInt;
  return IsNumber(row.type) ? Number(is_unsigned) : Value();
}
Value Zero(const TypeRow&) {
  return Number(0);
}

struct TypeColumn {
  ColumnInfo column;
  Value (*value)(const TypeRow& row);
};
const TypeColumn kTypeColumns[] = {
    {NameColumn("TYPE_NAME"), NameOf},
    {SmallColumn("DATA_TYPE"), [](const TypeRow& row) { return row.facts.data_type; }},
    {IntColumn("PRECISION"), [](const TypeRow& row) { return row.facts.precision; }},
    {TextColumn("LITERAL_PREFIX", 32), Prefix},
    {TextColumn("LITERAL_SUFFIX", 32), Suffix},
    {TextColumn("CREATE_PARAMS", 32), CreateParameters},
    {SmallColumn("NULLABLE"),
     [](const TypeRow& row) { return Number(row.type != SqlType::Timestamp); }},
    {SmallColumn("CASE_SENSITIVE"), Zero},
    {SmallColumn("SEARCHABLE"),
     [](const TypeRow& row) { return Number(IsText(row.type) ? 3 : 2); }},
    {SmallColumn("UNSIGNED_ATTRIBUTE"), IsUnsigned},
    {SmallColumn("MONEY"), [](const TypeRow& row) { return Number(IsMoney(row.type)); }},
    {SmallColumn("AUTO_INCREMENT"),
     [](const TypeRow& row) { return IsNumber(row.type) ? Number(0) : Value(); }},
    {NameColumn("LOCAL_TYPE_NAME"), NameOf},
    {SmallColumn("MINIMUM_SCALE"), [](const TypeRow& row) { return row.facts.scale; }},
    {SmallColumn("MAXIMUM_SCALE"),
     [](const TypeRow& row) { return IsDecimal(row.type) ? Number(38) : row.facts.scale; }},
    {SmallColumn("SQL_DATA_TYPE"), [](const TypeRow& row) { return row.facts.sql_data_type; }},
    {SmallColumn("SQL_DATETIME_SUB"), [](const TypeRow& row) { return row.facts.datetime_sub; }},
    {IntColumn("NUM_PREC_RADIX"), [](const TypeRow& row) { return row.facts.radix; }},
    {SmallColumn("INTERVAL_PRECISION"), [](const TypeRow&) { return Value(); }},
    {SmallColumn("USERTYPE"), Zero},
};

int DatatypeInfo(Session& session, const Arguments& args) {
  const auto wanted = args.Integer(0, 0);
  const bool version3 = args.Integer(1, 2) >= 3;
  ResultRows result;
  for (const TypeColumn& column : kTypeColumns) result.columns.push_back(column.column);
  for (int i = 0; i <= static_cast<int>(SqlType::Variant); ++i) {
    const auto type = static_cast<SqlType>(i);
    const TypeInfo measures{type, IsUnicode(type) ? 4000 : 8000,
                            IsDecimal(type) ? 38 : Facts(type).precision, 0};
    const TypeRow row{type, FactsForOdbc(measures, version3, true)};
    if (wanted != 0 && std::get<std::int64_t>(row.facts.data_type) != wanted) continue;
    auto& values = result.rows.emplace_back();
    for (const TypeColumn& column : kTypeColumns) values.push_back(column.value(row));
  }
  SortRows(result, {1, 0});
  session.SendRows(result.columns, result.rows);
  return 0;
}

}  // namespace

std::span<const Procedure> CatalogProcedures() {
  static const std::vector<const char*> kColumnParameters{"@table_name",      "@table_owner",
                                                          "@table_qualifier", "@column_name",
                                                          "@ODBCVer",         "@fUsePattern"};
  static const std::vector<const char*> kSpecialParameters{
      "@table_name", "@table_owner", "@qualifier", "@col_type", "@scope", "@nullable", "@ODBCVer"};
  static const std::vector<Procedure> kProcedures{
      {"sp_tables",
       {"@table_name", "@table_owner", "@table_qualifier", "@table_type", "@fUsePattern"},
       Tables},
      {"sp_columns", kColumnParameters, Columns},
      {"sp_columns_90", kColumnParameters, Columns},
      {"sp_columns_100", kColumnParameters, Columns100},
      {"sp_special_columns", kSpecialParameters, SpecialColumns},
      {"sp_special_columns_90", kSpecialParameters, SpecialColumns},
      {"sp_special_columns_100", kSpecialParameters, SpecialColumns},
      {"sp_stored_procedures",
       {"@sp_name", "@sp_owner", "@sp_qualifier", "@fUsePattern"},
       Procedures},
      {"sp_datatype_info", {"@data_type", "@ODBCVer"}, DatatypeInfo},
      {"sp_datatype_info_90", {"@data_type", "@ODBCVer"}, DatatypeInfo},
      {"sp_datatype_info_100", {"@data_type", "@ODBCVer"}, DatatypeInfo},
  };
  return kProcedures;
}

}  // namespace sandbox
