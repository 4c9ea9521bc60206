#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

class QueriesTest : public BatchTest {
 protected:
  QueriesTest() {
    Must(
        "create table a (id int primary key, name varchar(10)); insert a values (1,'one'), "
        "(2,'two'), (3,'three')");
    Must(
        "create table [b b] (id int, a int, n decimal(9,2)); insert [b b] values (1,1,1.5), "
        "(2,1,2.5), (3,2,4), (4,9,8)");
  }
};

TEST_F(QueriesTest, JoinsAndSubqueries) {
  EXPECT_EQ(Query("select a.name, b.id from a join [b b] b on b.a = a.id order by b.id"),
            "one|1;one|2;two|3");
  EXPECT_EQ(Query("select a.id, b.id from a left join [b b] b on b.a = a.id where b.id is null"),
            "3|NULL");
  EXPECT_EQ(Query("select a.id, b.id from a full outer join [b b] b on b.a = a.id where a.id is "
                  "null or b.id is null order by a.id"),
            "NULL|4;3|NULL");
  EXPECT_EQ(Query("select name from a where id in (select a from [b b]) order by id"), "one;two");
  EXPECT_EQ(Query("select name from a where not exists (select 1 from [b b] where a = a.id)"),
            "three");
  EXPECT_EQ(Query("select id, (select sum(n) from [b b] where a = a.id) from a order by id desc"),
            "3|NULL;2|4.00;1|4.00");
  EXPECT_EQ(Query("with x as (select a, count(*) as c from [b b] group by a) select a.id, c from a "
                  "join x on x.a = a.id order by 1"),
            "1|2;2|1");
  EXPECT_EQ(Query("select id from a where id >= all (select a from [b b] where a < 3) order by id"),
            "2;3");
  EXPECT_EQ(Run("select (select id from a)").Numbers(), "512");
  EXPECT_EQ(Run("select (select id, name from a)").Numbers(), "116");
}

TEST_F(QueriesTest, GroupsAndOrder) {
  EXPECT_EQ(Query("select a, count(*), sum(n), min(n), max(n), avg(n) from [b b] group by a having "
                  "count(*) < 2 order by a desc"),
            "9|1|8.00|8.00|8.00|8.000000;2|1|4.00|4.00|4.00|4.000000");
  EXPECT_EQ(Query("select top 2 id as x from a order by x desc"), "3;2");
  EXPECT_EQ(Query("select id from a order by id offset 1 rows fetch next 1 rows only"), "2");
  EXPECT_EQ(Query("select distinct upper(name) from a where id < 3 order by 1"), "ONE;TWO");
  EXPECT_EQ(Query("select id from a union select a from [b b] order by 1"), "1;2;3;9");
  EXPECT_EQ(Query("select 'a' union all select 'A'"), "a;A");
  EXPECT_EQ(Run("select 'a' union select 'A '").results.at(0).rows.size(), 1u);
  EXPECT_EQ(Query("select id from a except select a from [b b]"), "3");
  EXPECT_EQ(Query("select row_number() over (order by id desc), id from a order by id"),
            "3|1;2|2;1|3");
  EXPECT_EQ(Query("select count(*) from a where id = 99"), "0");
  EXPECT_EQ(Run("select name, count(*) from a").Numbers(), "8120");
  EXPECT_EQ(Run("select id from a order by 2").Numbers(), "108");
  EXPECT_EQ(Run("select id from a union select id, name from a").Numbers(), "205");
}

TEST_F(QueriesTest, TopByPercentAndWithTies) {
  Must(
      "create table n (i int, g varchar(5)); insert n values (1,'a'), (2,'b'), (3,'B'), (4,'b'), "
      "(5,'c'), (6,'d'), (7,'d')");
  struct Case {
    const char* query;
    const char* rows;
  };
  for (const auto& [query, rows] : std::vector<Case>{
           {"select top 10 percent i from n order by i", "1"},
           {"select top (30) percent i from n order by i desc", "7;6;5"},
           {"select top 0 percent i from n", ""},
           {"select top 50.5 percent i from n where i > 3 order by i", "4;5;6"},
           {"select top 100 percent g, count(*) from n group by g order by 1", "a|1;b|3;c|1;d|2"},
           {"select count(*) from (select top 50 percent i from n order by i) x", "4"},
           {"select top 2 with ties g from n order by g", "a;b;B;b"},
           {"select top 1 with ties i % 3 as r, i from n order by r", "0|3;0|6"},
           {"select top 1 with ties i from n order by g desc", "6;7"},
           {"select top (40) percent with ties i from n order by len(g), g", "1;2;3;4"},
           {"select top 1 with ties g, count(*) from n group by g order by count(*) desc", "b|3"},
           {"select top 0 i from n", ""}}) {
    EXPECT_EQ(Query(query), rows) << query;
  }
  EXPECT_EQ(Run("select top 1 with ties i from n").Numbers(), "1062");
  EXPECT_EQ(Run("select top 101 percent i from n").Numbers(), "1031");
  EXPECT_EQ(Run("select top (-1) i from n").Numbers(), "127");
}

TEST_F(QueriesTest, NamesOfEveryForm) {
  EXPECT_EQ(Query("select [a].[id] from [db].[dbo].[a] where \"name\" = 'ONE'"), "1");
  EXPECT_EQ(Query("select id from db..A where Name = N'two'"), "2");
  const Answer answer = Run("select id as [my id], 1+1, Name, x = 5, N'q' 'alias' from a");
  EXPECT_THAT(answer.results.at(0).Names(),
              ::testing::ElementsAre("my id", "", "name", "x", "alias"));
  Must("create database [other db]");
  EXPECT_EQ(Run("use [other db]; create table t (v int); insert t values (7)").database,
            "other db");
  EXPECT_EQ(Run("use db").FirstText(), "Changed database context to 'db'.");
}

TEST_F(QueriesTest, OtherDatabasesAndViews) {
  Must("create database other");
  EXPECT_EQ(Run("use other create table t (v int) insert t values (7) use db").Numbers(),
            "5701 5701");
  EXPECT_EQ(Query("select a.id, t.v from a cross join other.dbo.t t where a.id = 1"), "1|7");
  Must("insert other.dbo.t values (8)");
  Must("insert other.dbo.t select id from a where id > 1");
  Must("update other.dbo.t set v = v + 100 where v = 8; delete other.dbo.t where v = 7");
  EXPECT_EQ(Query("select v from other..t order by v"), "2;3;108");
  EXPECT_EQ(Run("select * from nowhere.dbo.t").Numbers(), "911");
  Must("create view v as select id, name from a where id < 3");
  EXPECT_EQ(Query("select name from v order by id"), "one;two");
  EXPECT_EQ(Query("select TABLE_TYPE from INFORMATION_SCHEMA.TABLES where TABLE_NAME = 'v'"),
            "VIEW");
  Must("drop view v");
}

TEST_F(QueriesTest, ChangesThroughQueries) {
  Must("insert a select id + 10, name from a");
  EXPECT_EQ(Query("select count(*), max(id) from a"), "6|13");
  Must("update a set name = b.n from a join [b b] b on b.id = a.id where a.id = 3");
  EXPECT_EQ(Query("select name from a where id = 3"), "4.00");
  Must("delete x from a x where x.id > 10");
  EXPECT_EQ(Query("select count(*) from a"), "3");
  Must("select id, name, n = cast(id as bigint) into copied from a where id < 3");
  EXPECT_EQ(Query("select * from copied order by id"), "1|one|1;2|two|2");
  EXPECT_EQ(Run("select 1 into copied").Numbers(), "2714");
}

}  // namespace
}  // namespace sandbox::testing
