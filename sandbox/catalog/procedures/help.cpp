#include "sandbox/catalog/object_names.h"
#include "sandbox/catalog/procedures/column_facts.h"
#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/catalog/session.h"
#include "sandbox/values/ticks.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

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

void AllObjects(Session& session) {
  ResultRows result;
  result.columns = {NameColumn("Name"), NameColumn("Owner"), NameColumn("Object_type")};
  const Catalog& catalog = session.Link().Definitions();
  for (const auto& [id, table] : catalog.tables) {
    const auto add = [&, &owner = table.schema](const std::string& name, const char* type) {
      result.rows.push_back({name, owner, std::string(type)});
    };
    if (table.IsTemporary()) continue;
    add(table.name, "user table");
    for (const IndexDef& index : table.indexes) {
      if (index.IsConstraint()) add(index.name, index.primary ? "primary key cns" : "unique key");
    }
    for (const ForeignKeyDef& key : table.foreign_keys) add(key.name, "foreign key cns");
    for (const CheckDef& check : table.checks) add(check.name, "check cns");
    for (const ColumnDef& column : table.columns) {
      if (column.default_id != 0) add(column.default_name, "default (maybe cns)");
    }
  }
  for (const auto& [id, view] : catalog.views) {
    result.rows.push_back({view.name, view.schema, std::string("view")});
  }
  SortRows(result, {2, 0});
  session.SendRows(result.columns, result.rows);
}

void Columns(Session& session, const TableDef& table) {
  ResultRows result;
  result.columns = {NameColumn("Column_name"),
                    NameColumn("Type"),
                    TextColumn("Computed", 35),
                    IntColumn("Length"),
                    {"Prec", {SqlType::Char, 5, 0, 0}, true, false},
                    {"Scale", {SqlType::Char, 5, 0, 0}, true, false},
                    TextColumn("Nullable", 35),
                    TextColumn("TrimTrailingBlanks", 35),
                    TextColumn("FixedLenNullInSource", 35),
                    NameColumn("Collation")};
  const auto padded = [](int number) { return Value(fmt::format("{:<5}", number)); };
  for (const ColumnDef& column : table.columns) {
    const TypeInfo& type = column.type;
    const bool number = IsInteger(type.type) || IsExact(type.type) || IsApproximate(type.type);
    const bool time = type.type == SqlType::Time || type.type == SqlType::DateTime2 ||
                      type.type == SqlType::DateTimeOffset || type.type == SqlType::Date;
    const bool shown = number || time;
    const bool text = IsText(type.type) && type.type != SqlType::Xml;
    const bool padding = (text && !IsUnicode(type.type)) || IsBinary(type.type);
    const std::string trims = padding ? "no" : "(n/a)";
    result.rows.push_back(
        {column.name, ColumnTypeName(session.Link().Definitions(), column),
         std::string(column.IsComputed() ? "yes" : "no"), Number(MaxLength(type)),
         shown ? padded(type.precision) : Value(std::string("     ")),
         shown && !IsApproximate(type.type) ? padded(type.scale) : Value(std::string("     ")),
         std::string(column.nullable ? "yes" : "no"), trims,
         padding ? std::string(column.nullable ? "yes" : "no") : std::string("(n/a)"),
         TextOrNull(CollationName(type, column.collation))});
  }
  session.SendRows(result.columns, result.rows);
}

void Identity(Session& session, const TableDef& table) {
  ResultRows result;
  const TypeInfo wide = DecimalType(38, 0);
  result.columns = {NameColumn("Identity"),
                    {"Seed", wide, true, false},
                    {"Increment", wide, true, false},
                    IntColumn("Not For Replication")};
  if (const ColumnDef* column = table.IdentityColumn()) {
    result.rows.push_back({column->name, DecimalValue{column->seed, 0},
                           DecimalValue{column->increment, 0}, Number(0)});
  } else {
    result.rows.push_back({std::string("No identity column defined."), Value(), Value(), Value()});
  }
  session.SendRows(result.columns, result.rows);
}

void RowGuid(Session& session, const TableDef& table) {
  std::string name = "No rowguidcol column defined.";
  for (const ColumnDef& column : table.columns) {
    if (column.row_guid) name = column.name;
  }
  session.SendRows({NameColumn("RowGuidCol")}, {{name}});
}

void Indexes(Session& session, const TableDef& table) {
  ResultRows result;
  result.columns = {NameColumn("index_name"),
                    TextColumn("index_description", 210),
                    {"index_keys", NVarChar(2078), true, false}};
  for (const IndexDef& index : table.indexes) {
    result.rows.push_back({index.name, IndexDescription(index), IndexKeys(table, index)});
  }
  SortRows(result, {0});
  if (result.rows.empty()) {
    session.Message(15472, 0, 1,
                    "The object '" + table.name +
                        "' does not have any indexes, or you do not have permissions.");
  } else {
    session.SendRows(result.columns, result.rows);
  }
}

const char* RuleText(ForeignKeyRule rule) {
  static constexpr const char* kTexts[] = {"No Action", "Cascade", "Set Null", "Set Default"};
  return kTexts[static_cast<int>(rule)];
}

template <class Constraint>
std::string Status(const Constraint& constraint) {
  return constraint.disabled ? "Disabled" : "Enabled";
}

