#include <fmt/format.h>

#include "tests/sandbox/sql/batch.h"

namespace sandbox::testing {

namespace {

class ErrorsTest : public BatchTest {
 protected:
  ErrorsTest() {
    Must(
        "create table parent (id int not null primary key, code char(2) not null constraint "
        "uq_code unique);"
        "create table t (id int identity(1,1) not null constraint pk_t primary key, tiny tinyint "
        "null,"
        " name varchar(5) null, wide nvarchar(3) null, amount decimal(5,2) null, moment datetime "
        "null,"
        " parent int null constraint fk_parent references parent(id), qty int null constraint "
        "ck_qty check (qty > 0));"
        "create table plain (a int not null, b varchar(10) null);"
        "create unique index ux_plain on plain (b);"
        "create table versions (id int not null, v rowversion);"
        "create table [other identity] (id int identity, x int)");
    Must("insert parent values (1, 'AA'), (2, 'BB'); insert plain values (1, 'x')");
  }
};

TEST_F(ErrorsTest, OneTableAtATimeTakesIdentityValues) {
  Must("set identity_insert t on");
  const Answer second = Run("set identity_insert [other identity] on");
  EXPECT_EQ(second.Numbers(), "8107");
  EXPECT_EQ(second.FirstText(),
            "IDENTITY_INSERT is already ON for table 'db.dbo.t'. Cannot perform SET operation for "
            "table 'other identity'.");
  Must("insert t (id, tiny) values (100, 1)");
  Must(
      "set identity_insert t off; set identity_insert [other identity] on; set identity_insert "
      "[other identity] off");
  Must("insert t (tiny) values (2)");
  EXPECT_EQ(Query("select id from t order by id"), "100;101");
  EXPECT_EQ(Run(*NewSession(), "set identity_insert t on").Numbers(), "")
      << "the choice is each session's own";
}

TEST_F(ErrorsTest, SeverityStateAndLine) {
  struct Case {
    const char* batch;
    const char* first;  // number, severity, state, line
  };
  for (const auto& [batch, expected] : std::vector<Case>{
           {"raiserror('x', 0, 1)", "50000 0 1 1"},
           {"select * from nosuch", "208 16 1 1"},
           {"select 1 +", "102 15 1 1"},
           {"select 1\nselect 1 +\n\n", "102 15 1 2"},
           {"\n\ninsert plain values (null, 'z')", "515 16 2 3"},
           {"insert parent values (1, 'QQ')", "2627 14 1 1"},
           {"\ninsert t (parent) values (7)", "547 16 0 2"},
           {"insert t (name) values ('123456')", "2628 16 1 1"},
           {"insert t (tiny) values (256)", "220 16 2 1"},
           {"insert t (id) values (5)", "544 16 1 1"},
           {"create table plain (a int)", "2714 16 6 1"},
           {"drop table nosuch", "3701 11 5 1"},
           {"create table self (id int primary key, up int references self (id) on delete cascade)",
            "1785 16 0 1"},
           {"set identity_insert t on\nset identity_insert [other identity] on", "8107 16 1 2"}}) {
    const ServerMessage first = Run(batch).messages.at(0);
    EXPECT_EQ(fmt::format("{} {} {} {}", first.number, first.severity, first.state, first.line),
              expected)
        << batch;
  }
  EXPECT_EQ(Run("insert plain values (null, 'z')").messages.at(1).severity, 0);
}

}  // namespace
}  // namespace sandbox::testing
