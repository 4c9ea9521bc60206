#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

class ConstraintsTest : public BatchTest {};

TEST_F(ConstraintsTest, AStatementIsAllOrNothing) {
  Must("create table t (id int primary key, v int check (v < 10))");
  EXPECT_EQ(Run("insert t values (1, 1), (2, 2), (1, 3)").Numbers(), "2627 3621");
  EXPECT_EQ(Run("insert t values (3, 1), (4, 99)").Numbers(), "547 3621");
  EXPECT_EQ(Query("select count(*) from t"), "0");
  Must("insert t values (1, 1), (2, 2), (3, 3)");
  EXPECT_EQ(Run("update t set v = v + 8").Numbers(), "547 3621");
  EXPECT_EQ(Query("select v from t order by id"), "1;2;3");
  EXPECT_EQ(Run("update t set v = 1 / (id - 2)").Numbers(), "8134 3621");
}

TEST_F(ConstraintsTest, UniquenessIsLookedAtWhenTheStatementEnds) {
  Must(
      "create table t (id int primary key, name varchar(9) null unique); insert t values (1,'a'), "
      "(2,'b'), (3,null)");
  Must("update t set id = id + 1");
  EXPECT_EQ(Query("select id from t order by id"), "2;3;4");
  Must("update t set name = case name when 'a' then 'b' when 'b' then 'a' end");
  EXPECT_EQ(Query("select name from t order by id"), "b;a;NULL");
  EXPECT_EQ(Run("insert t values (9, null)").Numbers(), "2627 3621")
      << "a unique key takes one NULL";
  EXPECT_EQ(Run("update t set id = 7").Numbers(), "2627 3621");
  EXPECT_EQ(Query("select id from t order by id"), "2;3;4");
}

TEST_F(ConstraintsTest, OfSeveralBrokenKeysThePrimaryKeyIsNamed) {
  Must(
      "create table t (u int null constraint uq unique, id int constraint pk primary key, w "
      "varchar(9)); create unique index ux on t (w)");
  Must("insert t values (10, 1, 'a'), (20, 2, 'b'), (null, 3, 'c')");
  const auto broken = [&](const char* batch) {
    const Answer answer = Run(batch);
    return answer.Numbers() + " " + answer.FirstText();
  };
  EXPECT_THAT(broken("insert t values (10, 2, 'B')"), ::testing::HasSubstr("'pk'"));
  EXPECT_THAT(broken("insert t values (null, 9, 'b')"), ::testing::HasSubstr("'uq'"));
  EXPECT_THAT(broken("insert t values (90, 9, 'B')"), ::testing::StartsWith("2601"));
  EXPECT_THAT(broken("update t set u = 10, id = 1, w = 'a' where id = 2"),
              ::testing::HasSubstr("'pk'"));
  EXPECT_THAT(broken("update t set u = 10, w = 'a' where id = 2"), ::testing::HasSubstr("'uq'"));
  EXPECT_EQ(Query("select u, id, w from t order by id"), "10|1|a;20|2|b;NULL|3|c");
}

TEST_F(ConstraintsTest, KeysCompareAsTheDefaultCollation) {
  Must("create table t (k varchar(10) primary key); insert t values ('Straße')");
  for (const char* same : {"'STRAßE'", "'straße'", "'Straße  '"}) {
    EXPECT_EQ(Run(std::string("insert t values (") + same + ")").Numbers(), "2627 3621") << same;
  }
  Must("insert t values ('Strasse')");
  EXPECT_EQ(Query("select count(*) from t where k = 'STRASSE '"), "1");
}

TEST_F(ConstraintsTest, EveryRuleOfAForeignKey) {
  Must("create table p (id int primary key); insert p values (0),(1),(2),(3),(4)");
  Must("create table none (f int references p (id)); insert none values (1)");
  Must(
      "create table cascades (f int references p (id) on delete cascade on update cascade); insert "
      "cascades values (2)");
  Must(
      "create table nulls (f int references p (id) on delete set null on update set null); insert "
      "nulls values (2)");
  Must(
      "create table defaults (f int default 0 references p (id) on delete set default on update "
      "set default); insert defaults values (2)");
  const Answer refused = Run("delete p where id = 1");
  EXPECT_EQ(refused.Numbers(), "547 3621");
  EXPECT_THAT(refused.FirstText(),
              ::testing::HasSubstr("DELETE statement conflicted with the REFERENCE constraint"));
  EXPECT_THAT(refused.FirstText(), ::testing::HasSubstr("table \"dbo.none\", column 'f'."));
  EXPECT_EQ(Run("update p set id = 11 where id = 1").Numbers(), "547 3621");
  Must("update p set id = 22 where id = 2");
  EXPECT_EQ(Query("select c.f, n.f, d.f from cascades c, nulls n, defaults d"), "22|NULL|0");
  Must(
      "delete cascades; delete defaults; insert cascades values (3); insert nulls values (3); "
      "insert defaults values (3)");
  Must("delete p where id = 3");
  EXPECT_EQ(Query("select count(*) from cascades"), "0");
  EXPECT_EQ(Query("select f from nulls where f is not null"), "");
  EXPECT_EQ(Query("select f from defaults"), "0");
}

