#include <fmt/format.h>

#include <thread>

#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

class LimitsTest : public BatchTest {};

TEST_F(LimitsTest, OfTablesAndKeys) {
  std::string columns = "c1 int";
  for (int i = 2; i <= 1024; ++i) columns += fmt::format(", c{} int", i);
  Must("create table widest (" + columns + ")");
  EXPECT_EQ(
      Run("create table wider (" + columns + ", last int)").FirstText(),
      "CREATE TABLE failed because column 'last' in table 'wider' exceeds the maximum of 1024 "
      "columns.");
  struct Case {
    const char* batch;
    const char* numbers;
    const char* text;
  };
  for (const auto& [batch, numbers, text] : std::vector<Case>{
           {"create table fits (a char(8000), b char(53))", "", ""},
           {"create table too_wide (a char(8000), b char(54))", "1701",
            "Creating or altering table 'too_wide' failed because the minimum row size would be "
            "8061, "
            "including 7 bytes of internal overhead."},
           {"create table lies_elsewhere (a varchar(8000), b nvarchar(4000), c text, d char(9))",
            "", ""},
           {"alter table fits add c int", "1701", "Creating or altering table 'fits' failed"},
           {"create table k (a char(901), b char(900), c varchar(2000) null, d nvarchar(450), e "
            "char(1701))",
            "", ""},
           {"create clustered index ix on k (a)", "1944",
            "Index 'ix' was not created. This index has a key length of at least 901 bytes. The "
            "maximum permissible key length is 900 bytes."},
           {"alter table k add unique (e)", "1944 1750", "Index 'UQ__k"},
           {"create index e_ on k (e)", "1944", "Index 'e_' was not created."},
           {"create index a_ on k (a); create clustered index d_ on k (d)", "", ""},
           {"create index c_ on k (c)", "1945",
            "Warning! The maximum key length for a nonclustered index is 1700 bytes. The index "
            "'c_' has maximum length of 2000 bytes."},
           {"insert k (c) values (replicate('x', 1700))", "", ""},
           {"insert k (c) values (replicate('x', 1701))", "1946 3621",
            "Operation failed. The index entry of length 1701 bytes for the index 'c_' exceeds the "
            "maximum length of 1700 bytes for nonclustered indexes."},
           {"update k set c = replicate('x', 1800)", "1946 3621", "Operation failed."},
       }) {
    const Answer answer = Run(batch);
    EXPECT_EQ(answer.Numbers(), numbers) << batch << "\n" << answer.FirstText();
    EXPECT_THAT(answer.FirstText(), ::testing::StartsWith(text)) << batch;
  }
  EXPECT_EQ(Query("select len(c) from k"), "1700");
  Must("drop index k.c_; insert k (c) values (replicate('y', 1800))");
  EXPECT_EQ(Run("create index c_ on k (c)").Numbers(), "1945 1946 3621");
}

// Two sessions make the same table: the second one waits, and finds it there.
TEST_F(LimitsTest, TheSameTableFromTwoSessions) {
  const auto other = NewSession();
  Must("begin tran; create table made (a int)");
  EXPECT_EQ(Run(*other, "select * from made").Numbers(), "208");
  Answer second;
  std::thread waiting([&] { other->Execute("create table made (b int)", second); });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  Must("commit");
  waiting.join();
  EXPECT_EQ(second.Numbers(), "2714");
  EXPECT_EQ(Run(*other, "select a from made").Numbers(), "");
}

}  // namespace
}  // namespace sandbox::testing
