#include "tests/sandbox/sql/batch.h"

namespace sandbox::testing {

namespace {

class BatchesTest : public BatchTest {
 protected:
  BatchesTest() { Must("create table t (id int primary key, v varchar(10) null)"); }
};

TEST_F(BatchesTest, VariablesAndFlow) {
  EXPECT_EQ(
      Query("declare @i int = 1, @s varchar(20) set @s = '' begin set @i = @i + 1 set @s = @s + "
            "cast(@i as varchar(5)) + ',' end select @s, @i"),
      "2,|2");
  EXPECT_EQ(
      Query(
          "declare @n int select @n = count(*) from t if @n > 0 select 'some' else select 'none'"),
      "none");
  EXPECT_EQ(Run("raiserror('%d of %s', 16, 3, 5, 'ten')").FirstText(), "5 of ten");
}

TEST_F(BatchesTest, CountsAndOptions) {
  EXPECT_THAT(
      Run("insert t values (1, 'a'), (2, 'b') update t set v = 'c' delete t where id = 1").counts,
      ::testing::ElementsAre(2, 2, 1));
  EXPECT_THAT(Run("set nocount on insert t values (9, 'a')").counts,
              ::testing::ElementsAre(-1, -1));
  Must(
      "set nocount off set ansi_nulls on set ansi_null_dflt_on on set quoted_identifier, "
      "ansi_padding on set textsize 2147483647 "
      "set transaction isolation level read committed set language us_english set dateformat mdy "
      "set lock_timeout 1000 "
      "set concat_null_yields_null on set arithabort on set implicit_transactions off");
  const Answer shape = Run("set fmtonly on select id, v from t set fmtonly off");
  EXPECT_THAT(shape.results.at(0).Names(), ::testing::ElementsAre("id", "v"));
  EXPECT_TRUE(shape.results.at(0).rows.empty());
}

TEST_F(BatchesTest, Parameters) {
  const std::vector<Parameter> parameters{
      {"@id", {SqlType::Int, 0, 10, 0}, Value(std::int64_t{5})},
      {"@v", {SqlType::NVarChar, 10, 0, 0}, Value(std::string("é"))}};
  Answer answer;
  session->ExecuteWithParameters("insert t values (@id, @v) select id * 2, v from t", parameters,
                                 answer);
  EXPECT_EQ(answer.Numbers(), "");
  EXPECT_EQ(answer.Rows(), "10|é");
}

TEST_F(BatchesTest, BulkLoad) {
  Must(
      "create table b (id int identity, v varchar(3) not null default 'dd', n decimal(5,2) null "
      "check (n > 0))");
  Answer answer;
  auto target = session->BeginBulk(
      "INSERT BULK dbo.[b] ([v] varchar(9), [n] decimal(5,2)) with (TABLOCK)", answer);
  ASSERT_TRUE(target);
  const std::vector<Value> one{std::string("a"), DecimalValue{150, 2}}, two{Value(), Value()};
  EXPECT_TRUE(target->Row(one, answer));
  EXPECT_TRUE(target->Row(two, answer));
  EXPECT_EQ(target->Finish(answer), 2);
  target.reset();
  EXPECT_EQ(Query("select * from b"), "1|a|1.50;2|dd|NULL");
  target = session->BeginBulk("insert bulk b (v varchar(9), n decimal(5,2))", answer);
  EXPECT_TRUE(target->Row(one, answer));
  const std::vector<Value> long_text{std::string("long"), Value()};
  target->Row(long_text, answer);
  EXPECT_EQ(target->Finish(answer), 0);
  target.reset();
  EXPECT_EQ(answer.Numbers(), "2628");
  EXPECT_EQ(Query("select count(*) from b"), "2") << "a bulk load is kept whole or not at all";
  // Constraints are checked, and NULLs kept, on request.
  const std::vector<Value> refused{Value(), DecimalValue{-1, 0}};
  const auto load = [&](const std::string& hints) {
    Answer told;
    const auto loading =
        session->BeginBulk("insert bulk b (v varchar(9), n decimal(5,2))" + hints, told);
    loading->Row(refused, told);
    loading->Finish(told);
    return told.Numbers();
  };
  EXPECT_EQ(load(" with (ROWS_PER_BATCH = 5, check_constraints)"), "547");
  EXPECT_EQ(load(" with (KEEP_NULLS)"), "515");
  EXPECT_EQ(load(""), "");
  EXPECT_FALSE(session->BeginBulk("insert bulk nosuch (v int)", answer));
}

}  // namespace
}  // namespace sandbox::testing
