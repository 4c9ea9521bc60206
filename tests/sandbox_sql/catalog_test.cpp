#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

using ::testing::ElementsAre;

class CatalogTest : public BatchTest {
 protected:
  CatalogTest() {
    Must(
        "create table parent (a int not null, b char(2) not null, constraint pk_parent primary key "
        "(a, b), constraint uq unique (b))");
    Must(
        "create table [my table] (id bigint identity(5,2) not null primary key nonclustered, name "
        "nvarchar(30) null default (N'x'),"
        " price decimal(10,2) not null constraint df_price default 0, note text, pa int, pb "
        "char(2), made datetime default current_timestamp,"
        " blob varbinary(max), flag bit, [when] datetime2(3), stamp rowversion,"
        " constraint fk_parent foreign key (pa, pb) references parent (a, b) on delete cascade on "
        "update set null, constraint ck check (price >= 0))");
    Must("create unique clustered index ix on [my table] (name, price desc)");
  }
};

TEST_F(CatalogTest, HelpHasItsResultsInOrder) {
  const Answer help = Run("exec sp_help [my table]");
  ASSERT_EQ(help.results.size(), 7u);
  EXPECT_THAT(help.results[0].Names(), ElementsAre("Name", "Owner", "Type", "Created_datetime"));
  EXPECT_EQ(help.results[1].rows[0],
            (std::vector<std::string>{"id", "bigint", "no", "8", "19   ", "0    ", "no", "(n/a)",
                                      "(n/a)", "NULL"}));
  EXPECT_THAT(help.results[2].Names(),
              ElementsAre("Identity", "Seed", "Increment", "Not For Replication"));
  EXPECT_EQ(help.results[2].Text(), "id|5|2|0");
  EXPECT_EQ(help.results[3].Text(), "No rowguidcol column defined.");
  EXPECT_EQ(help.results[4].Text(), "PRIMARY");
  EXPECT_THAT(help.results[5].Names(),
              ElementsAre("index_name", "index_description", "index_keys"));
  EXPECT_EQ(help.results[5].rows[0][2], "name, price(-)");
  EXPECT_EQ(help.results[5].rows[0][1], "clustered, unique located on PRIMARY");
  EXPECT_EQ(help.results[5].rows[1][1], "nonclustered, unique, primary key located on PRIMARY");
  EXPECT_EQ(help.results[6].rows[0][6], "([price]>=(0))");
  Must("create table bare (x int)");
  const Answer bare = Run("sp_help 'bare'");
  ASSERT_EQ(bare.results.size(), 5u)
      << "a table without indexes and constraints has no results for them";
  EXPECT_EQ(bare.results[2].Text(), "No identity column defined.|NULL|NULL|NULL");
  EXPECT_THAT(Run("exec sp_help").results[0].Names(), ElementsAre("Name", "Owner", "Object_type"));
}

TEST_F(CatalogTest, NamesOfWhatARowRefersTo) {
  EXPECT_EQ(Query("select object_name(parent_object_id), object_name(referenced_object_id), "
                  "object_name(object_id) from sys.foreign_keys"),
            "my table|parent|fk_parent");
  EXPECT_EQ(
      Query("select col_name(object_id, column_id), type_name(system_type_id) from sys.columns "
            "where object_id = object_id('parent') order by column_id"),
      "a|int;b|char");
  EXPECT_EQ(
      Query("select schema_name(schema_id), schema_name(schema_id + 90) from sys.schemas where "
            "schema_id in (1, 3, 4) order by schema_id"),
      "dbo|NULL;INFORMATION_SCHEMA|NULL;sys|NULL");
  EXPECT_EQ(Query("select count(*) from sys.columns where object_name(object_id) = 'my table'"),
            "11");
  EXPECT_EQ(Query("select type_name(null), type_name(1), type_name(231)"), "NULL|NULL|nvarchar");
}

