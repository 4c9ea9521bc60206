#include "tests/sandbox/sql/batch.h"

namespace sandbox::testing {

namespace {

// Columns that are more than a type and a name, and what depends on them.
class ColumnKindsTest : public BatchTest {
 protected:
  struct Case {
    const char* batch;
    const char* expected;  // the rows of the first result, or the numbers of the messages
  };
  void Shows(const std::vector<Case>& cases) {
    for (const auto& [batch, expected] : cases) {
      const Answer answer = Run(batch);
      EXPECT_EQ(answer.Numbers(), "") << batch << "\n" << answer.FirstText();
      EXPECT_EQ(answer.Rows(), expected) << batch;
    }
  }
  void Refuses(const std::vector<Case>& cases) {
    for (const auto& [batch, expected] : cases) {
      const Answer answer = Run(batch);
      EXPECT_EQ(answer.Numbers(), expected) << batch << "\n" << answer.FirstText();
    }
  }
};

TEST_F(ColumnKindsTest, PeriodAndOtherTraits) {
  Must(
      "create table t (id int primary key, v int sparse null, s varchar(9) masked with (function = "
      "'default()') null, g uniqueidentifier rowguidcol default newid(), since datetime2(3) "
      "generated always as row start hidden not null, until datetime2(3) generated always as row "
      "end hidden not null, period for system_time (since, until))");
  Must("insert t (id) values (1); insert t values (2, null, 'x', default)");
  Shows({
      {"select id, s, case when since > '2020-01-01' then 'set' end, until from t",
       "1|NULL|set|9999-12-31 23:59:59.999;2|x|set|9999-12-31 23:59:59.999"},
      {"select name, is_sparse, is_masked, is_rowguidcol, is_hidden, generated_always_type from "
       "sys.columns where name <> 'id' order by column_id",
       "v|1|0|0|0|0;s|0|1|0|0|0;g|0|0|1|0|0;since|0|0|0|1|1;until|0|0|0|1|2"},
      {"select temporal_type from sys.tables", "2"},
  });
  EXPECT_EQ(Run("select * from t").results.at(0).columns.size(), 4u);
  Refuses({{"insert t (id, since) values (3, '2020-01-01')", "13536"},
           {"update t set until = '2020-01-01'", "13537"}});
}

TEST_F(ColumnKindsTest, TablesOfASession) {
  Must("create table t (id int); insert t values (1), (2)");
  Must("create table #t (id int primary key, n as id * 2); insert #t select id from t");
  Must("create table #copied (id int, n int); insert #copied select id, n from #t where n > 2");
  const auto other = NewSession();
  Shows({
      {"select #t.n, c.id from #t left join #copied c on c.id = #t.id order by 1", "2|NULL;4|2"},
      {"begin tran; insert #t values (9); select count(*) from #t; rollback", "3"},
      {"update #t set id = 5 where id = 2; delete #t where id = 1; select id from #t", "5"},
      {"select object_id('tempdb..#nosuch'), case when object_id('tempdb..#t') > 0 then 1 end",
       "NULL|1"},
      {"select count(*) from sys.tables", "1"},
      {"select count(*) from sys.objects where name like '#%'", "0"},
  });
  EXPECT_EQ(Run("exec sp_tables '#t'").Rows(), "");
  EXPECT_EQ(Run(*other, "select * from #t").Numbers(), "208");
  EXPECT_EQ(
      Run(*other, "create table #t (x varchar(9)); insert #t values ('own'); select x from #t")
          .Rows(),
      "own");
  Refuses({{"create table #t (a int)", "2714"},
           {"insert #t values (5)", "2627 3621"},
           {"drop table #nosuch", "3701"}});
  Must("create table ##all (id int)");
  EXPECT_EQ(Run(*other, "select * from ##all").Numbers(), "");
  Must("drop table #t, ##all");
  EXPECT_EQ(Run("select * from #copied").Rows(), "2|4");
  Reopen();
  EXPECT_EQ(Run("select * from #copied").Numbers(), "208") << "it went with its session";
}

}  // namespace
}  // namespace sandbox::testing
