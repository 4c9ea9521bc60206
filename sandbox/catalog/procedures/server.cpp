#include <filesystem>

#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/catalog/session.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/ticks.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {
namespace {

int Databases(Session& session, const Arguments&) {
  ResultRows result;
  result.columns = {NameColumn("DATABASE_NAME"), IntColumn("DATABASE_SIZE"),
                    TextColumn("REMARKS", 254)};
  for (const auto& database : session.Folder().All()) {
    std::error_code ignored;
    const auto bytes = std::filesystem::file_size(database->file, ignored);
    const std::int64_t kilobytes = ignored ? 0 : static_cast<std::int64_t>(bytes / 1024);
    result.rows.push_back({database->name, kilobytes, Value()});
  }
  SortRows(result, {0});
  session.SendRows(result.columns, result.rows);
  return 0;
}

int HelpDatabase(Session& session, const Arguments&) {
  ResultRows result;
  result.columns = {NameColumn("name"),
                    TextColumn("owner", 128),
                    SmallColumn("dbid"),
                    {"created", DateTimeType(), true, false}};
  for (const auto& database : session.Folder().All()) {
    result.rows.push_back(
        {database->name, session.Login(), Number(database->id),
         DateTimeValue{static_cast<std::int32_t>(database->created / kTicksPerDay),
                       database->created % kTicksPerDay, 0}});
  }
  SortRows(result, {0});
  session.SendRows(result.columns, result.rows);
  return 0;
}

int Who(Session& session, const Arguments&) {
  const auto spid = session.SessionValue("@@spid", {});
  session.SendRows(
      {SmallColumn("spid"), NameColumn("status"), NameColumn("loginame"), NameColumn("dbname")},
      {{spid->first, std::string("runnable"), session.Login(), session.DatabaseName()}});
  return 0;
}

// For what drivers and scripts call and that has nothing to do here.
int Nothing(Session&, const Arguments&) {
  return 0;
}

std::string Bracketed(const std::string& name) {
  std::string quoted = "[";
  for (const char c : name) quoted.append(c == ']' ? 2 : 1, c);
  return quoted + "]";
}

int AddType(Session& session, const Arguments& args) {
  const std::string nulls = LowerText(args.Text(2).value_or("null"));
  const bool nullable = nulls == "null";
  session.RunBatch("create type " + Bracketed(args.Text(0).value_or("")) + " from " +
                   args.Text(1).value_or("") + (nullable ? " null" : " not null"));
  return 0;
}

int DropType(Session& session, const Arguments& args) {
  session.RunBatch("drop type " + Bracketed(args.Text(0).value_or("")));
  return 0;
}

int ServerInfo(Session& session, const Arguments& args) {
  const std::pair<std::int64_t, std::pair<const char*, const char*>> kInfo[] = {
      {1, {"DBMS_NAME", "Microsoft SQL Server"}},
      {2, {"DBMS_VER", "Microsoft SQL Server 2019 - 15.0.2000.5"}},
      {10, {"OWNER_TERM", "owner"}},
      {11, {"TABLE_TERM", "table"}},
      {12, {"MAX_OWNER_NAME_LENGTH", "128"}},
      {16, {"IDENTIFIER_CASE", "MIXED"}},
      {18,
       {"COLLATION_SEQ", "charset=iso_1 sort_order=nocase_iso charset_num=1 sort_order_num=52"}}};
  ResultRows result;
  result.columns = {IntColumn("ATTRIBUTE_ID"), TextColumn("ATTRIBUTE_NAME", 60),
                    TextColumn("ATTRIBUTE_VALUE", 255)};
  for (const auto& [id, info] : kInfo) {
    if (args.Integer(0, id) == id)
      result.rows.push_back({id, std::string(info.first), std::string(info.second)});
  }
  session.SendRows(result.columns, result.rows);
  return 0;
}

}  // namespace

std::span<const Procedure> IdleProcedures() {
  static const std::vector<Procedure> kProcedures{
      {"sp_updatestats", {}, Nothing},
      {"sp_dboption", {"@dbname", "@optname", "@optvalue"}, Nothing},
      {"sp_dbcmptlevel", {"@dbname", "@new_cmptlevel"}, Nothing},
      {"sp_configure", {"@configname", "@configvalue"}, Nothing},
      {"sp_changedbowner", {"@loginame", "@map"}, Nothing},
      {"sp_grantdbaccess", {"@loginame", "@name_in_db"}, Nothing},
      {"sp_addrolemember", {"@rolename", "@membername"}, Nothing},
      {"sp_bindrule", {"@rulename", "@objname", "@futureonly"}, Nothing},
      {"sp_unbindrule", {"@objname", "@futureonly"}, Nothing},
      {"sp_bindefault", {"@defname", "@objname", "@futureonly"}, Nothing},
      {"sp_unbindefault", {"@objname", "@futureonly"}, Nothing},
      {"sp_tableoption", {"@TableNamePattern", "@OptionName", "@OptionValue"}, Nothing},
      {"sp_fulltext_database", {"@action"}, Nothing},
      {"sp_recompile", {"@objname"}, Nothing},
  };
  return kProcedures;
}

std::span<const Procedure> ServerProcedures() {
  static const std::vector<Procedure> kProcedures{
      {"sp_databases", {}, Databases},
      {"sp_helpdb", {"@dbname"}, HelpDatabase},
      {"sp_who", {"@loginame"}, Who},
      {"sp_server_info", {"@attribute_id"}, ServerInfo},
      {"sp_reset_connection", {}, Nothing},
      {"sp_addtype", {"@typename", "@phystype", "@nulltype", "@owner"}, AddType},
      {"sp_droptype", {"@typename"}, DropType},
  };
  return kProcedures;
}

}  // namespace sandbox
