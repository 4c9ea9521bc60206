#include <fmt/format.h>

#include <thread>

#include "tests/sandbox/sql/batch.h"

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
  Must("create table late (c varchar(2000)); insert late values (replicate('y', 1800))");
  EXPECT_EQ(Run("create index c_ on late (c)").Numbers(), "1945 1946 3621");
}

// Rows that make a list long enough to be written in blocks: "(1,'r1'),(2,'r2'),...".
std::string ManyRows(int count, int odd_one = 0, const std::string& odd = "") {
  std::string rows;
  for (int i = 1; i <= count; ++i) {
    const std::string row = "(" + std::to_string(i) + ",'r" + std::to_string(i) + "')";
    rows += (i > 1 ? "," : "") + (i == odd_one ? odd : row);
  }
  return rows;
}

TEST_F(LimitsTest, LongListsFailWholeWithTheFirstRowsError) {
  Must(
      "create table t (id int not null constraint pk primary key, name varchar(6) not null "
      "constraint uq unique, extra int default 4 check (extra <> 5))");
  const std::string head = "insert t (id, name) values ";
  struct Case {
    const char* what;
    int row;
    const char* odd;
    const char* numbers;
    const char* text;
  };
  for (const Case& each : std::vector<Case>{
           {"a key again", 20, "(3,'x')", "2627 3621", "value is (3)."},
           {"both keys again: the primary key is named", 20, "(3,'r7')", "2627 3621", "'pk'"},
           {"the other key again", 20, "(99,'R7 ')", "2627 3621", "value is (R7 )."},
           {"no value", 33, "(null,'x')", "515 3621", "column 'id'"},
           {"too long", 18, "(18,'1234567')", "2628 3621", "Truncated value: '123456'."},
           {"no number, which the whole list is", 40, "('x','x')", "245", "'x'"}}) {
    const Answer answer = Run(head + ManyRows(50, each.row, each.odd));
    EXPECT_EQ(answer.Numbers(), each.numbers) << each.what;
    EXPECT_THAT(answer.FirstText(), ::testing::HasSubstr(each.text)) << each.what;
    EXPECT_EQ(Query("select count(*) from t"), "0") << each.what;
  }
  // In one block: the row that stands first decides.
  std::string rows = ManyRows(16, 9, "(2,'dup')");
  rows.replace(rows.find("'r12'"), 5, "'too long'");
  EXPECT_EQ(Run(head + rows).Numbers(), "2627 3621");
  rows = ManyRows(16, 12, "(2,'dup')");
  rows.replace(rows.find("'r9'"), 4, "'too long'");
  EXPECT_EQ(Run(head + rows).Numbers(), "2628 3621");
  Must(head + ManyRows(1000));
  EXPECT_EQ(Query("select count(*), min(id), max(id), sum(extra) from t"), "1000|1|1000|4000");
  EXPECT_EQ(Query("select count(*) from t where name = 'r' + convert(varchar(9), id)"), "1000");
  EXPECT_EQ(Run(head + ManyRows(1001)).Numbers(), "10738");
  Must("create table long_value (v varbinary(max))");
  Must("insert long_value values (0x" + std::string(8 << 20, 'A') + ")");
  EXPECT_EQ(Query("select datalength(v), substring(v, 4194303, 2) from long_value"),
            "4194304|0xAAAA");
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
