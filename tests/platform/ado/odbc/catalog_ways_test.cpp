// The catalog by the server's own views, and by the driver's functions where it lacks them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/ado/told.h"
#include "tests/support/servers.h"

namespace dorvane::ado {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kScript = R"(
create schema Sales
go
create schema Archive
go
create type Money2 from decimal(12,2)
go
create table Parent(x int not null, y char(2) not null, constraint pk primary key (y, x))
create table Sales.Item(id int identity(10,5) not null primary key, i1 bigint, i2 smallint,
  t tinyint default (200), b bit not null default 1, d decimal(38,10), n numeric(5,0), m money,
  sm smallmoney, r real, f float, sd smalldatetime, dt datetime default getdate(), d2 datetime2,
  d3 datetime2(3), da date, ti time, t0 time(0), o datetimeoffset(2), c char(10) default 'a''b',
  vc varchar(8000), vm varchar(max), nc nchar(400), nv nvarchar(20) default N'x', nm nvarchar(max),
  tx text, nt ntext, im image, bi binary(16), vb varbinary(20) default 0x0A, vx varbinary(max),
  rv rowversion, g uniqueidentifier default newid(), x xml, v sql_variant)
create index ix_c on Sales.Item(c, d desc) include (i1)
create unique index ux on Sales.Item(nv)
create table Sales.Child(id int not null primary key, x int, y char(2), item int default 3,
  up int, constraint fk_pair foreign key (y, x) references Parent(y, x) on delete cascade,
  constraint fk_item foreign key (item) references Sales.Item(id) on delete set null,
  constraint fk_up foreign key (up) references Sales.Child(id))
create table Archive.Item([odd [name]] x] int)
go
)";

/// A practice server with that script and a session on it.
class Way {
 public:
  explicit Way(const std::vector<std::string>& options)
      : server_({"shop"}, options),
        session_((server_.Script(std::string(kScript), "shop"),
                  OdbcProvider().Connect(Settings("sa", "secret")))) {}

  ConnectionSettings Settings(const std::string& user, const std::string& password) const {
    ConnectionSettings settings;
    settings.server = "127.0.0.1";
    settings.port = server_.Port();
    settings.user_id = user;
    settings.password = password;
    settings.database = "shop";
    return settings;
  }
  void Run(const std::string& sql) { session_->Execute(sql); }
  Session& Catalog() { return *session_; }
  std::unique_ptr<Session> LogOn(const std::string& user) const {
    return OdbcProvider().Connect(Settings(user, "Pa55word"));
  }

 private:
  test::SandboxServer server_;
  std::unique_ptr<Session> session_;
};

Way& Views() {
  static Way way({});
  return way;
}
Way& Functions() {
  static Way way({"--without", "sys.columns", "INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS",
                  "--lower-case-tables"});
  return way;
}

std::vector<std::string> TablesOf(Session& session) {
  std::vector<std::string> names;
  for (const TableInfo& table : session.Tables()) {
    if (table.type == "TABLE") names.push_back(table.name.Text());
  }
  return names;
}

TEST(CatalogWays, TellTheSame) {
  for (const TableName& table :
       {TableName("Parent"), TableName("Sales", "Item"), TableName("Sales", "Child"),
        TableName("Archive", "Item"), TableName("Sales", "Parent")}) {
    Session& views = Views().Catalog();
    Session& functions = Functions().Catalog();
    EXPECT_EQ(Told(views.Columns(table)), Told(functions.Columns(table))) << table.Text();
    EXPECT_EQ(Told(views.Indexes(table)), Told(functions.Indexes(table))) << table.Text();
    EXPECT_EQ(Told(views.Keys(table)), Told(functions.Keys(table))) << table.Text();
  }
  EXPECT_THAT(TablesOf(Views().Catalog()),
              ElementsAre("Parent", "Archive.Item", "Sales.Child", "Sales.Item"));
  EXPECT_THAT(TablesOf(Functions().Catalog()),
              ElementsAre("parent", "Archive.item", "Sales.child", "Sales.item"));
  EXPECT_EQ(Functions().Catalog().Columns({"Sales", "item"}).size(), 35U);
}

TEST(CatalogWays, AllTablesAtOnceAreEachTable) {
  Session& session = Views().Catalog();
  const auto all = session.AllTables();
  EXPECT_EQ(all.size(), 4U);
  for (const auto& [name, details] : all) {
    EXPECT_EQ(Told(details.columns), Told(session.Columns(name))) << name.Text();
    EXPECT_EQ(Told(details.indexes), Told(session.Indexes(name))) << name.Text();
    EXPECT_EQ(Told(details.keys), Told(session.Keys(name))) << name.Text();
  }
  EXPECT_THAT(Functions().Catalog().AllTables(), IsEmpty());
}

TEST(CatalogWays, TheDefaultSchemaIsTheLogins) {
  for (Way* way : {&Views(), &Functions()}) {
    way->Run("create login clerk with password = 'Pa55word'");
    way->Run("create user clerk for login clerk with default_schema = Sales");
    const auto clerk = way->LogOn("clerk");
    const bool is_lower = way == &Functions();
    EXPECT_THAT(TablesOf(*clerk), is_lower
                                      ? ElementsAre("child", "item", "Archive.item", "dbo.parent")
                                      : ElementsAre("Child", "Item", "Archive.Item", "dbo.Parent"));
    EXPECT_EQ(clerk->Columns("Item").size(), 35U);
    EXPECT_EQ(clerk->Columns({"dbo", "Parent"}).size(), 2U);
    const std::vector<Key> keys = clerk->Keys("Child");
    ASSERT_EQ(keys.size(), 4U);
    EXPECT_EQ(keys[1].related_table.Text(), "Item");
    EXPECT_EQ(keys[2].related_table.Text(), "dbo.Parent");
  }
}

}  // namespace
}  // namespace dorvane::ado
