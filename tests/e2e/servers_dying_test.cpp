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

}  // namespace
}  // namespace dorvane::test
