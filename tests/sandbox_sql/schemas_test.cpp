#include <sqlite3.h>

#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

// Two schemas besides dbo, the same table name in each, and a login whose own schema is "sales".
class SchemasTest : public BatchTest {
 protected:
  SchemasTest() {
    Must("create schema sales create schema [hr dept] authorization dbo");
    Must(
        "create table item (id int primary key, name varchar(9));"
        "create table sales.item (id int constraint pk_item primary key, name varchar(9), owner "
        "int "
        "constraint fk_owner references dbo.item (id));"
        "create table [hr dept].item (id int identity primary key, name varchar(9));"
        "create table only_dbo (x int); create table sales.only_sales (x int)");
    Must(
        "insert item values (1, 'dbo'); insert into sales.item values (1, 'sales', 1);"
        "insert [hr dept].[item] (name) values ('hr')");
    Must(
        "create login clerk with password = 'pw', check_policy = off;"
        "create user clerk for login clerk with default_schema = sales");
  }
  std::unique_ptr<EngineSession> Clerk() {
    auto opened = engine->OpenSession("clerk");
    EXPECT_TRUE(opened->UseDatabase("db"));
    return opened;
  }
};

struct Statement {
  const char* batch;
  const char* expected;  // rows of the only result, or the numbers of the messages
};

TEST_F(SchemasTest, EveryStatementTakesASchema) {
  for (const auto& [batch, expected] : std::vector<Statement>{
           {"select name from item union all select name from sales.item union all select name "
            "from db.[hr dept].item",
            "dbo;sales;hr"},
           {"select item.name, s.name from dbo.item join sales.item s on s.owner = item.id",
            "dbo|sales"},
           {"select sales.item.name, dbo.item.* from dbo.item, sales.item", "sales|1|dbo"},
           {"update sales.item set name = 'x' where sales.item.id = 1; select name from item; ",
            "dbo"},
           {"update i set name = 's' from sales.item i join item o on o.id = i.owner; select name "
            "from sales.item",
            "s"},
           {"delete sales.item from sales.item join dbo.item on dbo.item.id = sales.item.owner; "
            "select count(*) from item",
            "1"},
           {"set identity_insert [hr dept].item on; insert [hr dept].item (id, name) values (7, "
            "'x'); set identity_insert [hr dept].item off; select max(id) from [hr dept].item",
            "7"},
           {"truncate table [hr dept].item; select count(*) from [hr dept].item", "0"},
           {"alter table sales.item add extra int default 3 with values; create unique index ix on "
            "sales.item (name); drop index sales.item.ix; create index ix on sales.item (name); "
            "drop index ix on sales.item; alter table sales.item drop constraint fk_owner; select "
            "count(*) from sales.item",
            "0"},
           {"select id, name into sales.copied from item; create view sales.seen as select name "
            "from sales.copied",
            ""},
           {"select name from sales.seen", "dbo"},
           {"drop view sales.seen; drop table sales.copied, [hr dept].item; select "
            "schema_name(schema_id), name from sys.tables order by 1, 2",
            "dbo|item;dbo|only_dbo;sales|item;sales|only_sales"},
       }) {
    const Answer answer = Run(batch);
    EXPECT_EQ(answer.Numbers(), "") << batch << "\n" << answer.FirstText();
    EXPECT_EQ(answer.Rows(), expected) << batch;
  }
}

