#include <gmock/gmock.h>

#include "tests/support/servers.h"

namespace dorvane::test {

namespace {

using ::testing::HasSubstr;

/// What a script shows, errors and messages included.
std::string Said(const SandboxServer& server, const std::string& script,
                 const std::string& database) {
  try {
    return server.Script(script, database);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

// A server that lacks what others have, and shows its tables in lower case.
TEST(LackingServer, IsToldAtItsStart) {
  SandboxServer server({"shop"},
                       {"--without", "sp_help", "INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS",
                        "--lower-case-tables"});
  server.Script("create table Album (Id int primary key)\ngo\n", "shop");
  const auto said = [&](const std::string& batch) {
    return Said(server, batch + "\ngo\n", "shop");
  };
  EXPECT_THAT(said("exec sp_help Album"), HasSubstr("Could not find stored procedure 'sp_help'."));
  EXPECT_THAT(said("select * from INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS"),
              HasSubstr("Invalid object name 'INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS'."));
  EXPECT_EQ(said("exec sp_tables @table_type = \"'TABLE'\""), "shop\tdbo\talbum\tTABLE\tNULL\n");
  EXPECT_THAT(said("exec sp_columns Album"), ::testing::StartsWith("shop\tdbo\tAlbum\tId\t"));
  EXPECT_EQ(said("select name from sys.tables"), "Album\n");
}

}  // namespace
}  // namespace dorvane::test
