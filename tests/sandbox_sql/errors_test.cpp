#include <fmt/format.h>

#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

// What a batch says: the numbers of all its messages, and the start of the first one's text.
struct Refusal {
  const char* batch;
  const char* numbers;
  const char* text;
};

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
  void Refuses(const std::vector<Refusal>& refusals) {
    for (const Refusal& refusal : refusals) {
      const Answer answer = Run(refusal.batch);
      EXPECT_EQ(answer.Numbers(), refusal.numbers) << refusal.batch << "\n" << answer.FirstText();
      EXPECT_THAT(answer.FirstText(), ::testing::StartsWith(refusal.text)) << refusal.batch;
    }
  }
};

TEST_F(ErrorsTest, Syntax) {
  Refuses({
      {"selec 1", "2812", "Could not find stored procedure 'selec'."},
      {"select 1 +", "102", "Incorrect syntax near '+'."},
      {"select * from", "102", "Incorrect syntax near 'from'."},
      {"select from plain", "156", "Incorrect syntax near the keyword 'from'."},
      {"insert plain values (1, 'x", "105",
       "Unclosed quotation mark after the character string 'x'."},
      {"select 1 /* never closed", "113", "Missing end comment mark"},
      {"create table x (a nosuchtype)", "2715",
       "Column, parameter, or variable #1: Cannot find data type nosuchtype."},
      {"declare @a int declare @a int select @b", "137",
       "Must declare the scalar variable \"@b\"."},
      {"select nosuch(1)", "195", "'nosuch' is not a recognized built-in function name."},
  });
  EXPECT_EQ(Run("insert plain values (9, 'ran')\nselect 1 +").Numbers(), "102");
  EXPECT_EQ(Query("select count(*) from plain where a = 9"), "0")
      << "a batch that doesn't parse must not run";
}

TEST_F(ErrorsTest, Names) {
  Refuses({
      {"select * from nosuch", "208", "Invalid object name 'nosuch'."},
      {"select * from dbo.nosuch", "208", "Invalid object name 'dbo.nosuch'."},
      {"insert nosuch values (1)", "208", "Invalid object name 'nosuch'."},
      {"select nosuch from plain", "207", "Invalid column name 'nosuch'."},
      {"select p.nosuch from plain p", "4104",
       "The multi-part identifier \"p.nosuch\" could not be bound."},
      {"select id from t, parent", "209", "Ambiguous column name 'id'."},
      {"use nosuch", "911",
       "Database 'nosuch' does not exist. Make sure that the name is entered correctly."},
      {"exec nosuch", "2812", "Could not find stored procedure 'nosuch'."},
      {"exec sp_help 'nosuch'", "15009", "The object 'nosuch' does not exist in database 'db'"},
      {"drop table nosuch", "3701",
       "Cannot drop the table 'nosuch', because it does not exist or you do not have permission."},
      {"drop database nosuch", "3701", "Cannot drop the database 'nosuch'"},
      {"truncate table nosuch", "4701", "Cannot find the object \"nosuch\""},
      {"create index i on nosuch (a)", "1088", "Cannot find the object \"nosuch\""},
      {"alter table nosuch add b int", "4902", "Cannot find the object \"nosuch\""},
      {"create database DB", "1801",
       "Database 'DB' already exists. Choose a different database name."},
      {"create table Plain (a int)", "2714",
       "There is already an object named 'Plain' in the database."},
      {"create table x (a int, A int)", "2705",
       "Column names in each table must be unique. Column name 'A' in table 'x'"},
      {"set identity_insert plain on", "8106",
       "Table 'plain' does not have the identity property."},
  });
}

