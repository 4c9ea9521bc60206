// A preview says beforehand what a run does and what is lost by it, and changes nothing.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kMsSqlShop =
    "create table Customer (Id int identity(7,1) not null primary key, Name nvarchar(40) not null, "
    "Since datetime null, Note varchar(max) null, Code uniqueidentifier null, Price money default "
    "1.5)\ngo\n"
    "create unique index Names on Customer(Name)\ngo\n"
    "insert into Customer (Name, Since, Note) values (N'Łódź', '2024-02-29 12:30:15.123', "
    "'short')\n"
    "insert into Customer (Name, Note) values (N'x', replicate(convert(varchar(max), 'long '), "
    "20000))\n"
    "insert into Customer (Name) values (N'y')\ngo\n"
    "create table Orders (No int not null primary key, Customer int not null references "
    "Customer(Id))\ngo\n"
    "insert into Orders values (1, 7)\ngo\n"
    "create table Loose (A int null, B varchar(10) null)\ngo\n"
    "insert into Loose values (1, 'x')\ngo\n";

constexpr const char* kMySqlShop =
    "create table Customer (Id int auto_increment primary key, Name varchar(40) not null unique, "
    "Since datetime(6), Born date, Clock time, Note text, Kind enum('a','b') default 'b') "
    "character "
    "set utf8mb4;"
    "insert into Customer values (1, 'Łódź', '2024-02-29 12:30:15.123456', '1700-01-01', "
    "'12:00:00', 'n', 'a'), (2, 'x', null, null, null, null, null);"
    "create table Orders (No int primary key, Customer int not null, foreign key (Customer) "
    "references Customer(Id));"
    "insert into Orders values (1, 1);"
    "create table Loose (A int, B varchar(10));"
    "insert into Loose values (1, 'x')";

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// The messages of a log, as a preview says them.
std::vector<std::string> MessagesOf(const std::string& log) {
  std::vector<std::string> messages;
  for (const std::string& line : LinesOf(log)) {
    constexpr std::string_view kNote = "Note - Table ";
    if (line.starts_with(kNote)) messages.push_back("-- Note: Table " + line.substr(kNote.size()));
    const bool is_note = line.starts_with("Note - ");
    if (!is_note && line.find(" - ") != std::string::npos) messages.push_back("-- Lost: " + line);
  }
  return messages;
}

std::vector<std::string> RemarksOf(const std::string& preview) {
  std::vector<std::string> remarks = LinesOf(preview);
  std::erase_if(remarks, [](const std::string& line) {
    return !line.starts_with("-- Lost: ") && !line.starts_with("-- Note: ");
  });
  return remarks;
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
            .tables = {"Customer", "Loose", "Orders"},
            .mode = convert_mode::kOverwrite,
            .relationships = true};
  }
  std::string Preview(const Job& job, int status) {
    ProgramRun run(job, {}, {"--preview"});
    EXPECT_EQ(run.Wait(), status) << run.Output();
    EXPECT_EQ(run.Log(), "");
    return run.Output();
  }

  /// The remarks of a preview, which are the messages of the run.
  std::vector<std::string> AgreedRemarks(const Job& job, std::string* preview = nullptr) {
    const std::string text = Preview(job, 1);
    if (preview != nullptr) *preview = text;
    ProgramRun run(job);
    run.Wait();
    std::vector<std::string> remarks = RemarksOf(text);
    EXPECT_THAT(Disagreement(remarks, MessagesOf(run.Log())), IsEmpty()) << run.Log();
    return remarks;
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
  EXPECT_THAT(preview, HasSubstr("-- 3 rows are copied\n"));

  EXPECT_THAT(RemarksOf(preview), testing::ElementsAreArray(MessagesOf(run.Log())));
  EXPECT_THAT(RemarksOf(preview),
              Contains(HasSubstr("1 of 3 rows were not copied; the first: 1406 - Data too long for "
                                 "column 'Note' at row 1 (row 2)")));
}