void Constraints(Session& session, const TableDef& table) {
  ResultRows result;
  result.columns = {{"constraint_type", NVarChar(146), true, false},
                    NameColumn("constraint_name"),
                    {"delete_action", NVarChar(9), true, false},
                    {"update_action", NVarChar(9), true, false},
                    {"status_enabled", VarChar(8), true, false},
                    {"status_for_replication", VarChar(19), true, false},
                    {"constraint_keys", NVarChar(2126), true, false}};
  const std::string none = "(n/a)";
  const Catalog& catalog = session.Link().Definitions();
  for (const CheckDef& check : table.checks) {
    const std::string type = check.column_id
                                 ? "CHECK on column " + table.Column(check.column_id).name
                                 : "CHECK Table Level ";
    result.rows.push_back({type, check.name, none, none, Status(check),
                           std::string("Is_For_Replication"), check.text});
  }
  for (const ColumnDef& column : table.columns) {
    if (column.default_id == 0) continue;
    result.rows.push_back({"DEFAULT on column " + column.name, column.default_name, none, none,
                           none, none, column.default_text});
  }
  for (const ForeignKeyDef& key : table.foreign_keys) {
    const TableDef& parent = catalog.tables.at(key.parent_table);
    result.rows.push_back({std::string("FOREIGN KEY"), key.name,
                           std::string(RuleText(key.on_delete)),
                           std::string(RuleText(key.on_update)), Status(key),
                           std::string("Is_For_Replication"), ColumnList(table, key.columns)});
    result.rows.push_back({std::string(" "), std::string(" "), std::string(" "), std::string(" "),
                           std::string(" "), std::string(" "),
                           "REFERENCES " + session.DatabaseName() + "." + parent.FullName() + " (" +
                               ColumnList(parent, key.parent_columns) + ")"});
  }
  for (const IndexDef& index : table.indexes) {
    if (!index.IsConstraint()) continue;
    const std::string type = fmt::format("{} ({})", index.primary ? "PRIMARY KEY" : "UNIQUE",
                                         index.clustered ? "clustered" : "non-clustered");
    result.rows.push_back({type, index.name, none, none, none, none, IndexKeys(table, index)});
  }
  if (result.rows.empty()) {
    session.Message(15469, 0, 1,
                    "No constraints are defined on object '" + table.name +
                        "', or you do not have permissions.");
  } else {
    session.SendRows(result.columns, result.rows);
  }
}

void References(Session& session, const TableDef& table) {
  ResultRows result;
  result.columns = {{"Table is referenced by foreign key", NVarChar(516), true, false}};
  for (const auto& [id, child] : session.Link().Definitions().tables) {
    for (const ForeignKeyDef& key : child.foreign_keys) {
      if (key.parent_table == table.id) {
        result.rows.push_back({session.DatabaseName() + "." + child.FullName() + ": " + key.name});
      }
    }
  }
  if (!result.rows.empty()) session.SendRows(result.columns, result.rows);
}

template <class Object>
void Head(Session& session, const Object& object, const char* type) {
  session.SendRows({NameColumn("Name"),
                    NameColumn("Owner"),
                    TextColumn("Type", 31),
                    {"Created_datetime", DateTimeType(), true, false}},
                   {{object.name, object.schema, std::string(type),
                     DateTimeValue{static_cast<std::int32_t>(object.created / kTicksPerDay),
                                   object.created % kTicksPerDay, 0}}});
}

int Help(Session& session, const Arguments& args) {
  const auto given = args.Text(0);
  if (!given) {
    AllObjects(session);
    return 0;
  }
  const ObjectName name = ParsedName(*given);
  if (const ViewDef* view = session.Link().FindView(name)) {
    Head(session, *view, "view");
    return 0;
  }
  const TableDef* table = session.Link().FindTable(name);
  if (!table) {
    SqlError error = Error(15009, *given, session.DatabaseName());
    error.messages.front().procedure = "sp_help";
    throw error;
  }
  Head(session, *table, "user table");
  Columns(session, *table);
  Identity(session, *table);
  RowGuid(session, *table);
  session.SendRows({NameColumn("Data_located_on_filegroup")}, {{std::string("PRIMARY")}});
  Indexes(session, *table);
  Constraints(session, *table);
  References(session, *table);
  return 0;
}

int HelpIndex(Session& session, const Arguments& args) {
  const std::string name = args.Text(0).value_or("");
  const TableDef* table = session.Link().FindTable(ParsedName(name));
  if (!table) Raise(15009, name, session.DatabaseName());
  Indexes(session, *table);
  return 0;
}

int HelpConstraint(Session& session, const Arguments& args) {
  const std::string name = args.Text(0).value_or("");
  const TableDef* table = session.Link().FindTable(ParsedName(name));
  if (!table) Raise(15009, name, session.DatabaseName());
  Constraints(session, *table);
  References(session, *table);
  return 0;
}

}  // namespace

std::span<const Procedure> HelpProcedures() {
  static const std::vector<Procedure> kProcedures{
      {"sp_help", {"@objname"}, Help},
      {"sp_helpindex", {"@objname"}, HelpIndex},
      {"sp_helpconstraint", {"@objname", "@nomsg"}, HelpConstraint},
  };
  return kProcedures;
}

}  // namespace sandbox
