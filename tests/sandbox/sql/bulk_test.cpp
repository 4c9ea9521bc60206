#include "tests/sandbox/sql/batch.h"

namespace sandbox::testing {

namespace {

class BulkTest : public BatchTest {};

TEST_F(BulkTest, IsKeptWholeOrNotAtAllAndAsksWhatItIsTold) {
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
