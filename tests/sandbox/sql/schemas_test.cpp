#include <sqlite3.h>

#include "tests/sandbox/sql/batch.h"

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

TEST_F(SchemasTest, ABareNameIsOfTheLoginsOwnSchemaElseOfDbo) {
  const auto clerk = Clerk();
  for (const auto& [batch, expected] : std::vector<Statement>{
           {"select name from item", "sales"},
           {"select name from dbo.item", "dbo"},
           {"select count(*) from only_dbo", "0"},
           {"select schema_name()", "sales"},
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
  const std::string file =
      (folder /
       ("database" + Query("select database_id from sys.databases where name = db_name()") + ".db"))
          .string();
  session.reset();
  engine.reset();
  sqlite3* connection = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
  std::string without = "pragma user_version = 0;";
  for (const char* table : {"cat_schema", "cat_user", "cat_type", "cat_property"})
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
