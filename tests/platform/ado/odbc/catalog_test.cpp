#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/platform/ado/odbc/server_fixture.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> NamesOf(const std::vector<Column>& columns) {
  std::vector<std::string> names;
  for (const Column& column : columns) names.push_back(column.name);
  return names;
}

template <typename Item>
Item Named(const std::vector<Item>& items, const std::string& name) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const auto& item) { return item.name == name; });
  if (found != items.end()) return *found;
  ADD_FAILURE() << "no " << name;
  return {};
}

TEST_F(ServerTest, TablesAreToldFromOtherObjects) {
  Run("create table [a table] (id int not null)");
  const std::vector<TableInfo> tables = session_->Tables();
  EXPECT_EQ(Named(tables, "a table").type, "TABLE");
  for (const TableInfo& table : tables) {
    EXPECT_FALSE(table.type == "TABLE" && table.name.name.starts_with("sys")) << table.name.Text();
  }
}

TEST_F(ServerTest, NamesInTheCatalogAreExact) {
  Run("create table [a_b] (one int not null)");
  Run("create table [axb] (two int not null)");
  Run("create table [a%] (three int not null)");
  Run("create table [o'[x]]y] (four int not null primary key)");
  Run("create table [größe 😀] (five int not null)");
  EXPECT_THAT(NamesOf(session_->Columns("a_b")), ElementsAre("one"));
  EXPECT_THAT(NamesOf(session_->Columns("axb")), ElementsAre("two"));
  EXPECT_THAT(NamesOf(session_->Columns("a%")), ElementsAre("three"));
  EXPECT_THAT(NamesOf(session_->Columns("o'[x]y")), ElementsAre("four"));
  EXPECT_THAT(NamesOf(session_->Columns("größe 😀")), ElementsAre("five"));
  EXPECT_EQ(session_->Indexes("o'[x]y").size(), 1U);
  EXPECT_EQ(session_->Keys("o'[x]y").size(), 1U);
  EXPECT_THAT(session_->Columns("no such table"), IsEmpty());
  EXPECT_THAT(session_->Indexes("no such table"), IsEmpty());
  EXPECT_THAT(session_->Keys("no such table"), IsEmpty());
}

TEST_F(ServerTest, ColumnsHaveTheirAttributesAndDefaultValues) {
  Run("create table defaults (id int identity(1,1) not null primary key,"
      " n int not null default (0), f float null default (-1.5), b bit not null default 1,"
      " w varchar(20) null default 'O''Brien', nw nvarchar(20) null default N'漢',"
      " d datetime not null default getdate(), g uniqueidentifier null default newid(),"
      " c int null default (1+2), h varbinary(4) null default 0x0A,"
      " [odd name] char(2) null)");
  const std::vector<Column> columns = session_->Columns("defaults");
  EXPECT_THAT(NamesOf(columns),
              ElementsAre("id", "n", "f", "b", "w", "nw", "d", "g", "c", "h", "odd name"));
  const auto default_of = [&](const char* name) {
    return Named(columns, name).default_value.value_or("none");
  };
  EXPECT_EQ(default_of("id"), "none");
  EXPECT_EQ(default_of("n"), "0");
  EXPECT_EQ(default_of("f"), "-1.5");
  EXPECT_EQ(default_of("b"), "1");
  EXPECT_EQ(default_of("w"), "O'Brien");
  EXPECT_EQ(default_of("nw"), "漢");
  EXPECT_EQ(default_of("d"), "getdate()");
  EXPECT_EQ(default_of("g"), "none");
  EXPECT_EQ(default_of("c"), "none");
  EXPECT_EQ(default_of("h"), "0x0A");
  EXPECT_EQ(Named(columns, "id").type, DataType::Integer);
  EXPECT_EQ(Named(columns, "id").attributes, kColumnFixed);
  EXPECT_EQ(Named(columns, "w").attributes, kColumnNullable);
  EXPECT_EQ(Named(columns, "odd name").attributes, kColumnFixed | kColumnNullable);
}

TEST_F(ServerTest, AnIdentifiersDefaultLooksLikeItsValues) {
  Run("create table guids (id int not null, g uniqueidentifier not null "
      "default '6f9619ff-8b86-d011-b42d-00c04fc964ff')");
  EXPECT_EQ(session_->Columns("guids").at(1).default_value,
            "{6F9619FF-8B86-D011-B42D-00C04FC964FF}");
}

TEST_F(ServerTest, IndexesComeWholeWithThePrimaryKeyMarked) {
  Run("create table indexed (a int not null, b int not null, c varchar(10) null, d int null,"
      " constraint pk_indexed primary key (b, a))");
  Run("create unique index ux_c on indexed (c)");
  Run("create index [ix d a] on indexed (d, a)");
  const std::vector<Index> indexes = session_->Indexes("indexed");
  EXPECT_EQ(indexes.size(), 3U);
  const Index key = Named(indexes, "pk_indexed");
  EXPECT_TRUE(key.primary_key);
  EXPECT_TRUE(key.unique);
  EXPECT_THAT(key.columns, ElementsAre("b", "a"));
  const Index unique = Named(indexes, "ux_c");
  EXPECT_FALSE(unique.primary_key);
  EXPECT_TRUE(unique.unique);
  const Index plain = Named(indexes, "ix d a");
  EXPECT_FALSE(plain.unique);
  EXPECT_THAT(plain.columns, ElementsAre("d", "a"));
}

TEST_F(ServerTest, ForeignKeysComeWholeWithTheirRules) {
  Run("create table parent (x int not null, y int not null, primary key (x, y))");
  Run("create table other (id int not null primary key)");
  Run("create table third (id int not null primary key)");
  Run("create table child (id int not null primary key, p int null, q int null, o int null,"
      " s int null default 1,"
      " constraint fk_pair foreign key (p, q) references parent (x, y)"
      "  on delete cascade on update no action,"
      " constraint fk_null foreign key (o) references other (id)"
      "  on delete set null on update cascade,"
      " constraint fk_default foreign key (s) references third (id)"
      "  on delete set default on update no action)");
  const std::vector<Key> keys = session_->Keys("child");
  EXPECT_EQ(keys.size(), 4U);
  EXPECT_EQ(std::count_if(keys.begin(), keys.end(),
                          [](const Key& key) { return key.type == KeyType::Primary; }),
            1);
  const Key pair = Named(keys, "fk_pair");
  EXPECT_EQ(pair.type, KeyType::Foreign);
  EXPECT_EQ(pair.related_table, "parent");
  EXPECT_EQ(pair.delete_rule, RuleType::Cascade);
  EXPECT_EQ(pair.update_rule, RuleType::None);
  ASSERT_EQ(pair.columns.size(), 2U);
  EXPECT_EQ(pair.columns[0].name + "=" + pair.columns[0].related_column, "p=x");
  EXPECT_EQ(pair.columns[1].name + "=" + pair.columns[1].related_column, "q=y");
  const Key null = Named(keys, "fk_null");
  EXPECT_EQ(null.delete_rule, RuleType::SetNull);
  EXPECT_EQ(null.update_rule, RuleType::Cascade);
  EXPECT_EQ(Named(keys, "fk_default").delete_rule, RuleType::SetDefault);
  // The referenced table has no foreign keys of its own.
  EXPECT_EQ(session_->Keys("other").size(), 1U);
}

}  // namespace
}  // namespace dorvane::ado