TEST_F(SchemasTest, RefusalsNameTheSchema) {
  struct Refusal {
    const char* batch;
    const char* numbers;
    const char* text;
  };
  for (const auto& [batch, numbers, text] : std::vector<Refusal>{
           {"create table nosuch.t (a int)", "2760",
            "The specified schema name \"nosuch\" either does not exist or"},
           {"select * from nosuch.item", "208", "Invalid object name 'nosuch.item'."},
           {"select * from dbo.only_sales", "208", "Invalid object name 'dbo.only_sales'."},
           {"select * from only_sales", "208", "Invalid object name 'only_sales'."},
           {"create table sales.Item (a int)", "2714", "There is already an object named 'Item'"},
           {"create table sales.t (a int constraint pk_item unique)", "2714 1750",
            "There is already an object named 'pk_item'"},
           {"insert sales.item values (1, 'again', 1)", "2627 3621",
            "Violation of PRIMARY KEY constraint 'pk_item'. Cannot insert duplicate key in object "
            "'sales.item'."},
           {"insert sales.item values (2, 'x', 9)", "547 3621",
            "The INSERT statement conflicted with the FOREIGN KEY constraint \"fk_owner\". The "
            "conflict occurred in database \"db\", table \"dbo.item\", column 'id'."},
           {"delete item", "547 3621",
            "The DELETE statement conflicted with the REFERENCE constraint \"fk_owner\". The "
            "conflict occurred in database \"db\", table \"sales.item\", column 'owner'."},
           {"insert sales.item values (null, 'x', 1)", "515 3621",
            "Cannot insert the value NULL into column 'id', table 'db.sales.item'"},
           {"drop table dbo.item", "3726", "Could not drop object 'dbo.item'"},
           {"drop schema sales", "3729",
            "Cannot drop schema 'sales' because it is being referenced by object 'item'."},
           {"drop schema nosuch", "15151", "Cannot drop the schema 'nosuch', because it does not"},
           {"drop schema dbo", "15150", "Cannot drop the schema 'dbo'."},
           {"create schema SALES", "2714", "There is already an object named 'SALES'"},
           {"create user ghost", "15007", "'ghost' is not a valid login"},
           {"create login CLERK with password = 'x'", "15025", "The server principal 'CLERK'"},
           {"create user Clerk without login", "15023", "User, group, or role 'Clerk' already"},
           {"alter user nosuch with default_schema = dbo", "15151", "Cannot alter the user"},
           {"alter user dbo with default_schema = sales", "15150", "Cannot alter the user 'dbo'."},
           {"drop login nosuch", "15151", "Cannot drop the login 'nosuch'"},
       }) {
    const Answer answer = Run(batch);
    EXPECT_EQ(answer.Numbers(), numbers) << batch << "\n" << answer.FirstText();
    EXPECT_THAT(answer.FirstText(), ::testing::StartsWith(text)) << batch;
  }
}

TEST_F(SchemasTest, ABareNameIsOfTheLoginsOwnSchemaElseOfDbo) {
  const auto clerk = Clerk();
  for (const auto& [batch, expected] : std::vector<Statement>{
           {"select name from item", "sales"},
           {"select name from dbo.item", "dbo"},
           {"select count(*) from only_dbo", "0"},
           {"select schema_name(), user_name(), schema_id() - schema_id('sales')", "sales|clerk|0"},
           {"select object_schema_name(object_id('item')), object_schema_name(object_id("
            "'only_dbo')), object_id('dbo.only_sales')",
            "sales|dbo|NULL"},
           {"create table made (id int primary key, item int references item (id)); insert made "
            "values (1, 1); select object_schema_name(object_id('made')), "
            "object_schema_name(referenced_object_id) from sys.foreign_keys where "
            "parent_object_id = object_id('made')",
            "sales|sales"},
           {"exec sp_pkeys item", "db|sales|item|id|1|pk_item"},
       }) {
    const Answer answer = Run(*clerk, batch);
    EXPECT_EQ(answer.Numbers(), "") << batch << "\n" << answer.FirstText();
    EXPECT_EQ(answer.Rows(), expected) << batch;
  }
  Must("alter user clerk with default_schema = dbo");
  EXPECT_EQ(Run(*clerk, "select name from item").Rows(), "dbo");
  Must("drop table sales.made; drop user clerk; drop login clerk; drop login if exists clerk");
  EXPECT_FALSE(engine->MayLogIn("clerk", "pw"));
}

