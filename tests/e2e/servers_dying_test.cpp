#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <thread>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kManyRows =
    "create table Digits (d int not null)\ngo\n"
    "insert into Digits values (0),(1),(2),(3),(4),(5),(6),(7),(8),(9)\ngo\n"
    "create table Big (Id int not null primary key, Note varchar(200) null)\ngo\n"
    "insert into Big (Id, Note) select a.d + 10*b.d + 100*c.d + 1000*e.d + 10000*f.d, "
    "replicate('x', 200) from Digits a cross join Digits b cross join Digits c cross join Digits e "
    "cross join Digits f\ngo\n"
    "create table Small (Id int not null primary key)\ngo\n";

/// Waits until rows have arrived in MariaDB, so that the copy is under way.
void AwaitRows(const PrivateMySql& server, const std::string& database) {
  for (int i = 0; i < 2000; ++i) {
    try {
      if (std::stol(server.Query("select count(*) from Big", database)) > 0) return;
    } catch (const std::exception&) {
      // the table is not there yet
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  FAIL() << "no rows arrived";
}

/// Servers of its own, since they do not survive the test, and a copy under way between them.
class DyingServers : public testing::Test {
 protected:
  DyingServers() {
    ms_sql_.Script(kManyRows, "big");
    my_sql_.Query("create database big");
    run_.emplace(Job{.source_db = "big",
                     .dest_db = "big",
                     .tables = {"Big", "Small"},
                     .ms_sql_port = ms_sql_.Port(),
                     .my_sql_port = my_sql_.Port()});
    AwaitRows(my_sql_, "big");
  }

  /// The run ends by itself and says where it was.
  void ExpectOrderlyEnd() {
    EXPECT_EQ(run_->Wait(), 1);
    EXPECT_THAT(run_->Log(), HasSubstr("Insertion Error - Unexpected error while transfering data "
                                       "of table Big - "));
    EXPECT_THAT(run_->Log(), HasSubstr("End OF Conversion"));
  }

  SandboxServer ms_sql_{{"big"}};
  PrivateMySql my_sql_;
  std::optional<ProgramRun> run_;
};

TEST_F(DyingServers, ALostDestinationIsReported) {
  my_sql_.Kill();
  ExpectOrderlyEnd();
  EXPECT_THAT(run_->Log(), HasSubstr("Note - The connection to the destination was lost. It is "
                                     "opened again in 15 s (try 3 of 3)\n"));
  EXPECT_THAT(run_->Log(), HasSubstr("The connection to the destination was lost\n"));
  EXPECT_THAT(run_->Log(), Not(HasSubstr("Done!")));
}

TEST_F(DyingServers, ALostSourceThatComesBackCostsOneTable) {
  ms_sql_.Restart();
  ExpectOrderlyEnd();
  EXPECT_THAT(run_->Log(), HasSubstr("Note - The connection to the source is open again\n"
                                     "Done!\n"));
}

struct Unreachable {
  Job job;
  std::string line;
};

TEST(UnreachableServers, AreLoggedInTheirOwnWords) {
  Rig& rig = Rig::Get();
  const std::string db = rig.NewDatabases();
  const Job good{.source_db = db, .dest_db = db, .tables = {"t"}};
  Job no_source = good, bad_source = good, no_source_db = good;
  no_source.ms_sql_port = FreePort();
  bad_source.ms_sql_password = "wrong";
  no_source_db.source_db = "nowhere";
  Job no_dest = good, bad_dest = good, no_dest_db = good;
  no_dest.my_sql_port = FreePort();
  bad_dest.my_sql_password = "wrong";
  no_dest_db.dest_db = "nowhere";
  const std::vector<Unreachable> cases = {
      {no_source,
       "Conversion Failed! MS SQL Server can not be found at that server. Make sure that "
       "you entered the correct host name"},
      {bad_source, "Conversion Failed! Access denied while trying to connect to MS SQL server"},
      {no_source_db, "Conversion Failed! Database nowhere does not exist. Please create it first."},
      {no_dest,
       "Conversion Failed! MySQL Server can not be found at that server. Make sure that you "
       "entered the correct host name"},
      {bad_dest, "Conversion Failed! Access denied while trying to connect to MySQL server"},
      {no_dest_db,
       "Conversion Failed! Database nowhere does not exist in MySQL Server. Please "
       "create it first."}};
  for (const auto& [job, line] : cases) {
    ProgramRun run(job);
    EXPECT_EQ(run.Wait(), 1);
    EXPECT_THAT(run.Log(), HasSubstr(line + "\n"));
    EXPECT_THAT(run.Log(), Not(HasSubstr("Conversion ended")));
  }
}

}  // namespace
}  // namespace dorvane::test