TEST_F(ErrorsTest, RowsThatDoNotFit) {
  Refuses({
      {"insert plain values (null, 'y')", "515 3621",
       "Cannot insert the value NULL into column 'a', table 'db.dbo.plain'; column does not allow "
       "nulls. INSERT fails."},
      {"insert plain (b) values ('y')", "515 3621", "Cannot insert the value NULL into column 'a'"},
      {"insert plain values (1)", "213",
       "Column name or number of supplied values does not match table definition."},
      {"insert plain (a, b) values (1)", "109",
       "There are more columns in the INSERT statement than values"},
      {"insert plain (a) values (1, 2)", "110",
       "There are fewer columns in the INSERT statement than values"},
      {"insert plain values (2, 'X ')", "2601 3621",
       "Cannot insert duplicate key row in object 'dbo.plain' with unique index 'ux_plain'. The "
       "duplicate key value is (X )."},
      {"insert parent values (1, 'CC')", "2627 3621",
       "Violation of PRIMARY KEY constraint 'PK__parent__"},
      {"insert parent values (3, 'aa')", "2627 3621",
       "Violation of UNIQUE KEY constraint 'uq_code'. Cannot insert duplicate key in object "
       "'dbo.parent'. The duplicate key value is (aa)."},
      {"insert t (name) values ('123456')", "2628 3621",
       "String or binary data would be truncated in table 'db.dbo.t', column 'name'. Truncated "
       "value: '12345'."},
      {"insert t (wide) values (N'яяяя')", "2628 3621", "String or binary data would be truncated"},
      {"insert t (tiny) values (256)", "220 3621",
       "Arithmetic overflow error for data type tinyint, value = 256."},
      {"insert t (tiny) values (-1)", "220 3621",
       "Arithmetic overflow error for data type tinyint, value = -1."},
      {"insert t (tiny) values ('x')", "245",
       "Conversion failed when converting the varchar value 'x' to data type tinyint."},
      {"insert t (amount) values (1000)", "8115 3621",
       "Arithmetic overflow error converting int to data type numeric."},
      {"insert t (amount) values ('1,5')", "8114",
       "Error converting data type varchar to numeric."},
      {"insert t (moment) values ('1752-12-31')", "242 3621",
       "The conversion of a varchar data type to a datetime data type resulted in an out-of-range "
       "value."},
      {"insert t (moment) values ('no date')", "241",
       "Conversion failed when converting date and/or time from character string."},
      {"insert t (parent) values (7)", "547 3621",
       "The INSERT statement conflicted with the FOREIGN KEY constraint \"fk_parent\". The "
       "conflict occurred in database "
       "\"db\", table \"dbo.parent\", column 'id'."},
      {"insert t (qty) values (0)", "547 3621",
       "The INSERT statement conflicted with the CHECK constraint \"ck_qty\". The conflict "
       "occurred in database \"db\", table "
       "\"dbo.t\", column 'qty'."},
      {"insert t (id) values (5)", "544 3621",
       "Cannot insert explicit value for identity column in table 't' when IDENTITY_INSERT is set "
       "to OFF."},
      {"insert [other identity] values (1, 2)", "8101 3621",
       "An explicit value for the identity column in table 'other identity' can only be specified "
       "when"},
      {"set identity_insert t on insert t (tiny) values (1) set identity_insert t off", "545 3621",
       "Explicit value must be specified for identity column in table 't'"},
      {"insert versions values (1, 0x01)", "273",
       "Cannot insert an explicit value into a timestamp column."},
      {"update t set id = 3", "8102", "Cannot update identity column 'id'."},
      {"insert plain values (1, 'a'), (2)", "10709", "The number of columns for each row"},
  });
  EXPECT_EQ(Query("select count(*) from t"), "0");
}

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