TEST_F(ConstraintsTest, CompositeKeysAndSelfReferences) {
  Must("create table p (a int, b char(2), primary key (a, b)); insert p values (1, 'x'), (2, 'y')");
  Must(
      "create table c (a int null, b char(2) null, constraint fk foreign key (a, b) references p "
      "(a, b) on update cascade)");
  Must("insert c values (1, 'X'), (9, null), (null, 'q')");
  const Answer refused = Run("insert c values (1, 'y')");
  EXPECT_EQ(refused.Numbers(), "547 3621");
  EXPECT_THAT(refused.FirstText(), ::testing::EndsWith("table \"dbo.p\"."));
  Must("create table tree (id int primary key, up int null references tree (id))");
  Must("insert tree values (2, 1), (1, null)");
  EXPECT_EQ(Run("delete tree where id = 1").Numbers(), "547 3621");
  Must("delete tree");
}

TEST_F(ConstraintsTest, ExistingRowsAreLookedAtUnlessToldNot) {
  Must("create table p (id int primary key); create table c (f int); insert c values (5)");
  EXPECT_EQ(Run("alter table c add constraint fk foreign key (f) references p (id)").Numbers(),
            "547");
  EXPECT_EQ(Run("alter table c add constraint ck check (f < 5)").Numbers(), "547");
  Must("alter table c with nocheck add constraint fk foreign key (f) references p (id)");
  EXPECT_EQ(Run("insert c values (5)").Numbers(), "547 3621");
  Must("alter table c drop constraint fk; insert c values (5)");
}

TEST_F(ConstraintsTest, AFilteredIndexLeavesNullsOut) {
  Must("create table t (id int, a int, b int); insert t values (1, null, 1), (2, null, 1)");
  Must("create unique index ix on t (a, b) where a is not null and b is not null");
  Reopen();
  Must("insert t values (3, 1, null), (4, 1, null), (5, 1, 1)");
  EXPECT_EQ(Run("insert t values (6, 1, 1)").Numbers(), "2601 3621");
  EXPECT_EQ(Run("create unique index ix2 on t (a)").Numbers(), "1505 3621");
}

TEST_F(ConstraintsTest, DefaultsOfEveryForm) {
  Must(
      "create table t (id int, a int default 0, b varchar(9) default 'x''y', c datetime default "
      "getdate(), d int default -1,"
      " e uniqueidentifier default newid(), f decimal(5,2) default (1 + 1.5), g binary(2) default "
      "0x, h bit not null default 1,"
      " i nvarchar(9) constraint named default N'я', j float default  2.0)");
  Must(
      "insert t (id) values (1); insert t values (2, default, default, default, default, default, "
      "default, default, 0, null, default)");
  EXPECT_EQ(Query("select a, b, d, f, g, h, i, j from t order by id"),
            "0|x'y|-1|2.50|0x0000|1|я|2;0|x'y|-1|2.50|0x0000|0|NULL|2");
  EXPECT_EQ(Query("select count(distinct e), count(c) from t"), "2|2");
  Must(
      "create table only_defaults (id int identity, a int default 3); insert only_defaults default "
      "values");
  EXPECT_EQ(Query("select * from only_defaults"), "1|3");
  Must("alter table t add k int not null default 7");
  EXPECT_EQ(Query("select k from t"), "7;7");
  EXPECT_EQ(Run("alter table t add l int not null").Numbers(), "4901");
}

TEST_F(ConstraintsTest, IdentityCountsOn) {
  Must("create table t (id int identity(100, 5), x int); insert t values (1), (2)");
  EXPECT_EQ(Query("select scope_identity(), @@identity"), "105|105");
  Must(
      "set identity_insert t on; insert t (id, x) values (0, 3); insert t (id, x) values (200, 4); "
      "set identity_insert t off");
  Must("insert t (x) values (5)");
  EXPECT_EQ(Query("select id from t order by x"), "100;105;0;200;205");
  Must("truncate table t; insert t values (1)");
  EXPECT_EQ(Query("select id from t"), "100");
  Must("begin tran; insert t values (2); rollback");
  Must("insert t values (3)");
  EXPECT_EQ(Query("select max(id) from t"), "110") << "numbers given out are not taken back";
  Reopen();
  Must("insert t values (4)");
  EXPECT_EQ(Query("select max(id) from t"), "115");
}

}  // namespace
}  // namespace sandbox::testing
