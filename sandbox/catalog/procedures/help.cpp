#include "sandbox/catalog/object_names.h"
#include "sandbox/catalog/procedures/column_facts.h"
#include "sandbox/catalog/procedures/procedure.h"

namespace sandbox {

namespace {

using namespace sys;

// ---- the results of sp_help about a table, in their order, up to the identity

struct Head {
  std::string name, schema;
  const char* kind;
};

const ShownColumns<Head> kHead{
    {"Name", kName, [](const Head& h) { return Value(h.name); }},
    {"Owner", kName, [](const Head& h) { return Value(h.schema); }},
    {"Type", VarChar(31), [](const Head& h) { return Word(h.kind); }},
};

struct Column {
  const ColumnDef* def;
  std::string type;
};

const ShownColumns<Column> kColumns{
    {"Column_name", kName, [](const Column& c) { return Value(c.def->name); }},
    {"Type", kName, [](const Column& c) { return Value(c.type); }},
    {"Length", kInt, [](const Column& c) { return Int(MaxLength(c.def->type)); }},
    {"Nullable", VarChar(35), [](const Column& c) { return Word(c.def->nullable ? "yes" : "no"); }},
};

void SendColumns(Session& session, const TableDef& table) {
  std::vector<Column> columns;
  for (const ColumnDef& column : table.columns)
    columns.push_back({&column, ColumnTypeName(session.Link().Definitions(), column)});
  SendItems(session, kColumns, columns);
}

using Identity = const ColumnDef*;  // null when there is none

const ShownColumns<Identity> kIdentity{
    {"Identity", kName,
     [](const Identity& i) { return i ? Value(i->name) : Word("No identity column defined."); }},
    {"Seed", DecimalType(38, 0),
     [](const Identity& i) {
       return i ? Value(DecimalValue{i->seed, 0}) : Value();
     }},
    {"Increment", DecimalType(38, 0),
     [](const Identity& i) {
       return i ? Value(DecimalValue{i->increment, 0}) : Value();
     }},
    {"Not For Replication", kInt, [](const Identity& i) { return i ? Int(0) : Value(); }},
};

int Help(Session& session, const Arguments& args) {
  const std::string given = args.Text(0).value_or("");
  const ObjectName name = ParsedName(given);
  if (const ViewDef* view = session.Link().FindView(name)) {
    SendItems<Head>(session, kHead, {{view->name, view->schema, "view"}});
    return 0;
  }
  const TableDef* table = session.Link().FindTable(name);
  if (!table) {
    SqlError error = Error(15009, given, session.DatabaseName());
    error.messages.front().procedure = "sp_help";
    throw error;
  }
  SendItems<Head>(session, kHead, {{table->name, table->schema, "user table"}});
  SendColumns(session, *table);
  SendItems<Identity>(session, kIdentity, {table->IdentityColumn()});
  return 0;
}

}  // namespace

std::span<const Procedure> HelpProcedures() {
  static const std::vector<Procedure> kProcedures{
      {"sp_help", {"@objname"}, Help},
  };
  return kProcedures;
}

}  // namespace sandbox