TEST_F(PreviewTest, TheScriptForSqlServerMakesWhatTheRunMakes) {
  MakeShop(ServerKind::MySql);
  const std::string preview = Preview(TheJob(ServerKind::MySql), 1);
  EXPECT_EQ(rig_.MsSqlValue("select count(*) from sys.tables", database_), "0");

  ProgramRun run(TheJob(ServerKind::MySql));
  run.Wait();
  EXPECT_THAT(RemarksOf(preview), Contains(HasSubstr("1 dates before 1753-01-01 were raised")));
  EXPECT_THAT(RemarksOf(preview), testing::ElementsAreArray(MessagesOf(run.Log())));

  std::string script = preview;
  const std::string other = rig_.NewMsSqlDatabase();
  const std::size_t first_create = script.find("Create ");
  ASSERT_NE(first_create, std::string::npos) << script;
  rig_.MsSql().Script(script.substr(first_create), other);
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

TEST_F(PreviewTest, FindsNamesThatAreTooLong) {
  const std::string name(70, 'n');
  rig_.MsSql().Script("create table " + name + " (A int)\ngo\ncreate table T (A int, B" + name +
                          " int)\ngo\ncreate table K (A int)\ngo\ncreate index I" + name +
                          " on K(A)\ngo\n",
                      database_);
  Job job = TheJob(ServerKind::MsSql);
  job.tables = {name, "T", "K"};
  std::vector<std::string> remarks = RemarksOf(Preview(job, 1));
  ProgramRun run(job);
  EXPECT_EQ(run.Wait(), 1);
  const auto is_of_table = [](const std::string& line) {
    return line.find("'nnn") != std::string::npos;
  };
  EXPECT_EQ(std::erase_if(remarks, is_of_table), 1U) << "MariaDB has words of its own for it";
  std::vector<std::string> told;
  for (const std::string& line : LinesOf(run.Log())) {
    if (line.find("is too long") != std::string::npos && !is_of_table(line)) {
      told.push_back("-- Lost: " + line);
    }
  }
  EXPECT_EQ(told.size(), 2U) << run.Log();
  EXPECT_THAT(remarks, testing::ElementsAreArray(told));
}

TEST_F(PreviewTest, TellsOfTablesThatAreThere) {
  MakeShop(ServerKind::MsSql);
  rig_.MySqlValue("create table Loose (A int, B varchar(10)); insert into Loose values (1, 'old')",
                  database_);
  Job job = TheJob(ServerKind::MsSql);
  job.tables = {"Loose"};
  EXPECT_THAT(
      Preview(job, 1),
      HasSubstr("-- Note: Table Loose: the 1 row of Loose on the destination are dropped\n"));

  job.mode = convert_mode::kMerge;
  rig_.MySqlValue("alter table Loose add primary key (A)", database_);
  const std::string merged = Preview(job, 1);
  EXPECT_THAT(merged, HasSubstr("-- Loose is there with 1 row\n"));
  EXPECT_THAT(merged, testing::Not(HasSubstr("Create Table")));
  EXPECT_THAT(RemarksOf(merged),
              testing::ElementsAre(HasSubstr("1 of 1 rows were there already and were left out")));
  rig_.MySqlValue("delete from Loose", database_);
  EXPECT_THAT(Preview(job, 0), HasSubstr("-- Nothing would be lost.\n"));

  rig_.MsSql().Script("insert into Loose values (2, 'ten signs!'), (3, 'ab')\ngo\n", database_);
  rig_.MySqlValue("alter table Loose modify B varchar(4)", database_);
  EXPECT_THAT(RemarksOf(Preview(job, 1)),
              Contains(HasSubstr("1 of 3 rows were not copied; the first: 1406")));
  EXPECT_EQ(rig_.MySqlValue("select count(*) from Loose", database_), "0");

  rig_.MySqlValue("create trigger Ring before insert on Loose for each row set new.A = 1",
                  database_);
  EXPECT_THAT(Preview(job, 1), HasSubstr("\n-- Not foretold: what its triggers do (Loose)\n"));
}

TEST_F(PreviewTest, ForetellsKeysThatCannotBeMade) {
  rig_.MsSql().Script(
      "create table Parent (Id int not null primary key, Other int not null unique)\ngo\n"
      "create table Wide (A nvarchar(420) not null, B nvarchar(420) not null, "
      "constraint TooWide primary key nonclustered (A, B), Up int null "
      "references Parent(Id), Same int null references Parent(Other))\ngo\n"
      "insert into Parent values (1, 1)\ninsert into Wide values (N'a', N'b', 1, 1)\ngo\n",
      database_);
  Job job = TheJob(ServerKind::MsSql);
  job.tables = {"Wide"};  // without its parent
  const std::vector<std::string> remarks = AgreedRemarks(job);
  EXPECT_THAT(remarks, Contains(HasSubstr("TooWide")));
  EXPECT_THAT(remarks, Contains(HasSubstr("between table Wide and table Parent")));

  rig_.MySqlValue(
      "create table Bytes (K varbinary(2000) not null, primary key (K));"
      "insert into Bytes values (repeat('x', 10)), (repeat('y', 1800))",
      database_);
  job = TheJob(ServerKind::MySql);
  job.tables = {"Bytes"};
  EXPECT_THAT(AgreedRemarks(job), Contains(HasSubstr("1946")));
}

TEST_F(PreviewTest, ForetellsRowsThatATableDoesNotTake) {
  rig_.MsSql().Script(
      "create table Stock (Id int not null primary key, N int null, D datetime null, "
      "Name nvarchar(90) null)\ngo\n"
      "insert into Stock values (1, 1, null, N'there')\n"
      "insert into Stock values (2, 70000, null, N'large'), (3, null, null, N'none')\n"
      "insert into Stock values (4, 4, '2020-01-01 10:00:00.500', N'fine'), (5, 80000, null, '')\n"
      "insert into Stock values (6, 6, null, N'\u0416\u0416\u0416')\ngo\n",
      database_);
  Job job = TheJob(ServerKind::MsSql);
  job.tables = {"Stock"};
  job.mode = convert_mode::kMerge;
  std::string preview;
  for (const char* engine : {"innodb", "myisam"}) {
    SCOPED_TRACE(engine);
    rig_.MySqlValue(
        fmt::format(
            "drop table if exists Stock; create table Stock (Id int primary key, N smallint "
            "not null, D datetime, Name varchar(60) character set latin1) engine = {}; "
            "insert into Stock values (1, 1, null, 'there')",
            engine),
        database_);
    EXPECT_THAT(AgreedRemarks(job, &preview),
                testing::IsSupersetOf({HasSubstr("3 of 6 rows were not copied; the first: 1264"),
                                       HasSubstr("1 of 6 rows were there already"),
                                       HasSubstr("1 values of table Stock hold characters")}));
    EXPECT_THAT(preview, HasSubstr("-- For example N = 70000, row 2 of 2 such: 1264 - "));
    EXPECT_THAT(preview, HasSubstr("-- For example N = NULL, row 3 of 1 such: 1048 - "));
    EXPECT_THAT(preview, HasSubstr("-- For example D = 2020-01-01 10:00:00.5: fractions"));
    EXPECT_THAT(preview, HasSubstr("-- For example Name = \u0416\u0416\u0416: hold characters"));
  }

  rig_.MySqlValue(
      "create table Store (Id int primary key, N bigint, Born date, Name varchar(90));"
      "insert into Store values (1, 1, null, 'there'), (2, 3000000000, null, 'large'), "
      "(3, 3, '1500-01-01', 'fine'), (4, 4, null, null)",
      database_);
  rig_.MsSql().Script(
      "create table Store (Id int not null primary key, N int null, Born datetime null, "
      "Name nvarchar(9) not null)\ngo\ninsert into Store values (1, 1, null, N'there')\ngo\n",
      database_);
  job = TheJob(ServerKind::MySql);
  job.tables = {"Store"};
  job.mode = convert_mode::kMerge;
  EXPECT_THAT(AgreedRemarks(job, &preview), Contains(HasSubstr("2 of 4 rows were not copied")));
  EXPECT_THAT(preview, HasSubstr("-- For example Name = NULL, row 4 of 1 such: 515 - "));
  EXPECT_THAT(preview, HasSubstr("-- For example Born = 1500-01-01"));
}

TEST_F(PreviewTest, ForetellsWhatTheLoginMayNotDo) {
  MakeShop(ServerKind::MsSql);
  const auto answer = [&](const std::string& statements) {
    return rig_.MySqlValue(statements, database_);
  };
  answer(
      "create user clerk identified by 'secret'; create table Loose (A int, B varchar(10));"
      "create table Orders (No int primary key, Customer int not null);"
      "grant select on " +
      database_ + ".* to clerk; grant insert on " + database_ + ".Loose to clerk");
  Job job = TheJob(ServerKind::MsSql);
  job.my_sql_user = "clerk";
  job.mode = convert_mode::kMerge;
  EXPECT_THAT(AgreedRemarks(job), Contains(HasSubstr("CREATE command denied")));
  answer("grant create on " + database_ + ".* to clerk");
  EXPECT_THAT(AgreedRemarks(job), Contains(HasSubstr("INSERT command denied")));

  answer("grant all on " + database_ + ".* to clerk; revoke drop on " + database_ +
         ".* from clerk");
  job.mode = convert_mode::kOverwrite;
  EXPECT_THAT(AgreedRemarks(job), Contains(HasSubstr("DROP command denied")));

  answer("grant drop on " + database_ + ".* to clerk; revoke index on " + database_ +
         ".* from clerk");
  EXPECT_THAT(AgreedRemarks(job), Contains(HasSubstr("INDEX command denied")));

  // MariaDB asks for no right to refer to a table.
  answer("grant index on " + database_ + ".* to clerk; revoke references on " + database_ +
         ".* from clerk");
  const bool is_asked = !rig_.MySql().IsMariaDb();
  const auto denial = Contains(HasSubstr("REFERENCES command denied"));
  EXPECT_EQ(testing::Matches(denial)(AgreedRemarks(job)), is_asked);

  rig_.MsSql().Script("create schema Sales\ngo\ncreate table Sales.Deals (A int)\ngo\n", database_);
  job.tables = {"Sales.Deals"};
  job.schemas = SchemaPolicy::Database;
  EXPECT_THAT(AgreedRemarks(job), Contains(HasSubstr("Access denied for user 'clerk'@'%' to "
                                                     "database 'Sales'")));
  answer("drop user clerk");
}

TEST_F(PreviewTest, NeedsSettingsAndServers) {
  Job job = TheJob(ServerKind::MsSql);
  job.dest_db = "missing";
  EXPECT_THAT(Preview(job, 1), HasSubstr("missing"));
  job.tables = {"nowhere"};
  job.dest_db = database_;
  EXPECT_THAT(RemarksOf(Preview(job, 1)), Contains(HasSubstr("nowhere")));
}

}  // namespace
}  // namespace dorvane::test
