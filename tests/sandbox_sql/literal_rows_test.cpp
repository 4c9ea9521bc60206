#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

// Rows of plain literals take a way of their own into a table. In parentheses a literal is an
// expression, which takes the general way: both must store, and refuse, the same.
class LiteralRowsTest : public BatchTest {
 protected:
  // What a statement leaves: its messages, and the rows.
  std::string Outcome(const std::string& values) {
    const Answer answer = Run("insert t (v) values " + values);
    std::string outcome = answer.Numbers();
    for (const ServerMessage& message : answer.messages) outcome += "\n" + message.text;
    outcome += "\n" + Query("select v from t order by n");
    Must("truncate table t");
    return outcome;
  }
  void MakeTable(const std::string& type) {
    Must("if object_id('t') is not null drop table t");
    Must("create table t (n int identity, v " + type + " null default null)");
  }
};

TEST_F(LiteralRowsTest, ALiteralIsStoredAsItsExpressionIs) {
  const std::vector<std::string> types{"bit",
                                       "tinyint",
                                       "smallint",
                                       "int",
                                       "bigint",
                                       "decimal(5,2)",
                                       "decimal(38,10)",
                                       "money",
                                       "smallmoney",
                                       "real",
                                       "float",
                                       "varchar(5)",
                                       "nvarchar(3)",
                                       "char(4)",
                                       "nchar(4)",
                                       "text",
                                       "varbinary(3)",
                                       "binary(3)",
                                       "image",
                                       "datetime",
                                       "date",
                                       "time(2)",
                                       "smalldatetime",
                                       "datetime2(3)",
                                       "datetimeoffset(0)",
                                       "sql_variant",
                                       "xml",
                                       "varchar(max)",
                                       "uniqueidentifier"};
  const std::vector<std::string> literals{"NULL",
                                          "0",
                                          "-0",
                                          "1",
                                          "255",
                                          "256",
                                          "-32769",
                                          "2147483647",
                                          "2147483648",
                                          "-2147483648",
                                          "9223372036854775807",
                                          "9223372036854775808",
                                          "000000000000000000000000000000000000000001",
                                          "99999999999999999999999999999999999999",
                                          "5.",
                                          ".5",
                                          "-0.0",
                                          "1.005",
                                          "999.994",
                                          "999.995",
                                          "0.1234567890123456789",
                                          "123456789.123456789",
                                          "1e2",
                                          "-2.5E-1",
                                          "1e",
                                          "1e-400",
                                          "3.5e38",
                                          "$1.23456",
                                          "-$2",
                                          "''",
                                          "' '",
                                          "'12'",
                                          "' 7 '",
                                          "'abcde'",
                                          "'abcdef'",
                                          "'abcde  '",
                                          "'it''s'",
                                          "N'it''s'",
                                          "''''",
                                          "N'яé€'",
                                          "'я€é'",
                                          "'€é€é'",
                                          "N'😀a'",
                                          "N'😀ab'",
                                          "'1.5'",
                                          "0x",
                                          "0x1",
                                          "0xABCDEF",
                                          "0x0102030405",
                                          "0x010203000000",
                                          "'2024-02-29'",
                                          "'2023-02-29'",
                                          "'2024-01-01 23:59:59.999'",
                                          "'2024-01-01T10:00:31'",
                                          "'1752-12-31'",
                                          "'2024-01-01 10:00:00.12345678'",
                                          "'2024-01-01 24:00:00'",
                                          "'10:30 PM'",
                                          "'2024-1-1'",
                                          "'2079-06-06 23:59:30'",
                                          "'9999-12-31 23:59:59.999'",
                                          "'2024-01-01 10:00 +02:00'",
                                          "'6F9619FF-8B86-D011-B42D-00C04FC964FF'"};
  for (const std::string& type : types) {
    MakeTable(type);
    for (const std::string& literal : literals) {
      EXPECT_EQ(Outcome("(" + literal + ")"), Outcome("((" + literal + "))"))
          << literal << " into " << type;
    }
  }
}

TEST_F(LiteralRowsTest, RowsAgreeOnATypeAsTheirExpressionsDo) {
  const std::vector<std::string> literals{"NULL",  "7",    "-1.25", "12345678901", "1e1", "'5'",
                                          "N'яя'", "0x41", "$3.5",  "default",     "'x'", "0.5"};
  for (const char* type : {"int", "decimal(9,1)", "float", "varchar(6)", "nvarchar(6)",
                           "varbinary(4)", "datetime", "sql_variant"}) {
    MakeTable(type);
    for (const std::string& first : literals) {
      for (const std::string& second : literals) {
        const auto general = [](const std::string& literal) {
          return literal == "default" ? "(default)" : "((" + literal + "))";
        };
        EXPECT_EQ(Outcome("(" + first + "),(" + second + ")"),
                  Outcome(general(first) + "," + general(second)))
            << first << " and " << second << " into " << type;
      }
    }
  }
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

TEST_F(LiteralRowsTest, LongListsFailWholeWithTheFirstRowsError) {
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
}

}  // namespace
}  // namespace sandbox::testing
