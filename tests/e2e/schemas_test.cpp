// Databases whose tables stand in several schemas, and servers that lack what SQL Server has.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ado/connection.h"
#include "tests/e2e/rig.h"
#include "tests/support/compare.h"

namespace dorvane::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::string_view kTables = R"(
create schema Sales
go
create schema HR
go
create schema Archive
go
create schema [Old Stock]
go
create table dbo.Region(id int not null primary key, name nvarchar(30))
create table Sales.Customer(id int not null primary key, region int, name nvarchar(30),
  constraint fk_owner foreign key (region) references dbo.Region(id))
create table HR.Employee(id int not null primary key, boss int, region int,
  constraint fk_boss foreign key (boss) references HR.Employee(id),
  constraint fk_owner foreign key (region) references dbo.Region(id))
create table HR.Customer(id int not null primary key, secret varchar(20))
create table Sales.[Order](id int identity(100, 1) not null primary key, customer int, clerk int,
  constraint fk_customer foreign key (customer) references Sales.Customer(id) on delete cascade,
  constraint fk_clerk foreign key (clerk) references HR.Employee(id))
create table Archive.Entry(id int not null primary key, order_id int,
  constraint fk_order foreign key (order_id) references Sales.[Order](id))
create table [Old Stock].Item(id int not null primary key, price decimal(9,2))
go
insert dbo.Region values (1, N'Nord'), (2, N'Süd')
insert Sales.Customer values (1, 2, N'Ärger & Söhne'), (2, 1, N'漢')
insert HR.Employee values (1, null, 1), (2, 1, 2)
insert HR.Customer values (1, 'nobody''s')
insert Sales.[Order](customer, clerk) values (1, 1), (2, 2), (2, null)
insert Archive.Entry values (7, 100), (8, 102)
insert [Old Stock].Item values (1, 0.5)
go
)";

const NameList kListed = {"Customer",    "Order",       "Archive.Entry", "dbo.Region",
                          "HR.Customer", "HR.Employee", "Old Stock.Item"};
const NameList kForeign = {"Archive", "dbo", "HR", "Old Stock"};

class Schemas : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    Rig& rig = Rig::Get();
    database_ = rig.NewMsSqlDatabase();
    rig.MsSql().Script(std::string(kTables), database_);
    rig.MsSql().Script(
        "create login clerk with password = 'secret'\ngo\n"
        "create user clerk for login clerk with default_schema = Sales\ngo\n",
        database_);
  }
  ~Schemas() override {
    for (const std::string& name : kForeign) {
      Rig::Get().MySql().Query("set foreign_key_checks = 0; drop database if exists `" + name + "`",
                               "mysql");
    }
  }

  /// As the clerk, whose default schema is Sales.
  static Job There(const std::string& dest_db, SchemaPolicy schemas, NameList tables = kListed) {
    return {.source_db = database_,
            .dest_db = dest_db,
            .tables = std::move(tables),
            .relationships = true,
            .schemas = schemas,
            .ms_sql_user = "clerk"};
  }
  static Job Back(const std::string& source_db, const std::string& dest_db, NameList tables,
                  const std::string& schema = "") {
    return {.source = ServerKind::MySql,
            .source_db = source_db,
            .dest_db = dest_db,
            .tables = std::move(tables),
            .dest_schema = schema};
  }
  static void Succeed(const Job& job) {
    ProgramRun run(job);
    EXPECT_EQ(run.Wait(), 0) << run.Log();
  }
  static std::string ReferencesOf(const std::string& database) {
    return Rig::Get().MySqlValue(
        "select count(*) from information_schema.referential_constraints where "
        "unique_constraint_schema in ('" +
            database + "', 'dbo', 'HR')",
        database);
  }
  /// Every table but those left out, cell by cell.
  static void ExpectEqual(const std::string& last_db, const NameInLast& name_in_last) {
    const Rig& rig = Rig::Get();
    ado::Connection first(ado::OdbcProvider());
    ado::Connection last(ado::OdbcProvider());
    first.Open(rig.MsSqlSettings(database_));
    last.Open(rig.MsSqlSettings(last_db));
    const Comparison result = CompareDatabases(first, last, WayBack::Classic, name_in_last);
    EXPECT_THAT(result.faults, IsEmpty());
    EXPECT_EQ(result.tables.size(), kListed.size());
  }

  static std::string database_;
};

std::string Schemas::database_;

TEST_F(Schemas, BecomePrefixesAndComeBack) {
  const std::string there = Rig::Get().NewDatabases();
  Succeed(There(there, SchemaPolicy::Prefix));
  EXPECT_EQ(ReferencesOf(there), "6");
  EXPECT_THAT(Rig::Get().MySqlValue("show create table `Order`", there),
              HasSubstr("AUTO_INCREMENT=103 "));
  Succeed(Back(there, there,
               {"Customer", "Order", "Archive_Entry", "dbo_Region", "HR_Customer", "HR_Employee",
                "Old Stock_Item"}));
  ExpectEqual(there, [](const ado::TableName& name) -> ado::TableName {
    if (name.schema == "Sales") return name.name;
    return (name.IsBare() ? "dbo" : name.schema) + "_" + name.name;
  });
}

