#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/sandbox/sql/batch.h"

namespace sandbox::testing {

namespace {

class FuzzTest : public BatchTest {};

/// Parted by "|".
constexpr const char* kPieces =
    "select|insert|into|values|update|set|delete|from|t|a|b|where|=|<|>|(|)|,|*|+|-|/|%|.|;|"
    "'x'|N'я'|0x0A|0x|1|2.5|1e3|99999999999|null|not|and|or|in|like|between|exists|case|when|"
    "then|else|end|begin|tran|commit|rollback|create|table|index|on|int|varchar|(max)|"
    "decimal(5,2)|primary key|default|check|foreign key|references|drop|alter|add|constraint|"
    "unique|identity|group by|order by|having|top|distinct|union|all|join|left|count(*)|sum(|"
    "max(|cast(|as|convert(|getdate()|newid()|isnull(|substring(|dateadd(day,|@x|@@rowcount|"
    "declare|if|while 1=0|print|exec|sp_help|sp_columns|sp_tables|truncate|[|]|\"q q\"|'|/*|"
    "--|\n|go|sys.columns|INFORMATION_SCHEMA.TABLES|with|over|raiserror('%s',16,1)";

std::vector<std::string> Pieces() {
  std::vector<std::string> pieces;
  std::istringstream text(kPieces);
  for (std::string piece; std::getline(text, piece, '|');) pieces.push_back(piece);
  return pieces;
}

TEST_F(FuzzTest, TokenSoupIsAnswered) {
  const std::vector<std::string> pieces = Pieces();
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
  };
  const char* starts[] = {"select ",
                          "insert t values (",
                          "insert t select ",
                          "update t set ",
                          "delete t where ",
                          "create table ",
                          "alter table t ",
                          "select * from t where ",
                          "declare @x int ",
                          "exec ",
                          ""};
  for (int round = 0; round < 20000; ++round) {
    if (round % 500 == 0) {
      Run("if @@trancount > 0 rollback drop table if exists t");
      Run("create table t (a int null, b varchar(10) null, c decimal(5,2) null) insert t values "
          "(1, 'x', 1.5)");
    }
    std::string batch = starts[below(std::size(starts))];
    for (std::size_t i = below(14); i > 0; --i) batch += pieces[below(pieces.size())] + " ";
    const Answer answer = Run(batch);
    for (const ServerMessage& message : answer.messages) {
      EXPECT_NE(message.number, 15034) << batch << "\n" << message.text;
    }
  }
  session->cancel = false;
  EXPECT_EQ(Run("select 'alive'").Rows(), "alive");
}

TEST_F(FuzzTest, EndlessTextIsRefusedNotFollowed) {
  const auto repeated = [](const std::string& piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
  };
  EXPECT_EQ(Run("select " + repeated("(", 100000)).Numbers(), "191");
  EXPECT_EQ(Run("select " + repeated("- ", 100000) + "1").Numbers(), "191");
  EXPECT_EQ(Run("select 1 where " + repeated("not ", 100000) + "1 = 1").Numbers(), "191");
  EXPECT_EQ(Run("select 1" + repeated("+1", 100000)).Numbers(), "191");
  EXPECT_EQ(Run("select 1 where 1=1" + repeated(" or 1=1", 100000)).Numbers(), "191");
  EXPECT_EQ(Run(repeated("begin ", 100000)).Numbers(), "191");
  EXPECT_EQ(Run(repeated("if 1=1 ", 100000) + "select 1").Numbers(), "191");
  EXPECT_EQ(Run("select " + repeated("case when 1=1 then ", 100000)).Numbers(), "191");
  EXPECT_EQ(Run("select * from " + repeated("(", 100000)).Numbers(), "191");
  EXPECT_EQ(Run(repeated("/*", 100000)).Numbers(), "113");
  EXPECT_EQ(Run("select 'alive'").Rows(), "alive");
}

}  // namespace
}  // namespace sandbox::testing
