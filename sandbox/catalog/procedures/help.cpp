#include "sandbox/catalog/object_names.h"
#include "sandbox/catalog/procedures/column_facts.h"
#include "sandbox/catalog/procedures/procedure.h"

namespace sandbox {

namespace {

using namespace sys;

constexpr const char* kNotApplicable = "(n/a)";
constexpr const char* kReplicated = "Is_For_Replication";

std::string ColumnList(const TableDef& table, const std::vector<int>& ids) {
  std::string text;
  for (const int id : ids) text += (text.empty() ? "" : ", ") + table.Column(id).name;
  return text;
}

std::string IndexKeys(const TableDef& table, const IndexDef& index) {
  std::string text;
  for (const IndexColumn& column : index.columns) {
    text += (text.empty() ? "" : ", ") + table.Column(column.column_id).name +
            (column.descending ? "(-)" : "");
  }
  return text;
}

std::string IndexDescription(const IndexDef& index) {
  std::string text = index.clustered ? "clustered" : "nonclustered";
  if (index.unique) text += ", unique";
  if (index.primary) {
    text += ", primary key";
  } else if (index.IsConstraint()) {
    text += ", unique key";
  }
  return text + " located on PRIMARY";
}

// ---- the results of sp_help about a table, in their order

struct Head {
  std::string name, schema;
  const char* kind;
  std::int64_t created;
};

const ShownColumns<Head> kHead{
    {"Name", kName, [](const Head& h) { return Value(h.name); }},
    {"Owner", kName, [](const Head& h) { return Value(h.schema); }},
    {"Type", VarChar(31), [](const Head& h) { return Word(h.kind); }},
    {"Created_datetime", kTime, [](const Head& h) { return Time(h.created); }},
};

struct Column {
  const ColumnDef* def;
  std::string type;
  const TypeInfo& Type() const { return def->type; }
  bool HasDigits() const {
    return (IsNumber(Type().type) && Type().type != SqlType::Bit) || HasDate();
  }
  bool HasDate() const {
    return IsTemporal(Type().type) && Type().type != SqlType::DateTime &&
           Type().type != SqlType::SmallDateTime;
  }
  bool IsPadded() const {
    const bool text = IsText(Type().type) && Type().type != SqlType::Xml;
    return (text && !IsUnicode(Type().type)) || IsBinary(Type().type);
  }
};

const TypeInfo kDigits{SqlType::Char, 5, 0, 0};
const TypeInfo kAnswer = VarChar(35);

Value Digits(bool shown, int number) {
  return shown ? fmt::format("{:<5}", number) : std::string(5, ' ');
}
const char* YesOrNo(bool yes) {
  return yes ? "yes" : "no";
}

const ShownColumns<Column> kColumns{
    {"Column_name", kName, [](const Column& c) { return Value(c.def->name); }},
    {"Type", kName, [](const Column& c) { return Value(c.type); }},
    {"Computed", kAnswer, [](const Column& c) { return Word(YesOrNo(c.def->IsComputed())); }},
    {"Length", kInt, [](const Column& c) { return Int(MaxLength(c.Type())); }},
    {"Prec", kDigits, [](const Column& c) { return Digits(c.HasDigits(), c.Type().precision); }},
    {"Scale", kDigits,
     [](const Column& c) {
       return Digits(c.HasDigits() && !IsApproximate(c.Type().type), c.Type().scale);
     }},
    {"Nullable", kAnswer, [](const Column& c) { return Word(YesOrNo(c.def->nullable)); }},
    {"TrimTrailingBlanks", kAnswer,
     [](const Column& c) { return Word(c.IsPadded() ? "no" : "(n/a)"); }},
    {"FixedLenNullInSource", kAnswer,
     [](const Column& c) { return Word(c.IsPadded() ? YesOrNo(c.def->nullable) : "(n/a)"); }},
    {"Collation", kName,
     [](const Column& c) { return TextOrNull(CollationName(c.Type(), c.def->collation)); }},
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

using Line = std::string;

ShownColumns<Line> OneColumn(const char* name, const TypeInfo& type) {
  return {{name, type, [](const Line& line) { return Value(line); }}};
}

void SendRowGuid(Session& session, const TableDef& table) {
  Line name = "No rowguidcol column defined.";
  for (const ColumnDef& column : table.columns) {
    if (column.row_guid) name = column.name;
  }
  SendItems(session, OneColumn("RowGuidCol", kName), {name});
}

struct Index {
  const TableDef* table;
  const IndexDef* def;
};

const ShownColumns<Index> kIndexes{
    {"index_name", kName, [](const Index& i) { return Value(i.def->name); }},
    {"index_description", VarChar(210),
     [](const Index& i) { return Value(IndexDescription(*i.def)); }},
    {"index_keys", NVarChar(2078),
     [](const Index& i) { return Value(IndexKeys(*i.table, *i.def)); }},
};

void SendIndexes(Session& session, const TableDef& table) {
  std::vector<Index> indexes;
  for (const IndexDef& index : table.indexes) indexes.push_back({&table, &index});
  if (!indexes.empty()) return SendItems(session, kIndexes, indexes, {0});
  session.Message(
      15472, 0, 1,
      "The object '" + table.name + "' does not have any indexes, or you do not have permissions.");
}

struct Constraint {
  std::string type, name, keys;
  std::string on_delete = kNotApplicable, on_update = kNotApplicable;
  std::string status = kNotApplicable, replication = kNotApplicable;
};

const ShownColumns<Constraint> kConstraints{
    {"constraint_type", NVarChar(146), [](const Constraint& c) { return Value(c.type); }},
    {"constraint_name", kName, [](const Constraint& c) { return Value(c.name); }},
    {"delete_action", NVarChar(9), [](const Constraint& c) { return Value(c.on_delete); }},
    {"update_action", NVarChar(9), [](const Constraint& c) { return Value(c.on_update); }},
    {"status_enabled", VarChar(8), [](const Constraint& c) { return Value(c.status); }},
    {"status_for_replication", VarChar(19),
     [](const Constraint& c) { return Value(c.replication); }},
    {"constraint_keys", NVarChar(2126), [](const Constraint& c) { return Value(c.keys); }},
};

const char* RuleText(ForeignKeyRule rule) {
  static constexpr const char* kTexts[] = {"No Action", "Cascade", "Set Null", "Set Default"};
  return kTexts[static_cast<int>(rule)];
}

const char* Status(bool disabled) {
  return disabled ? "Disabled" : "Enabled";
}

void AddForeignKeys(Session& session, const TableDef& table, std::vector<Constraint>& all) {
  for (const ForeignKeyDef& key : table.foreign_keys) {
    const TableDef& parent = session.Link().Definitions().tables.at(key.parent_table);
    all.push_back({"FOREIGN KEY", key.name, ColumnList(table, key.columns), RuleText(key.on_delete),
                   RuleText(key.on_update), Status(key.disabled), kReplicated});
    const std::string referenced = "REFERENCES " + session.DatabaseName() + "." +
                                   parent.FullName() + " (" +
                                   ColumnList(parent, key.parent_columns) + ")";
    all.push_back({" ", " ", referenced, " ", " ", " ", " "});
  }
}

void SendConstraints(Session& session, const TableDef& table) {
  std::vector<Constraint> all;
  for (const CheckDef& check : table.checks) {
    const std::string type = check.column_id
                                 ? "CHECK on column " + table.Column(check.column_id).name
                                 : "CHECK Table Level ";
    all.push_back({type, check.name, check.text, kNotApplicable, kNotApplicable,
                   Status(check.disabled), kReplicated});
  }
  for (const ColumnDef& column : table.columns) {
    if (column.default_id != 0)
      all.push_back({"DEFAULT on column " + column.name, column.default_name, column.default_text});
  }
  AddForeignKeys(session, table, all);
  for (const IndexDef& index : table.indexes) {
    if (!index.IsConstraint()) continue;
    const std::string type = fmt::format("{} ({})", index.primary ? "PRIMARY KEY" : "UNIQUE",
                                         index.clustered ? "clustered" : "non-clustered");
    all.push_back({type, index.name, IndexKeys(table, index)});
  }
  if (!all.empty()) return SendItems(session, kConstraints, all);
  session.Message(
      15469, 0, 1,
      "No constraints are defined on object '" + table.name + "', or you do not have permissions.");
}

void SendReferences(Session& session, const TableDef& table) {
  std::vector<Line> keys;
  for (const auto& [id, child] : session.Link().Definitions().tables) {
    for (const ForeignKeyDef& key : child.foreign_keys) {
      if (key.parent_table == table.id)
        keys.push_back(session.DatabaseName() + "." + child.FullName() + ": " + key.name);
    }
  }
  if (!keys.empty())
    SendItems(session, OneColumn("Table is referenced by foreign key", NVarChar(516)), keys);
}

int Help(Session& session, const Arguments& args) {
  const std::string given = args.Text(0).value_or("");
  const ObjectName name = ParsedName(given);
  if (const ViewDef* view = session.Link().FindView(name)) {
    SendItems<Head>(session, kHead, {{view->name, view->schema, "view", view->created}});
    return 0;
  }
  const TableDef* table = session.Link().FindTable(name);
  if (!table) {
    SqlError error = Error(15009, given, session.DatabaseName());
    error.messages.front().procedure = "sp_help";
    throw error;
  }
  SendItems<Head>(session, kHead, {{table->name, table->schema, "user table", table->created}});
  SendColumns(session, *table);
  SendItems<Identity>(session, kIdentity, {table->IdentityColumn()});
  SendRowGuid(session, *table);
  SendItems<Line>(session, OneColumn("Data_located_on_filegroup", kName), {"PRIMARY"});
  SendIndexes(session, *table);
  SendConstraints(session, *table);
  SendReferences(session, *table);
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