TEST_F(SchemasTest, TheCatalogTellsTheSchema) {
  for (const auto& [batch, expected] : std::vector<Statement>{
           {"exec sp_tables @table_type = \"'TABLE'\"",
            "db|dbo|item|TABLE|NULL;db|dbo|only_dbo|TABLE|NULL;db|hr dept|item|TABLE|NULL;"
            "db|sales|item|TABLE|NULL;db|sales|only_sales|TABLE|NULL"},
           {"exec sp_tables 'item', 'sales'", "db|sales|item|TABLE|NULL"},
           {"exec sp_fkeys @fktable_name = 'item', @fktable_owner = 'sales'",
            "db|dbo|item|id|db|sales|item|owner|1|1|1|fk_owner|"},
           {"exec sp_pkeys 'item', 'sales'", "db|sales|item|id|1|pk_item"},
           {"select TABLE_SCHEMA, count(*) from INFORMATION_SCHEMA.COLUMNS group by TABLE_SCHEMA "
            "order by 1",
            "dbo|3;hr dept|2;sales|4"},
           {"select TABLE_SCHEMA, CONSTRAINT_SCHEMA, CONSTRAINT_NAME from "
            "INFORMATION_SCHEMA.TABLE_CONSTRAINTS where CONSTRAINT_TYPE = 'FOREIGN KEY'",
            "sales|sales|fk_owner"},
           {"select CONSTRAINT_SCHEMA, UNIQUE_CONSTRAINT_SCHEMA from "
            "INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS",
            "sales|dbo"},
           {"select s.name, t.name from sys.schemas s join sys.tables t on t.schema_id = "
            "s.schema_id order by t.object_id",
            "dbo|item;sales|item;hr dept|item;dbo|only_dbo;sales|only_sales"},
       }) {
    EXPECT_THAT(Query(batch), ::testing::StartsWith(expected)) << batch;
  }
  const auto columns = [&](const char* batch) {
    std::string owners;
    const Answer answer = Run(batch);
    for (const auto& row : answer.results.at(0).rows) owners += row[1] + " ";
    return owners;
  };
  EXPECT_EQ(columns("exec sp_columns 'item'"), "dbo dbo ");
  EXPECT_EQ(columns("exec sp_columns 'item', 'sales'"), "sales sales sales ");
  EXPECT_EQ(columns("exec sp_columns 'it%', '%'"), "dbo dbo hr dept hr dept sales sales sales ");
  EXPECT_EQ(columns("exec sp_statistics 'item', 'hr dept'"), "hr dept hr dept ");
  const Answer help = Run("exec sp_help 'sales.item'");
  EXPECT_EQ(help.results.at(0).rows.at(0).at(1), "sales");
  EXPECT_THAT(help.results.at(6).Text(), ::testing::HasSubstr("REFERENCES db.dbo.item (id)"));
}

TEST_F(SchemasTest, OutlivesTheServer) {
  Reopen();
  EXPECT_TRUE(engine->MayLogIn("Clerk", "pw"));
  EXPECT_FALSE(engine->MayLogIn("clerk", "PW"));
  EXPECT_EQ(Run(*Clerk(), "select name from item").Rows(), "sales");
  Must("create schema third; create table third.item (id int)");
  EXPECT_EQ(Query("select schema_id from sys.schemas where name = 'third'"), "7");
}

// Folders of earlier versions have no schemas in their catalogs.
TEST_F(SchemasTest, AFolderOfAnEarlierVersionIsCompleted) {
  Run("create database old; use old");
  Must("create table t (a int); insert t values (5)");
  const std::string file = (folder / ("database" + Query("select db_id()") + ".db")).string();
  session.reset();
  engine.reset();
  sqlite3* connection = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
  std::string without = "pragma user_version = 0;";
  for (const char* table : {"cat_schema", "cat_user", "cat_type"})
    without += std::string("drop table ") + table + ";";
  for (const char* column :
       {"cat_table drop column schema", "cat_view drop column schema",
        "cat_column drop column user_type", "cat_column drop column collation",
        "cat_column drop column computed", "cat_column drop column traits",
        "cat_index drop column disabled", "cat_index drop column filter",
        "cat_foreign_key drop column disabled", "cat_foreign_key drop column not_trusted",
        "cat_check drop column disabled", "cat_check drop column not_trusted"}) {
    without += std::string("alter table ") + column + ";";
  }
  EXPECT_EQ(sqlite3_exec(connection, without.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(connection);
  engine = OpenEngine(folder, false);
  session = engine->OpenSession("sa");
  ASSERT_TRUE(session->UseDatabase("old"));
  Must("create schema s; create table s.t (a int)");
  EXPECT_EQ(Query("select a from dbo.t"), "5");
}

}  // namespace
}  // namespace sandbox::testing
