// What the catalog of either server tells of tables.
#include "platform/ado/catalog.h"

#include "tests/platform/ado/server_test.h"
#include "tests/platform/ado/told.h"
#include "tests/support/table.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

class CatalogTest : public BothServers {
 protected:
  std::vector<std::string> Named(std::string_view type) {
    std::vector<std::string> names;
    for (const TableInfo& table : connection_.Tables()) {
      if (table.type == type) names.push_back(table.name.Text());
    }
    return names;
  }
};

INSTANTIATE_TEST_SUITE_P(, CatalogTest, kBothServers, NameOfKind);

TEST_P(CatalogTest, ListsTablesAndViewsOfTheSelectedDatabaseOnly) {
  RunAll({"create table b(id int)",
          Either("create table `a ``%_x`(id int)", "create table [a `%_x](id int)"),
          "create view v as select * from b"});
  EXPECT_THAT(Named("TABLE"), UnorderedElementsAre("b", "a `%_x"));
  EXPECT_THAT(Named("VIEW"), testing::Contains("v"));
}

TEST_P(CatalogTest, NamesAreExact) {
  const std::string names[] = {"a_b", "axb", "a%", "o'[x]y\\", "größe 漢"};
  for (const std::string& name : names) {
    const std::string quoted = IsMySql()            ? "`" + name + "`"
                               : name == "o'[x]y\\" ? "[o'[x]]y\\]"
                                                    : "[" + name + "]";
    Run(fmt::format("create table {0}({0} int not null primary key)", quoted));
  }
  Catalog catalog(connection_);
  for (const std::string& name : names) {
    ASSERT_EQ(connection_.Columns(name).size(), 1U) << name;
    EXPECT_EQ(connection_.Columns(name)[0].name, name);
    EXPECT_EQ(connection_.Indexes(name).size(), 1U) << name;
    EXPECT_EQ(connection_.Keys(name).size(), 1U) << name;
    EXPECT_EQ(catalog.TableByName(name).Columns().size(), 1U);
  }
  EXPECT_THAT(connection_.Columns("absent"), IsEmpty());
  EXPECT_THAT(connection_.Indexes("absent"), IsEmpty());
  EXPECT_THAT(connection_.Keys("absent"), IsEmpty());
  EXPECT_EQ(catalog.TableByName("O'[X]Y\\").Name(), "o'[x]y\\") << "alike is enough";
  EXPECT_EQ(FailureOf(connection_, [&] { catalog.TableByName("a"); }).number, kItemNotFound);
}

TEST_P(CatalogTest, AmongNamesThatAreAlikeTheExactOneCounts) {
  if (!IsMySql()) GTEST_SKIP() << "such names are one there";
  RunAll({"create table Case1(a int)", "create table case1(b int, c int)"});
  Catalog catalog(connection_);
  EXPECT_EQ(catalog.TableByName("Case1").Columns().size(), 1U);
  EXPECT_EQ(catalog.TableByName("case1").Columns().size(), 2U);
  EXPECT_EQ(FailureOf(connection_, [&] { catalog.TableByName("CASE1"); }).number, kItemNotFound);
}

TEST_P(CatalogTest, AsksOnceButForWhatMayBeNew) {
  Run("create table asked(id int)");
  Catalog catalog(connection_);
  EXPECT_EQ(catalog.TableByName("asked").Columns().size(), 1U);
  RunAll({"drop table asked", "create table later(id int)"});
  EXPECT_EQ(catalog.TableByName("asked").Columns().size(), 1U);
  EXPECT_EQ(catalog.TableByName("later").Columns().size(), 1U);
}

TEST_P(CatalogTest, IsReadWhileRowsStream) {
  Run("create table t(id int)");
  Recordset stream = connection_.Execute("select seq from " + Numbers(100'000) + " s");
  EXPECT_FALSE(stream.AtEnd());
  Catalog catalog(connection_);
  EXPECT_EQ(catalog.TableByName("t").Columns().size(), 1U);
  EXPECT_FALSE(stream.AtEnd());
}

TEST_P(CatalogTest, ColumnsHaveTheirAttributesAndPlainDefaults) {
  const auto cases =
      test::ReadTable(Either("platform/ado/mysql_columns.txt", "platform/ado/mssql_columns.txt"));
  std::vector<std::string> definitions(cases.size());
  std::ranges::transform(cases, definitions.begin(), [](const auto& cells) { return cells.at(0); });
  Run(fmt::format("create table defaults ({})", fmt::join(definitions, ", ")));
  const std::vector<Column> columns = connection_.Columns("defaults");
  ASSERT_EQ(columns.size(), cases.size());
  for (std::size_t i = 0; i < cases.size(); ++i) {
    std::vector<std::string> attributes;
    if ((columns[i].attributes & kColumnFixed) != 0) attributes.push_back("fixed");
    if ((columns[i].attributes & kColumnNullable) != 0) attributes.push_back("null");
    if (attributes.empty()) attributes.push_back("-");
    EXPECT_EQ(fmt::format("{}", fmt::join(attributes, " ")), cases[i].at(1)) << definitions[i];
    const auto& value = columns[i].default_value;
    EXPECT_EQ(value ? "'" + *value + "'" : "none", cases[i].at(2)) << definitions[i];
  }
}

TEST_P(CatalogTest, IndexesComeWholeWithThePrimaryKeyMarked) {
  RunAll(
      {"create table indexed(a int not null, b int not null, c varchar(10) null, "
       "constraint pk primary key (b, a))",
       "create unique index ux_c on indexed(c)", "create index plain on indexed(a, c)"});
  EXPECT_THAT(
      Told(connection_.Indexes("indexed")),
      UnorderedElementsAre(Either("PRIMARY primary unique (b,a)", "pk primary unique (b,a)"),
                           "ux_c unique (c)", "plain (a,c)"));
}

TEST_P(CatalogTest, KeysComeWholeWithTheirRules) {
  RunAll(
      {"create table parent(x int not null, y int not null, "
       "constraint pk_parent primary key (x, y))",
       "create table other(id int not null, constraint pk_other primary key (id))",
       "create table third(id int not null, constraint pk_third primary key (id))",
       "create table child(id int not null, p int null, q int null, o int null, "
       "s int default 1, constraint pk primary key (id), "
       "constraint fk_pair foreign key (p, q) references parent (x, y) on delete cascade on "
       "update no action, constraint fk_null foreign key (o) references other (id) on delete "
       "set null on update cascade, constraint fk_plain foreign key (s) references third (id))"});
  std::vector<std::string> expected{
      Either("PRIMARY primary (id)", "pk primary (id)"),
      "fk_pair foreign (p=x q=y) to parent, cascade on delete, none on update",
      "fk_null foreign (o=id) to other, set null on delete, cascade on update",
      "fk_plain foreign (s=id) to third, none on delete, none on update"};
  if (IsMySql()) {
    RunAll(
        {"alter table child add b int, add key kb (b), add constraint same foreign key (b) "
         "references third(id)",
         "create unique index same on child(b)"});
    expected.push_back("same foreign (b=id) to third, none on delete, none on update");
    expected.push_back("same unique (b)");
  } else {
    Run("alter table child add d int default 1 constraint fk_default foreign key references "
        "third(id) on delete set default");
    expected.push_back("fk_default foreign (d=id) to third, set default on delete, none on update");
  }
  EXPECT_THAT(Told(connection_.Keys("child")), UnorderedElementsAreArray(expected));
  EXPECT_THAT(Told(connection_.Keys("third")),
              ElementsAre(Either("PRIMARY primary (id)", "pk_third primary (id)")));
}

}  // namespace
}  // namespace dorvane::ado