TEST_F(CatalogTest, ColumnsAsTheDriversAsk) {
  const Answer columns = Run("exec sp_columns 'my table'");
  const auto& rows = columns.results.at(0).rows;
  ASSERT_EQ(rows.size(), 11u);
  const auto row = [&](std::size_t i) {
    return std::vector<std::string>(rows[i].begin() + 3, rows[i].begin() + 13);
  };
  EXPECT_THAT(row(0), ElementsAre("id", "-5", "bigint identity", "19", "8", "0", "10", "0", "NULL",
                                  "NULL"));
  EXPECT_THAT(row(1), ElementsAre("name", "-9", "nvarchar", "30", "60", "NULL", "NULL", "1", "NULL",
                                  "(N'x')"));
  EXPECT_THAT(row(2),
              ElementsAre("price", "3", "decimal", "10", "12", "2", "10", "0", "NULL", "((0))"));
  EXPECT_THAT(row(3), ElementsAre("note", "-1", "text", "2147483647", "2147483647", "NULL", "NULL",
                                  "1", "NULL", "NULL"));
  EXPECT_THAT(row(6), ElementsAre("made", "11", "datetime", "23", "16", "3", "NULL", "1", "NULL",
                                  "(getdate())"));
  EXPECT_EQ(rows[6][13], "9");
  EXPECT_EQ(rows[10][16], "11");
  const Answer modern = Run("exec sp_columns_100 N'my[ ]table', N'dbo', N'db', N'%', @ODBCVer = 3");
  EXPECT_EQ(modern.results.at(0).rows.at(6)[4], "93");
  EXPECT_EQ(modern.results.at(0).rows.at(9)[4], "93");
  EXPECT_EQ(Run("exec sp_columns 'my_table', @column_name = 'p%'").results.at(0).rows.size(), 3u);
  EXPECT_EQ(Run("exec sp_columns 'my\\_table'").results.at(0).rows.size(), 0u)
      << "an escaped wildcard is itself";
  EXPECT_EQ(Run("exec sp_columns 'nosuch'").results.at(0).rows.size(), 0u);
  EXPECT_EQ(Run("exec sp_columns 'x', @nosuch = 1").Numbers(), "8145");
}

TEST_F(CatalogTest, KeysAndIndexes) {
  EXPECT_EQ(Query("exec sp_pkeys 'parent'"),
            "db|dbo|parent|a|1|pk_parent;db|dbo|parent|b|2|pk_parent");
  EXPECT_EQ(
      Query("exec sp_fkeys @fktable_name = 'my table'"),
      "db|dbo|parent|a|db|dbo|my table|pa|1|2|0|fk_parent|pk_parent|7;db|dbo|parent|b|db|dbo|my "
      "table|pb|2|2|0|fk_parent|pk_parent|7");
  EXPECT_EQ(Query("exec sp_fkeys 'parent'").size(),
            Query("exec sp_fkeys @fktable_name = 'my table'").size());
  const Answer statistics = Run("exec sp_statistics 'my table'");
  const auto& rows = statistics.results.at(0).rows;
  ASSERT_EQ(rows.size(), 4u);
  EXPECT_EQ(rows[0][6], "0") << "the row of the table itself comes first";
  EXPECT_EQ(rows[1][5] + rows[1][6] + rows[1][7] + rows[1][8] + rows[1][9], "ix11nameA");
  EXPECT_EQ(rows[2][8] + rows[2][9], "priceD");
  EXPECT_EQ(rows[3][3] + rows[3][6], "03");
}

TEST_F(CatalogTest, TablesAndDatabases) {
  EXPECT_EQ(Query("exec sp_tables @table_type = \"'TABLE'\""),
            "db|dbo|my table|TABLE|NULL;db|dbo|parent|TABLE|NULL");
  EXPECT_EQ(Query("exec sp_tables 'par%', 'dbo', 'db', \"'TABLE','VIEW'\""),
            "db|dbo|parent|TABLE|NULL");
  EXPECT_EQ(Run("exec sp_tables '', '', '%'").results.at(0).rows.size(), 5u);
  EXPECT_THAT(Query("exec sp_databases"), ::testing::StartsWith("db|"));
  EXPECT_EQ(Run("exec sp_databases").results.at(0).columns.at(0).name, "DATABASE_NAME");
  EXPECT_GE(Run("exec sp_datatype_info").results.at(0).rows.size(), 30u);
  EXPECT_EQ(Run("exec sp_datatype_info 4").results.at(0).rows.size(), 1u);
}

