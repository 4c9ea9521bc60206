#include "sandbox/catalog/sys_view_parts.h"

namespace sandbox {
namespace sys {

namespace {

using Database = std::shared_ptr<DatabaseState>;

std::vector<Database> Databases(Session& session, DatabaseLink&) {
  return session.Folder().All();
}

const Shown<Database> kDatabaseName{"name", kName,
                                    [](const Database& d) { return Value(d->name); }};
const Shown<Database> kDatabaseCollation{
    "collation_name", kName, [](const Database&) { return Word("SQL_Latin1_General_CP1_CI_AS"); }};

Value DatabaseId(const Database& database) {
  return Int(database->id);
}
Value Zero(const Database&) {
  return Int(0);
}
struct Running {
  int session;
  bool is_sending;
};

std::vector<Running> RunningRequests(Session& session, DatabaseLink&) {
  std::vector<Running> running;
  session.ServerRequests().ForEach([&](int spid, bool is_sending) {
    running.push_back({spid, is_sending});
  });
  return running;
}

}  // namespace
}  // namespace sys

std::vector<SystemView> SysServerViews() {
  using namespace sys;
  return {
      MakeView<Database>("databases",
                         {kDatabaseName,
                          {"database_id", kInt, DatabaseId},
                          kDatabaseCollation,
                          {"state", kTiny, Zero}},
                         Databases),
      MakeView<Database>(
          "sysdatabases",
          {kDatabaseName, {"dbid", kSmall, DatabaseId}, kDatabaseCollation, {"status", kInt, Zero}},
          Databases),
      MakeView<Running>(
          "dm_exec_requests",
          {{"session_id", kSmall, [](const Running& r) { return Int(r.session); }},
           {"status", kName,
            [](const Running& r) { return Word(r.is_sending ? "suspended" : "running"); }},
           {"wait_type", kName,
            [](const Running& r) { return r.is_sending ? Word("ASYNC_NETWORK_IO") : Value(); }}},
          RunningRequests)};
}

}  // namespace sandbox
