// A preview says beforehand what a run does and what is lost by it, and changes nothing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;

constexpr const char* kMsSqlShop =
    "create table Customer (Id int identity(7,1) not null primary key, Name nvarchar(40) not null, "
    "Note varchar(max) null, Price money default 1.5)\ngo\n"
    "create unique index Names on Customer(Name)\ngo\n"
    "insert into Customer (Name, Note) values (N'Łódź', 'short')\n"
    "insert into Customer (Name, Note) values (N'x', replicate(convert(varchar(max), 'long '), "
    "20000))\ngo\n"
    "create table Orders (No int not null primary key, Customer int not null references "
    "Customer(Id))\ngo\n"
    "insert into Orders values (1, 7)\ngo\n";

constexpr const char* kMySqlShop =
    "create table Customer (Id int auto_increment primary key, Name varchar(40) not null unique, "
    "Born date, Kind enum('a','b') default 'b') character set utf8mb4;"
    "insert into Customer values (1, 'Łódź', '1700-01-01', 'a'), (2, 'x', null, null);"
    "create table Orders (No int primary key, Customer int not null, foreign key (Customer) "
    "references Customer(Id));"
    "insert into Orders values (1, 1);";

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class PreviewTest : public testing::Test {
 protected:
  void MakeShop(ServerKind source) {
    if (source == ServerKind::MsSql) {
      rig_.MsSql().Script(kMsSqlShop, database_);
    } else {
      rig_.MySql().Query(kMySqlShop, database_);
    }
  }
  Job TheJob(ServerKind source) const {
    return {.source = source,
            .source_db = database_,
            .dest_db = database_,
            .tables = {"Customer", "Orders"},
            .mode = convert_mode::kOverwrite,
            .relationships = true};
  }
  std::string Preview(const Job& job, int status) {
    ProgramRun run(job, {}, {"--preview"});
    EXPECT_EQ(run.Wait(), status) << run.Output();
    EXPECT_EQ(run.Log(), "");
    return run.Output();
  }

  Rig& rig_ = Rig::Get();
  const std::string database_ = rig_.NewDatabases();
};

TEST_F(PreviewTest, ShowsTheStatementsThatAreSentToMySql) {
  MakeShop(ServerKind::MsSql);
  const std::string preview = Preview(TheJob(ServerKind::MsSql), 1);
  EXPECT_EQ(rig_.MySqlValue("show tables", database_), "");

  rig_.MySqlValue(
      "set global log_output = 'TABLE'; truncate mysql.general_log; "
      "set global general_log = 1",
      database_);
  ProgramRun run(TheJob(ServerKind::MsSql));
  run.Wait();
  rig_.MySqlValue("set global general_log = 0", database_);
  const std::string sent = rig_.MySqlValue(
      "select concat(convert(argument using utf8mb4), ';') from mysql.general_log where "
      "command_type = 'Query' and "
      "convert(argument using utf8mb4) regexp '^(create|alter|drop) ' order by event_time",
      database_);
  std::vector<std::string> shown = LinesOf(preview);
  std::erase_if(shown,
                [](const std::string& line) { return line.empty() || line.starts_with("--"); });
  EXPECT_THAT(shown, testing::ElementsAreArray(LinesOf(sent)));
  EXPECT_THAT(preview, HasSubstr("-- 2 rows are copied\n"));
}

TEST_F(PreviewTest, TheScriptForSqlServerMakesWhatTheRunMakes) {
  MakeShop(ServerKind::MySql);
  const std::string preview = Preview(TheJob(ServerKind::MySql), 1);
  EXPECT_EQ(rig_.MsSqlValue("select count(*) from sys.tables", database_), "0");

  ProgramRun run(TheJob(ServerKind::MySql));
  run.Wait();
  EXPECT_THAT(preview, HasSubstr("-- Note: Table Customer: 1 dates before 1753-01-01 were raised"));

  const std::string other = rig_.NewMsSqlDatabase();
  const std::size_t first_create = preview.find("Create ");
  ASSERT_NE(first_create, std::string::npos) << preview;
  rig_.MsSql().Script(preview.substr(first_create), other);
  for (const char* question :
       {"select object_name(object_id), name, type_name(system_type_id), max_length, is_nullable, "
        "is_identity from sys.columns where object_id in (select object_id from sys.tables) "
        "order by 1, column_id",
        "select object_name(object_id), type_desc, is_unique, is_primary_key from sys.indexes "
        "where object_id in (select object_id from sys.tables) order by 1, 2, 3, 4",
        "select name from sys.foreign_keys order by 1"}) {
    const std::string made = rig_.MsSqlValue(question, database_);
    EXPECT_NE(made, "");
    EXPECT_EQ(rig_.MsSqlValue(question, other), made);
  }
}

TEST_F(PreviewTest, NeedsSettingsAndServers) {
  Job job = TheJob(ServerKind::MsSql);
  job.dest_db = "missing";
  EXPECT_THAT(Preview(job, 1), HasSubstr("missing"));
  job.tables = {"nowhere"};
  job.dest_db = database_;
  EXPECT_THAT(Preview(job, 1), HasSubstr("nowhere"));
}

}  // namespace
}  // namespace dorvane::test