TEST_F(CatalogTest, TheViewsPeopleLookAt) {
  EXPECT_EQ(Query("select COLUMN_NAME, DATA_TYPE, IS_NULLABLE, COLUMN_DEFAULT, "
                  "CHARACTER_MAXIMUM_LENGTH, NUMERIC_PRECISION, NUMERIC_SCALE "
                  "from INFORMATION_SCHEMA.COLUMNS where TABLE_NAME = 'my table' and "
                  "ORDINAL_POSITION < 4 order by ORDINAL_POSITION"),
            "id|bigint|NO|NULL|NULL|19|0;name|nvarchar|YES|(N'x')|30|NULL|NULL;price|decimal|NO|(("
            "0))|NULL|10|2");
  EXPECT_EQ(Query("select CONSTRAINT_NAME, CONSTRAINT_TYPE from "
                  "information_schema.table_constraints where TABLE_NAME = 'parent' order by 1"),
            "pk_parent|PRIMARY KEY;uq|UNIQUE");
  EXPECT_EQ(Query("select UPDATE_RULE, DELETE_RULE, UNIQUE_CONSTRAINT_NAME from "
                  "INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS"),
            "SET NULL|CASCADE|pk_parent");
  EXPECT_EQ(Query("select c.name from sys.columns c where c.object_id = object_id('[my table]') "
                  "and c.is_identity = 1"),
            "id");
  EXPECT_EQ(Query("select t.name, count(*) from sys.tables t join sys.columns c on c.object_id = "
                  "t.object_id group by t.name order by 1"),
            "my table|11;parent|2");
  EXPECT_EQ(Query("select name, type from sys.objects where name in ('ck', 'df_price', "
                  "'fk_parent') order by name"),
            "ck|C ;df_price|D ;fk_parent|F ");
  EXPECT_EQ(Query("select object_name(object_id('parent')), isnull(object_id('nosuch'), 0), "
                  "col_name(object_id('parent'), 2)"),
            "parent|0|b");
}

TEST_F(CatalogTest, ProceduresByCall) {
  std::vector<Parameter> parameters{
      {"@table_name", {SqlType::NVarChar, 128, 0, 0}, Value(std::string("parent")), false}};
  Answer answer;
  session->Call("sp_pkeys", parameters, answer);
  EXPECT_EQ(answer.results.at(0).rows.size(), 2u);
  EXPECT_EQ(answer.status, 0);
  Answer missing;
  session->Call("sp_nosuch", {}, missing);
  EXPECT_EQ(missing.Numbers(), "2812");
}

TEST_F(CatalogTest, DefaultsAndChecksInNormalForm) {
  Must(
      "create table d (a int default -5, b varchar(9) default 'it''s', c int default (1+2*3), e "
      "varchar(9) default null, f float default 1.50,"
      " g uniqueidentifier default newid(), h varbinary(3) default 0xAB, i datetime default "
      "dateadd(day, 1, getdate()),"
      " j varchar(9) default convert(varchar(9), 5), check (a between 1 and 2 or b like 'x%' and "
      "not c in (1, 2)))");
  EXPECT_EQ(Query("select COLUMN_DEFAULT from INFORMATION_SCHEMA.COLUMNS where TABLE_NAME = 'd' "
                  "order by ORDINAL_POSITION"),
            "((-5));('it''s');((1)+((2)*(3)));(NULL);((1.50));(newid());(0xAB);(dateadd([day],(1),"
            "getdate()));(CONVERT([varchar](9),(5)))");
  Must("insert d (a, b) values (1, 'y'), (7, 'xy')");
  EXPECT_EQ(Run("insert d (a, b) values (7, 'y')").Numbers(), "547 3621");
  EXPECT_EQ(Query("select j, c from d where a = 1"), "5|7");
}

}  // namespace
}  // namespace sandbox::testing
