#include "tests/sandbox_sql/batch.h"

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

TEST_F(ColumnKindsTest, ComputedColumns) {
  Must(
      "create table t (id int identity primary key, qty int not null, price decimal(8,2), name "
      "varchar(20), total as qty * price, label as upper(name) + ':' + cast(qty as varchar(9)) "
      "persisted, kind as case when qty > 5 then 'many' else 'few' end, age as "
      "datediff(year, '2000-01-01', getdate()))");
  Must("insert t values (2, 1.50, 'pen'), (7, 2, 'tsql_call(''x'')'); insert t (qty) values (1)");
  Reopen();
  Shows({
      {"select qty, total, label, kind from t order by id",
       "2|3.00|PEN:2|few;7|14.00|TSQL_CALL('X'):7|many;1|NULL|NULL|few"},
      {"update t set qty = 10 where total = 3; select total, label from t where total > 14",
       "15.00|PEN:10"},
      {"create unique index ux on t (label) where label is not null; create index ix on t (total "
       "desc); select count(*) from t where age > 20",
       "3"},
      {"alter table t add twice as (2 * qty); select max(twice) from t", "20"},
      {"select name, definition, is_persisted, is_nullable from sys.computed_columns where name in "
       "('total', 'label') order by name",
       "label|((upper([name])+':')+CONVERT([varchar](9),[qty]))|1|1;total|([qty]*[price])|0|1"},
      {"select name from sys.columns where is_computed = 1 order by column_id",
       "total;label;kind;age;twice"},
      {"select columnproperty(object_id('t'), 'total', 'IsComputed')", "1"},
      {"select * into copied from t; select is_computed from sys.columns where object_id = "
       "object_id('copied') and name = 'total'",
       "0"},
  });
  EXPECT_EQ(Run("exec sp_help t").results.at(1).rows.at(4).at(2), "yes");
  Refuses({
      {"insert t (qty, total) values (1, 1)", "271"},
      {"insert t values (1, 1)", "213"},
      {"update t set total = 1", "271"},
      {"insert t (qty, name) values (10, 'PEN')", "2601 3621"},
      {"alter table t drop column qty", "5074 4922"},
      {"alter table t alter column kind int", "4928"},
      {"create table x (a int, b as a + nosuch)", "207"},
      {"create table x (a int, b as a + 1, c as b + 1)", "1759"},
      {"create table x (a int, b as newid())", "4936"},
      {"create table x (a int, b as getdate() persisted)", "4936"},
  });
  Must("alter table t drop column twice; insert t (qty, price, name) values (0, 1, 'zero')");
  Must("create table ratio (a int, b int, r as a / b persisted)");
  EXPECT_EQ(Run("insert ratio values (1, 0)").Numbers(), "8134 3621");
}

TEST_F(ColumnKindsTest, AliasTypes) {
  Must("create schema sales; exec sp_addtype id, 'varchar(11)', 'NOT NULL'");
  Must("create type sales.amount from decimal(9,2); execute sp_addtype 'ssn', 'char(9)'");
  Must("create table t (key_ id primary key, price sales.amount, s ssn, forced id null)");
  Must("insert t values ('a', 1.5, 'x', null)");
  Reopen();
  Shows({
      {"select c.name, a.name, b.name, c.max_length, c.is_nullable, a.is_user_defined, "
       "schema_name(a.schema_id) from sys.columns c join sys.types a on a.user_type_id = "
       "c.user_type_id join sys.types b on b.user_type_id = c.system_type_id order by c.column_id",
       "key_|id|varchar|11|0|1|dbo;price|amount|decimal|5|1|1|sales;s|ssn|char|9|1|1|dbo;"
       "forced|id|varchar|11|1|1|dbo"},
      {"declare @x sales.amount = 2.345; select @x, price from t", "2.35|1.50"},
      {"select DATA_TYPE from INFORMATION_SCHEMA.COLUMNS where COLUMN_NAME = 'key_'", "varchar"},
      {"exec sp_columns t, @column_name = 'price'",
       "db|dbo|t|price|3|amount|9|11|2|10|1|NULL|NULL|3|NULL|NULL|2|YES|106"},
      {"alter table t alter column s id null; select a.name from sys.columns c join sys.types a "
       "on a.user_type_id = c.user_type_id where c.name = 's'",
       "id"},
      {"exec sp_droptype 'ssn'; select count(*) from sys.types where name = 'ssn'", "0"},
  });
  Refuses({
      {"create type id from int", "219"},
      {"drop type sales.amount", "3732"},
      {"drop type nosuch", "218"},
      {"create table x (a ssn)", "2715"},
      {"declare @x nosuch", "2715"},
      {"create type x from nosuch", "2715"},
      {"insert t (key_) values (null)", "515 3621"},
  });
}

TEST_F(ColumnKindsTest, CaseSensitiveColumns) {
  Must(
      "create table t (n int, ci varchar(9), cs varchar(9) collate Latin1_General_CS_AS not null "
      "constraint pk_t primary key, bin nvarchar(9) collate Latin1_General_BIN2, plain varchar(9) "
      "collate database_default)");
  Must(
      "insert t values (1, 'a', 'a', N'a', 'a'), (2, 'A', 'A', N'B', 'A'), (3, 'b', 'b', N'b ', "
      "'b')");
  Shows({
      {"select n from t where cs = 'a'", "1"},
      {"select n from t where ci = 'a' order by n", "1;2"},
      {"select n from t where bin in (N'b', N'x')", "3"},
      {"select n from t where cs like 'A%'", "2"},
      {"select n from t where ci like 'A%' order by n", "1;2"},
      {"select cs from t order by cs", "a;A;b"},
      {"select bin from t order by bin", "B;a;b "},
      {"select count(distinct cs), count(distinct ci) from t", "3|2"},
      {"select cs, count(*) from t group by cs order by cs", "a|1;A|1;b|1"},
      {"select max(ci) from t group by ci collate Latin1_General_CS_AS order by 1", "a;A;b"},
      {"select count(*) from t x join t y on x.cs = y.cs", "3"},
      {"select count(*) from t x join t y on x.cs collate SQL_Latin1_General_CP1_CI_AS = y.ci",
       "5"},
      {"select name, collation_name from sys.columns where name in ('cs', 'plain') order by name",
       "cs|Latin1_General_CS_AS;plain|SQL_Latin1_General_CP1_CI_AS"},
      {"select cs into u from t; select count(*) from u where cs = 'A'", "1"},
  });
  Must("create table child (f varchar(9) collate Latin1_General_CS_AS references t (cs))");
  Refuses({
      {"insert t values (4, 'x', 'a ', N'x', 'x')", "2627 3621"},
      {"insert child values ('B')", "547 3621"},
      {"create unique index ux on t (ci)", "1505 3621"},
      {"create table x (f varchar(9) references t (cs))", "1757 1750"},
      {"create table x (f varchar(9) collate nosuch)", "448"},
      {"select cs collate nosuch from t", "448"},
  });
  Reopen();
  Must("insert t values (4, 'x', 'B', N'x', 'x'); insert child values ('B')");
}

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
  Must("select * into #copied from #t where n > 2");
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
