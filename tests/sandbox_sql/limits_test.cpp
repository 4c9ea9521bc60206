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

TEST_F(LimitsTest, DisabledConstraintsAndIndexes) {
  Must(
      "create table p (id int primary key); create table c (f int constraint fk references p (id) "
      "on delete cascade, v int constraint ck check (v > 0), w int); create unique index ux on c "
      "(w); insert p values (1)");
  struct Case {
    const char* batch;
    const char* numbers;
  };
  const auto state = [&] {
    return Query(
        "select f.is_disabled, f.is_not_trusted, k.is_disabled, k.is_not_trusted, i.is_disabled "
        "from sys.foreign_keys f, sys.check_constraints k, sys.indexes i where i.name = 'ux'");
  };
  for (const auto& [batch, numbers] : std::vector<Case>{
           {"insert c values (9, 1, 1)", "547 3621"},
           {"alter table c nocheck constraint fk", ""},
           {"insert c values (9, 1, 1)", ""},
           {"insert c values (9, 0, 2)", "547 3621"},
           {"alter table c nocheck constraint all", ""},
           {"insert c values (9, 0, 2)", ""},
           {"alter table c with check check constraint all", "547"},
           {"alter table c check constraint ck, nosuch", "4917 4916"},
       }) {
    EXPECT_EQ(Run(batch).Numbers(), numbers) << batch;
  }
  EXPECT_EQ(state(), "1|1|1|1|0");
  Must("alter table c check constraint all");
  EXPECT_EQ(state(), "0|1|0|1|0");
  EXPECT_EQ(Run("insert c values (9, 1, 3)").Numbers(), "547 3621");
  Must("update c set f = 1, v = 1; alter table c with check check constraint all");
  Must("alter index ux on c disable; update c set w = 1");
  Reopen();
  EXPECT_EQ(state(), "0|0|0|0|1");
  EXPECT_EQ(Run("alter index all on c rebuild").Numbers(), "1505");
  Must("delete c; insert c values (1, 1, 1); alter index ux on c rebuild");
  EXPECT_EQ(Run("insert c values (1, 1, 1)").Numbers(), "2601 3621");
  Must("alter table c nocheck constraint fk; delete p");
  EXPECT_EQ(Query("select count(*) from c"), "1") << "a disabled key does not cascade";
  EXPECT_EQ(Run("alter index nosuch on c disable").Numbers(), "2727");
}

TEST_F(LimitsTest, ForeignKeysOfOtherTypes) {
  Must(
      "create table p (a int unique, b decimal(9,2) unique, c char(5) unique, d varchar(9) unique, "
      "e nvarchar(9) unique)");
  struct Case {
    const char* column;
    const char* numbers;
  };
  for (const auto& [column, numbers] :
       std::vector<Case>{{"x bigint references p (a)", "1778 1750"},
                         {"x decimal(9,3) references p (b)", "1753 1750"},
                         {"x char(6) references p (c)", "1753 1750"},
                         {"x varchar(5) references p (c)", "1778 1750"},
                         {"x varchar(9) references p (e)", "1778 1750"},
                         {"x numeric(9,2) references p (b)", ""}}) {
    EXPECT_EQ(Run(fmt::format("create table c ({})", column)).Numbers(), numbers) << column;
  }
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
