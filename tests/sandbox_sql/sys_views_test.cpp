#include "tests/sandbox_sql/batch.h"

namespace sandbox::testing {
namespace {

// What each view of sys says of one database that has something of everything.
class SysViewsTest : public BatchTest {
 protected:
  SysViewsTest() {
    Must("create schema sales");
    Must(
        "create table sales.parent (a int not null, b char(2) not null, wide nvarchar(30) null, "
        "constraint pk_parent primary key (a, b), constraint uq unique nonclustered (b desc))");
    Must(
        "create table child (id bigint identity(5,2) not null primary key nonclustered, g "
        "uniqueidentifier rowguidcol not null default newid(), price decimal(10,2) constraint "
        "df_price default 0 constraint ck_price check (price >= 0), pa int, pb char(2), note "
        "varchar(max), made datetime2(3), constraint fk_parent foreign key (pa, pb) references "
        "sales.parent (a, b) on delete cascade on update set null)");
    Must(
        "create unique clustered index ix on child (price desc, id);"
        "create unique index ix_filtered on child (pb) include (price, made) where pb is not null "
        "and pa > 3");
    Must("insert child (price) values (1), (2)");
  }
};

struct View {
  const char* query;
  const char* rows;
};

TEST_F(SysViewsTest, OfColumns) {
  for (const auto& [query, rows] : std::vector<View>{
           {"select c.name, t.name, c.max_length, c.precision, c.scale, c.is_nullable, "
            "c.is_identity, c.is_rowguidcol, c.is_computed + c.is_sparse + c.is_hidden + "
            "c.is_masked, c.generated_always_type from sys.columns c join sys.types t on "
            "t.user_type_id = c.user_type_id where c.object_id = object_id('child') order by "
            "c.column_id",
            "id|bigint|8|19|0|0|1|0|0|0;g|uniqueidentifier|16|0|0|0|0|1|0|0;"
            "price|decimal|9|10|2|1|0|0|0|0;pa|int|4|10|0|1|0|0|0|0;pb|char|2|0|0|1|0|0|0|0;"
            "note|varchar|-1|0|0|1|0|0|0|0;made|datetime2|7|23|3|1|0|0|0|0"},
           {"select name, collation_name from sys.columns where object_id = "
            "object_id('sales.parent')",
            "a|NULL;b|SQL_Latin1_General_CP1_CI_AS;wide|SQL_Latin1_General_CP1_CI_AS"},
           {"select object_name(object_id), name, convert(bigint, seed_value), convert(int, "
            "increment_value), convert(bigint, last_value) from sys.identity_columns",
            "child|id|5|2|7"},
           {"select d.name, c.name, d.definition, d.is_system_named from sys.default_constraints d "
            "join sys.columns c on c.object_id = d.parent_object_id and c.column_id = "
            "d.parent_column_id and c.default_object_id = d.object_id where d.name = 'df_price'",
            "df_price|price|((0))|0"},
           {"select count(*) from sys.default_constraints where is_system_named = 1", "1"},
           {"select name, user_type_id, is_user_defined, schema_name(schema_id) from sys.types "
            "where system_type_id = 231 order by name",
            "nvarchar|231|0|sys;sysname|256|0|sys"},
           {"select count(*) from sys.computed_columns", "0"},
       }) {
    EXPECT_EQ(Query(query), rows) << query;
  }
}

TEST_F(SysViewsTest, OfKeysAndIndexes) {
  for (const auto& [query, rows] : std::vector<View>{
           {"select isnull(name, '-'), index_id, type, type_desc, is_unique, is_primary_key, "
            "is_unique_constraint, is_disabled, is_hypothetical, has_filter, filter_definition "
            "from sys.indexes where object_id = object_id('sales.parent') or name like 'ix%' order "
            "by name",
            "ix|1|1|CLUSTERED|1|0|0|0|0|0|NULL;"
            "ix_filtered|4|2|NONCLUSTERED|1|0|0|0|0|1|([pb] IS NOT NULL AND [pa]>(3));"
            "pk_parent|1|1|CLUSTERED|1|1|0|0|0|0|NULL;uq|3|2|NONCLUSTERED|1|0|1|0|0|0|NULL"},
           {"select i.name, k.index_column_id, col_name(k.object_id, k.column_id), k.key_ordinal, "
            "k.is_descending_key, k.is_included_column from sys.indexes i join sys.index_columns k "
            "on k.object_id = i.object_id and k.index_id = i.index_id where i.name in ('ix', "
            "'ix_filtered', 'uq') order by i.name, k.index_column_id",
            "ix|1|price|1|1|0;ix|2|id|2|0|0;ix_filtered|1|pb|1|0|0;ix_filtered|2|price|0|0|1;"
            "ix_filtered|3|made|0|0|1;uq|1|b|1|1|0"},
           {"select k.name, k.type, k.type_desc, k.unique_index_id, schema_name(k.schema_id), "
            "k.is_system_named from sys.key_constraints k where object_name(parent_object_id) = "
            "'parent' order by 1",
            "pk_parent|PK|PRIMARY_KEY_CONSTRAINT|1|sales|0;uq|UQ|UNIQUE_CONSTRAINT|3|sales|0"},
           {"select name, object_name(parent_object_id), object_schema_name(referenced_object_id), "
            "key_index_id, is_disabled, is_not_trusted, delete_referential_action, "
            "delete_referential_action_desc, update_referential_action, "
            "update_referential_action_desc, is_system_named from sys.foreign_keys",
            "fk_parent|child|sales|1|0|0|1|CASCADE|2|SET_NULL|0"},
           {"select constraint_column_id, col_name(parent_object_id, parent_column_id), "
            "col_name(referenced_object_id, referenced_column_id) from sys.foreign_key_columns",
            "1|pa|a;2|pb|b"},
           {"select name, definition, parent_column_id, is_disabled, is_not_trusted from "
            "sys.check_constraints",
            "ck_price|([price]>=(0))|3|0|0"},
           {"select name, type, temporal_type from sys.tables order by name",
            "child|U |0;parent|U |0"},
           {"select name, default_schema_name from sys.database_principals where principal_id < 3",
            "dbo|dbo;guest|guest"},
           {"select count(*) from sys.extended_properties", "0"},
       }) {
    EXPECT_EQ(Query(query), rows) << query;
  }
}

TEST_F(SysViewsTest, AFilterDecidesWhichRowsAnIndexHas) {
  Must("insert child (pb, pa) values ('x', null), ('x', null)");
  Must(
      "insert sales.parent (a, b) values (1, 'z'), (9, 'y'); insert child (pa, pb) values (1, "
      "'z')");
  Must("insert child (pa, pb) values (1, 'z'), (9, 'y')");
  const Answer refused = Run("insert child (pa, pb) values (9, 'y')");
  EXPECT_EQ(refused.Numbers(), "2601 3621");
  EXPECT_THAT(refused.FirstText(),
              ::testing::HasSubstr("'ix_filtered'. The duplicate key value is (y )"));
  EXPECT_EQ(Run("update child set pb = 'y', pa = 9 where pa = 1").Numbers(), "2601 3621");
  EXPECT_EQ(Run("create unique index ux on child (pa) where pa < 5").Numbers(), "1505 3621");
  Must("create unique index ux on child (pa) where pa > 5");
  EXPECT_EQ(Run("create index bad on child (pa) where nosuch > 5").Numbers(), "207");
  EXPECT_EQ(Run("create index bad on child (pa) where made > getdate()").Numbers(), "10735");
  EXPECT_EQ(Run("create clustered index bad on sales.parent (a) include (b)").Numbers(), "1902");
}

TEST_F(SysViewsTest, TextsAreKeptWithTablesAndColumns) {
  const std::string of_table =
      "sp_addextendedproperty 'MS_Description', N'it''s', 'user', dbo, "
      "'table', 'child'";
  Must(of_table);
  Must(
      "exec sp_addextendedproperty 'MS_Description', 'p', 'schema', 'sales', 'table', 'parent', "
      "'column', 'b'");
  Must(
      "exec sp_updateextendedproperty 'MS_Description', 'q', 'schema', 'sales', 'table', 'parent',"
      " 'column', 'b'");
  EXPECT_EQ(Run(of_table).Numbers(), "15233");
  EXPECT_EQ(Run("sp_addextendedproperty 'n', 'v', 'schema', 'dbo', 'table', 'nowhere'").Numbers(),
            "15135");
  EXPECT_EQ(Query("select object_name(p.major_id), c.name, p.name, convert(nvarchar(9), p.value) "
                  "from sys.extended_properties p left join sys.columns c on c.object_id = "
                  "p.major_id and c.column_id = p.minor_id order by 1"),
            "child|NULL|MS_Description|it's;parent|b|MS_Description|q");
}

TEST_F(SysViewsTest, CheckIdentSetsTheLastValue) {
  Must("dbcc checkident ('child')");
  Must("dbcc checkident ('[dbo].[child]', reseed, 100)");
  Must("insert child (price) values (3)");
  EXPECT_EQ(Query("select max(id) from child"), "102");
  EXPECT_EQ(Run("dbcc checkident ('sales.parent', reseed, 1)").Numbers(), "7997");
}

}  // namespace
}  // namespace sandbox::testing
