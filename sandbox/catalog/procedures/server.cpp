#include <filesystem>

#include "sandbox/catalog/procedures/procedure.h"
#include "sandbox/text/text_order.h"

namespace sandbox {

namespace {

using namespace sys;

struct Database {
  std::string name;
  std::int64_t kilobytes;
};

const ShownColumns<Database> kDatabases{
    {"DATABASE_NAME", kName, [](const Database& d) { return Value(d.name); }},
    {"DATABASE_SIZE", kInt, [](const Database& d) { return Int(d.kilobytes); }},
    Null<Database>("REMARKS", kRemarks),
};

int Databases(Session& session, const Arguments&) {
  std::vector<Database> databases;
  for (const auto& database : session.Folder().All()) {
    std::error_code ignored;
    const auto bytes = std::filesystem::file_size(database->file, ignored);
    databases.push_back({database->name, ignored ? 0 : static_cast<std::int64_t>(bytes / 1024)});
  }
  SendItems(session, kDatabases, databases, {0});
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
  session.RunText("create type " + Bracketed(args.Text(0).value_or("")) + " from " +
                  args.Text(1).value_or("") + (nullable ? " null" : " not null"));
  return 0;
}

}  // namespace

std::span<const Procedure> IdleProcedures() {
  static const std::vector<Procedure> kProcedures{
      {"sp_updatestats", {}, Nothing},
      {"sp_dboption", {"@dbname", "@optname", "@optvalue"}, Nothing},
      {"sp_addrolemember", {"@rolename", "@membername"}, Nothing},
      {"sp_bindrule", {"@rulename", "@objname", "@futureonly"}, Nothing},
      {"sp_bindefault", {"@defname", "@objname", "@futureonly"}, Nothing},
  };
  return kProcedures;
}

std::span<const Procedure> ServerProcedures() {
  static const std::vector<Procedure> kProcedures{
      {"sp_databases", {}, Databases},
      {"sp_addtype", {"@typename", "@phystype", "@nulltype", "@owner"}, AddType},
  };
  return kProcedures;
}

}  // namespace sandbox