TEST_F(ErrorsTest, Definitions) {
  Refuses({
      {"alter table t add primary key (tiny)", "1779 1750",
       "Table 't' already has a primary key defined on it."},
      {"create table x (a int primary key, b int primary key)", "8110",
       "Cannot add multiple PRIMARY KEY constraints to table 'x'."},
      {"create table x (a int null primary key)", "8111 1750",
       "Cannot define PRIMARY KEY constraint on nullable column in table 'x'."},
      {"alter table plain add primary key (b)", "8111 1750",
       "Cannot define PRIMARY KEY constraint on nullable column"},
      {"alter table plain add constraint fk foreign key (a) references nosuch (id)", "1767 1750",
       "Foreign key 'fk' references invalid table 'nosuch'."},
      {"alter table plain add constraint fk foreign key (c) references parent (id)", "1769 1750",
       "Foreign key 'fk' references invalid column 'c' in referencing table 'plain'."},
      {"alter table plain add constraint fk foreign key (a) references t (tiny)", "1776 1750",
       "There are no primary or candidate keys in the referenced table 't' that match the "
       "referencing column list in the foreign key 'fk'."},
      {"alter table plain add constraint fk foreign key (b) references parent (id)", "1778 1750",
       "Column 'parent.id' is not the same data type as referencing column 'plain.b' in foreign "
       "key 'fk'."},
      {"alter table plain add constraint uq_code unique (a)", "2714 1750",
       "There is already an object named 'uq_code'"},
      {"drop table parent", "3726",
       "Could not drop object 'parent' because it is referenced by a FOREIGN KEY constraint."},
      {"truncate table parent", "4712", "Cannot truncate table 'parent'"},
      {"create index ux_plain on plain (a)", "1913",
       "The operation failed because an index or statistics with name 'ux_plain'"},
      {"create index i on plain (c)", "1911",
       "Column name 'c' does not exist in the target table or view."},
      {"drop index t.pk_t", "3723", "An explicit DROP INDEX is not allowed on index 't.pk_t'."},
      {"drop index plain.nosuch", "3701", "Cannot drop the index 'plain.nosuch'"},
      {"alter table plain drop constraint nosuch", "3728 3727", "'nosuch' is not a constraint."},
      {"create table x (a text primary key)", "1919 1750",
       "Column 'a' in table 'x' is of a type that is invalid"},
      {"create table x (a varchar(9000))", "2717", "The size (9000) given to the"},
      {"create table x (a decimal(39,0))", "2750",
       "Column or parameter #1: Specified column precision 39"},
      {"create table x (a varchar(3) identity)", "2749",
       "Identity column 'a' must be of data type int"},
  });
  Must("insert plain values (1, 'y')");
  Refuses({{"create unique index ux on plain (a)", "1505 3621",
            "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for "
            "the object name 'dbo.plain' and "
            "the index name 'ux'. The duplicate key value is (1)."},
           {"alter table plain add constraint pk primary key (a)", "1505 1750",
            "The CREATE UNIQUE INDEX statement terminated"}});
  EXPECT_EQ(
      Query(
          "select name from sys.indexes where object_id = object_id('plain') and name is not null"),
      "ux_plain");
}

TEST_F(ErrorsTest, TwoCascadePathsAndRings) {
  Must(
      "create table a (id int primary key); create table b (id int primary key, a int references a "
      "(id) on delete cascade)");
  const Answer ring =
      Run("alter table a add b int null constraint ring references b (id) on delete set null");
  EXPECT_EQ(ring.Numbers(), "1785 1750");
  const Answer two =
      Run("create table c (a int constraint one references a (id) on delete cascade, b int "
          "constraint two references b (id) on "
          "delete cascade)");
  EXPECT_EQ(two.Numbers(), "1785 1750");
  EXPECT_THAT(two.FirstText(),
              ::testing::StartsWith(
                  "Introducing FOREIGN KEY constraint 'two' on table 'c' may cause cycles"));
  EXPECT_EQ(
      Run("create table self (id int primary key, up int references self (id) on delete cascade)")
          .Numbers(),
      "1785 1750");
  Must("create table c (a int references a (id), b int references b (id) on delete cascade)");
}

TEST_F(ErrorsTest, SeverityStateAndLine) {
  struct Case {
    const char* batch;
    const char* first;  // number, severity, state, line
  };
  for (const auto& [batch, expected] : std::vector<Case>{
           {"print 'x'", "0 0 1 1"},
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