TEST_F(Schemas, AreDroppedWhereNoTwoTablesHaveOneName) {
  const std::string both = Rig::Get().NewDatabases();
  ProgramRun run(There(both, SchemaPolicy::Drop));
  EXPECT_EQ(run.Wait(), 1);
  EXPECT_THAT(run.Log(), HasSubstr("Table Customer was not converted"));
  EXPECT_THAT(run.Log(), HasSubstr("Table HR.Customer was not converted"));
  EXPECT_EQ(Rig::Get().MySqlValue("select group_concat(table_name order by binary table_name) from "
                                  "information_schema.tables where table_schema = database()",
                                  both),
            "Employee,Entry,Item,Order,Region");

  const std::string there = Rig::Get().NewDatabases();
  NameList tables = kListed;
  std::erase(tables, "HR.Customer");
  Succeed(There(there, SchemaPolicy::Drop, tables));
  EXPECT_EQ(ReferencesOf(there), "6");
  Succeed(Back(there, there, {"Customer", "Order", "Entry", "Region", "Employee", "Item"}));
  Succeed(There(there, SchemaPolicy::Prefix, {"HR.Customer"}));
  Succeed(Back(there, there, {"HR_Customer"}));
  ExpectEqual(there, [](const ado::TableName& name) -> ado::TableName {
    return name.Text() == "HR.Customer" ? "HR_Customer" : name.name;
  });
}

TEST_F(Schemas, BecomeDatabasesAndSchemasAgain) {
  const std::string there = Rig::Get().NewDatabases();
  // The second run drops what the first one made, keys between databases included.
  Job job = There(there, SchemaPolicy::Database);
  Succeed(job);
  job.tables_at_once = 3;
  Succeed(job);
  EXPECT_EQ(ReferencesOf(there), "6");
  Succeed(Back(there, there, {"Customer", "Order"}, "Sales"));
  Succeed(Back("Archive", there, {"Entry"}, "Archive"));
  Succeed(Back("dbo", there, {"Region"}, "dbo"));
  Job back = Back("HR", there, {"Customer", "Employee"}, "HR");
  back.relationships = true;
  Succeed(back);
  Succeed(back);
  Succeed(Back("Old Stock", there, {"Item"}, "Old Stock"));
  ExpectEqual(there, [](const ado::TableName& name) { return name; });
  EXPECT_EQ(
      Rig::Get().MsSqlValue("select schema_name(schema_id) + '.' + name from sys.foreign_keys "
                            "order by name",
                            there),
      "HR.fk_boss\nHR.fk_owner");
}

TEST(OtherServers, LackProceduresAndViewsAndSpellTablesInLowerCase) {
  const SandboxServer server({"music"},
                             {"--without", "sp_help", "INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS",
                              "sys.foreign_keys", "--lower-case-tables"});
  server.Script(
      "create table Artist(ArtistId int identity not null, Name nvarchar(50), "
      "constraint PK_Artist primary key (ArtistId))\ngo\n"
      "create table Album(AlbumId int not null primary key, ArtistId int, Title nvarchar(50), "
      "constraint FK_Artist foreign key (ArtistId) references Artist(ArtistId) on delete cascade)"
      "\ngo\ncreate unique index IX_Title on Album(Title)\ngo\n"
      "insert Artist(Name) values (N'Björk'), (N'二')\ngo\n"
      "insert Album values (1, 1, N'Debut'), (2, 2, N'zwei')\ngo\n",
      "music");
  const std::string there = Rig::Get().NewDatabases();
  ProgramRun run({.source_db = "music",
                  .dest_db = there,
                  .tables = {"album", "artist"},
                  .relationships = true,
                  .ms_sql_port = server.Port()});
  EXPECT_EQ(run.Wait(), 0) << run.Log();
  const std::string album = Rig::Get().MySqlValue("show create table album", there);
  EXPECT_THAT(album, HasSubstr("UNIQUE KEY `IX_Title` (`Title`)"));
  EXPECT_THAT(album, HasSubstr("REFERENCES `artist` (`ArtistId`) ON DELETE CASCADE"));
  EXPECT_THAT(Rig::Get().MySqlValue("show create table artist", there),
              HasSubstr(" NOT NULL AUTO_INCREMENT"));
  EXPECT_EQ(Rig::Get().MySqlValue("select count(*) from album join artist using (ArtistId)", there),
            "2");
}

}  // namespace
}  // namespace dorvane::test
