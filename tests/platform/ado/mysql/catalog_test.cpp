#include "platform/ado/catalog.h"

#include "tests/platform/ado/mysql/fixture.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;
using testing::Field;

class MySqlCatalogTest : public MySqlTest {};

TEST_F(MySqlCatalogTest, ListsTablesAndViewsOfTheSelectedDatabaseOnly) {
  Run("create table b(id int)");
  Run("create table `a ``%_x`(id int)");
  Run("create view v as select * from b");
  Catalog catalog(connection_);
  EXPECT_THAT(
      catalog.Tables(),
      testing::UnorderedElementsAre(
          testing::AllOf(Field(&TableInfo::name, "b"), Field(&TableInfo::type, "TABLE")),
          testing::AllOf(Field(&TableInfo::name, "a `%_x"), Field(&TableInfo::type, "TABLE")),
          testing::AllOf(Field(&TableInfo::name, "v"), Field(&TableInfo::type, "VIEW"))));
  EXPECT_THAT(connection_.Columns("v"), ElementsAre(Field(&Column::type, DataType::Integer)));
  EXPECT_TRUE(connection_.Columns("absent").empty());
}

TEST_F(MySqlCatalogTest, NamesAreExactBeforeTheyAreAlike) {
  Run("create table Case1(a int)");
  Run("create table case1(b int, c int)");
  Run("create table `o'\\x`(d int)");
  Catalog catalog(connection_);
  EXPECT_EQ(catalog.TableByName("Case1").Columns().size(), 1U);
  EXPECT_EQ(catalog.TableByName("case1").Columns().size(), 2U);
  EXPECT_EQ(catalog.TableByName("O'\\X").Name(), "o'\\x");
  EXPECT_EQ(catalog.TableByName("o'\\x").Columns().size(), 1U);
  try {
    catalog.TableByName("case");
    ADD_FAILURE() << "found a table that is not there";
  } catch (const RunTimeError& error) {
    EXPECT_EQ(error.Number(), kItemNotFound);
  }
}

TEST_F(MySqlCatalogTest, ColumnsHaveNullabilityAndPlainDefaults) {
  Run("create table d(id int not null auto_increment primary key, n int default -3, "
      "de decimal(5,2) not null default 1.5, t varchar(30) default 'O''Br\\\\ien (it)', "
      "e varchar(3) default '', m datetime default current_timestamp, "
      "x varchar(9) default (concat('a', 'b')), b bit(3) default b'101', nul text, "
      "d date default '2020-01-02', u varchar(9) default 'NULL')");
  const std::vector<Column> columns = connection_.Columns("d");
  std::vector<std::optional<std::string>> defaults;
  std::string nullable;
  for (const Column& column : columns) {
    defaults.push_back(column.default_value);
    nullable += (column.attributes & kColumnNullable) != 0 ? 'Y' : 'N';
  }
  EXPECT_EQ(nullable, "NYNYYYYYYYY");
  const std::optional<std::string> none;
  EXPECT_THAT(defaults, ElementsAre(none, "-3", "1.50", "O'Br\\ien (it)", "", "getdate()", none,
                                    "5", none, "2020-01-02", "NULL"));
}

TEST_F(MySqlCatalogTest, IndexesComeWhole) {
  Run("create table `i x`(a int, b int, `c d` varchar(9), primary key (b, a), "
      "unique key `u k` (`c d`), key plain (a, `c d`))");
  const std::vector<Index> indexes = connection_.Indexes("i x");
  ASSERT_EQ(indexes.size(), 3U);
  EXPECT_EQ(indexes[0].name, "PRIMARY");
  EXPECT_TRUE(indexes[0].primary_key);
  EXPECT_THAT(indexes[0].columns, ElementsAre("b", "a"));
  EXPECT_EQ(indexes[1].name, "u k");
  EXPECT_TRUE(indexes[1].unique);
  EXPECT_FALSE(indexes[1].primary_key);
  EXPECT_THAT(indexes[1].columns, ElementsAre("c d"));
  EXPECT_FALSE(indexes[2].unique);
  EXPECT_THAT(indexes[2].columns, ElementsAre("a", "c d"));
}

TEST_F(MySqlCatalogTest, KeysComeWholeWithTheirRules) {
  Run("create table p(x int, y int, primary key (x, y), unique key uy (y))");
  Run("create table c(id int primary key, b int, a int, o int, key ba (b, a), "
      "constraint same foreign key (b, a) references p(x, y) on delete cascade on update restrict, "
      "constraint other foreign key (o) references p(y) on delete set null on update no action)");
  Run("create unique index same on c(b)");
  const std::vector<Key> keys = connection_.Keys("c");
  ASSERT_EQ(keys.size(), 4U);
  EXPECT_EQ(keys[0].type, KeyType::Primary);
  EXPECT_EQ(keys[1].type, KeyType::Unique);
  EXPECT_EQ(keys[1].name, "same");
  EXPECT_THAT(keys[1].columns, ElementsAre(Field(&KeyColumn::name, "b")));

  const Key& other = keys[2];
  EXPECT_EQ(other.name, "other");
  EXPECT_EQ(other.type, KeyType::Foreign);
  EXPECT_EQ(other.delete_rule, RuleType::SetNull);
  EXPECT_EQ(other.update_rule, RuleType::None);

  const Key& same = keys[3];
  EXPECT_EQ(same.related_table, "p");
  EXPECT_EQ(same.delete_rule, RuleType::Cascade);
  EXPECT_EQ(same.update_rule, RuleType::None);
  ASSERT_EQ(same.columns.size(), 2U);
  EXPECT_EQ(same.columns[0].name + same.columns[1].name, "ba");
  EXPECT_EQ(same.columns[0].related_column + same.columns[1].related_column, "xy");
}

TEST_F(MySqlCatalogTest, IsReadWhileRowsStream) {
  Run("create table t(id int)");
  Recordset stream = connection_.Execute("select seq from " + test::Sequence(1, 100000) + " s");
  EXPECT_FALSE(stream.AtEnd());
  Catalog catalog(connection_);
  EXPECT_EQ(catalog.TableByName("t").Columns().size(), 1U);
  EXPECT_FALSE(stream.AtEnd());
}

}  // namespace
}  // namespace dorvane::ado
