#include <gtest/gtest.h>

#include <fstream>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

TEST(Conversion, TheUsersOwnDriverSettingsDoNotMatter) {
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  rig.MsSql().Script(
      "create table T (V nvarchar(20) null)\ngo\ninsert into T values (N'я漢')\ngo\n", db);
  const TempFolder home;
  std::ofstream(home / ".odbc.ini") << "[127.0.0.1]\nDriver=nonsense\nServer=10.255.255.1\n";
  std::ofstream(home / ".freetds.conf")
      << "[global]\ntds version = 5.0\nclient charset = ISO-8859-1\nport = 1\ntext size = 1\n"
         "[127.0.0.1]\nhost = 10.255.255.1\n";
  std::ofstream(home / ".my.cnf") << "[client]\nuser=nobody\nport=1\nsocket=/nowhere\n";
  const std::string conf = (home / ".freetds.conf").string();
  ProgramRun run({.source_db = db, .dest_db = db, .tables = {"T"}},
                 {{"HOME", home.Path().string()},
                  {"FREETDSCONF", conf},
                  {"FREETDS", conf},
                  {"TDSVER", "4.2"},
                  {"TDSPORT", "1"},
                  {"TDSHOST", "10.255.255.1"},
                  {"TDSDUMP", (home / "dump").string()},
                  {"ODBCINI", (home / ".odbc.ini").string()},
                  {"LC_ALL", "C"}});
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  EXPECT_EQ(rig.MySqlValue("select hex(V) from T", db), "D18FE6BCA2");
  EXPECT_FALSE(std::filesystem::exists(home / "dump")) << "it holds passwords";
}

}  // namespace
}  // namespace dorvane::test
