#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {

namespace {

class BatchesTest : public BatchTest {
 protected:
  BatchesTest() { Must("create table t (id int primary key, v varchar(10) null)"); }
};

TEST_F(BatchesTest, VariablesAndFlow) {
  EXPECT_EQ(Query("declare @i int = 0, @s varchar(20) set @s = '' while @i < 5 begin set @i = @i + "
                  "1 if @i = 2 continue "
                  "if @i = 5 break set @s += cast(@i as varchar(5)) + ',' end select @s, @i"),
            "1,3,4,|5");
  EXPECT_EQ(
      Query(
          "declare @n int select @n = count(*) from t if @n > 0 select 'some' else select 'none'"),
      "none");
  const Answer answer = Run("print 'a' + 'b' return print 'never'");
  ASSERT_EQ(answer.messages.size(), 1u);
  EXPECT_EQ(answer.FirstText(), "ab");
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
  EXPECT_EQ(Query("set rowcount 1 select id from t set rowcount 0"), "2");
  const Answer shape = Run("set fmtonly on select id, v from t set fmtonly off");
  EXPECT_THAT(shape.results.at(0).Names(), ::testing::ElementsAre("id", "v"));
  EXPECT_TRUE(shape.results.at(0).rows.empty());
}

TEST_F(BatchesTest, ParametersAndPreparedShapes) {
  std::vector<Parameter> parameters{
      {"@id", {SqlType::Int, 0, 10, 0}, Value(std::int64_t{5}), false},
      {"@v", {SqlType::NVarChar, 10, 0, 0}, Value(std::string("é")), false},
      {"@n", {SqlType::Int, 0, 10, 0}, Value(), true}};
  Answer answer;
  session->ExecuteWithParameters("insert t values (@id, @v) select @n = @id * 2", parameters,
                                 answer);
  EXPECT_EQ(answer.Numbers(), "");
  EXPECT_EQ(std::get<std::int64_t>(parameters[2].value), 10);
  const auto columns =
      session->Describe("select id, v + @v as w from t where id = @id", parameters);
  ASSERT_EQ(columns.size(), 2u);
  EXPECT_EQ(columns[1].name, "w");
  EXPECT_EQ(columns[1].type.type, SqlType::NVarChar);
  EXPECT_TRUE(session->Describe("insert t values (1, 'a')", {}).empty());
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
