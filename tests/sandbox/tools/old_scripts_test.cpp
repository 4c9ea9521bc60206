#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/process.h"
#include "tests/support/servers.h"
#include "tests/support/temp_folder.h"

namespace dorvane::test {

namespace {

using ::testing::HasSubstr;

// Two scripts as they were written for the server's early versions, from dropping the old database
// to upkeep at the end.
constexpr char kLibrary[] = R"(
/* A lending library. */
set nocount on
set dateformat mdy
use master
declare @started varchar(55)
select @started = convert(varchar, getdate(), 113)
raiserror('Beginning at %s ....', 1, 1, @started) with nowait
if exists (select * from sysdatabases where name = 'library')
begin
  raiserror('Dropping existing database ....', 0, 1)
  drop database library
end
checkpoint
go
create database library
go
checkpoint
go
use library
go
if db_name() <> 'library'
  raiserror('The database was not created.', 22, 127) with log
go
exec sp_dboption 'library', 'trunc. log on chkpt.', 'true'
execute sp_addtype cardid, 'varchar(11)', 'NOT NULL'
execute sp_addtype staffid, 'char(9)', 'NOT NULL'
go
raiserror('Now at the tables ....', 0, 1)
go
create table readers
(
  card_id   cardid constraint UPKCL_readers primary key clustered
            check (card_id like '[0-9][0-9][0-9]-[0-9][0-9]'),
  last_name varchar(40) not null,
  phone     char(12) not null default ('UNKNOWN'),
  state     char(2) null,
  contract  bit not null
)
go
create table books
(
  book_id   char(6) constraint UPKCL_books primary key clustered,
  title     varchar(80) not null,
  kind      char(12) not null default ('UNDECIDED'),
  price     money null,
  printed   datetime not null default (getdate()),
  cover     image null
)
go
create table loans
(
  card_id  cardid references readers(card_id),
  book_id  char(6) references books(book_id),
  lent     datetime not null,
  constraint UPKCL_loans primary key clustered (card_id, book_id, lent)
)
create table staff
(
  staff_id staffid constraint PK_staff primary key nonclustered
           constraint CK_staff check (staff_id like '[A-Z][A-Z][A-Z][1-9][0-9][0-9][0-9][0-9][FM]'
             or staff_id like '[A-Z]-[A-Z][1-9][0-9][0-9][0-9][0-9][FM]'),
  level    tinyint default 10 check (level between 10 and 250)
)
go
create clustered index staff_ind on staff (level, staff_id)
create index reader_names on readers (last_name, card_id)
go
create trigger staff_level on staff for insert, update as
declare @level tinyint
select @level = s.level from inserted i, staff s where s.staff_id = i.staff_id
if @level > 200
begin
  raiserror ('Too high.', 16, 1)
  rollback transaction
end
go
alter table books nocheck constraint all
go
insert readers values ('172-32', 'White', '408 496-7223', 'CA', 1)
insert readers (card_id, last_name, contract)
  values ('213-46', 'O''Leary', 0)
insert books values ('BU1032', 'The Busy Shelf', 'trade', $19.99, '6/12/1991', 0x474946)
insert books (book_id, title) values ('MC3026', 'Untitled')
insert loans values ('172-32', 'BU1032', '09/14/1994')
insert staff values ('PMA42628M', 35)
go
create view lent_titles as
select title, last_name, lent from books, loans, readers
where books.book_id = loans.book_id and readers.card_id = loans.card_id
go
create procedure by_state @state char(2) = 'CA' as
select card_id from readers where state = @state
go
update statistics readers
update statistics books
go
grant execute on by_state to public
go
grant create procedure to public
go
if exists (select * from sysobjects where id = object_id('dbo.by_state') and sysstat & 0xf = 4)
  drop procedure dbo.by_state
if exists (select * from sysobjects where id = object_id('dbo.nothing') and sysstat & 0xf = 3)
  drop table dbo.nothing
go
dump transaction library with no_log
go
)";

constexpr char kTraders[] = R"(
set nocount on
go
set quoted_identifier on
go
set dateformat mdy
go
if exists (select * from sysobjects where id = object_id('dbo.Order Lines') and sysstat & 0xf = 3)
  drop table "dbo"."Order Lines"
go
create table "Clerks" (
  "ClerkID" "int" identity (1, 1) not null ,
  "LastName" nvarchar (20) not null ,
  "Born" "datetime" null ,
  "Photo" "image" null ,
  "Notes" "ntext" null ,
  "ReportsTo" "int" null ,
  constraint "PK_Clerks" primary key clustered ( "ClerkID" ),
  constraint "FK_Clerks_Clerks" foreign key ( "ReportsTo" )
    references "dbo"."Clerks" ( "ClerkID" ),
  constraint "CK_Born" check (Born < getdate())
)
go
 create  index "LastName" on "dbo"."Clerks"("LastName")
go
create table "Order Lines" (
  "LineID" "int" not null ,
  "UnitPrice" "money" not null constraint "DF_Lines_Price" default (0),
  "Quantity" "smallint" not null constraint "DF_Lines_Qty" default (1),
  "Discount" "real" not null constraint "DF_Lines_Discount" default (0),
  "Shipped" "bit" not null constraint "DF_Lines_Shipped" default (0),
  constraint "PK_Lines" primary key clustered ( "LineID" ),
  constraint "CK_Discount" check (Discount >= 0 and (Discount <= 1))
)
go
create view "Line Totals" as
select "Order Lines".LineID, sum(convert(money, ("Order Lines".UnitPrice * Quantity * (1 - Discount) / 100)) * 100) as Total
from "Order Lines"
group by "Order Lines".LineID
go
create view "Dear Lines" (Number, "Unit Price") as
select top 5 LineID, UnitPrice from "Order Lines" where UnitPrice > (select avg(UnitPrice) from "Order Lines")
order by UnitPrice desc
go
create procedure "Ten Most Expensive" as
set rowcount 10
select LineID from "Order Lines" order by UnitPrice desc
go
set identity_insert "Clerks" on
go
alter table "Clerks" nocheck constraint all
go
insert "Clerks" ("ClerkID", "LastName", "Born", "Photo", "Notes", "ReportsTo")
values (2, N'Fuller', '02/19/1952', 0x151C2F00020000000D000E0014002100, N'Ph.D.', 7)
insert into "Clerks" ("ClerkID", "LastName") values (7, 'King')
go
set identity_insert "Clerks" off
go
alter table "Clerks" check constraint all
go
insert "Order Lines" values (10248, 14, 12, 0.0, 1)
insert "Order Lines" ("LineID", "UnitPrice") values (10249, 9.8)
go
exec sp_addextendedproperty 'MS_Description', 'A line', 'user', dbo, 'table', 'Order Lines'
exec sp_addrolemember 'db_owner', 'public'
go
)";

/// What a script shows, errors and messages included.
std::string Said(const SandboxServer& server, const std::string& script,
                 const std::string& database) {
  try {
    return server.Script(script, database);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST(OldScripts, LoadWithoutAnError) {
  SandboxServer server({"traders"});
  const auto no_error = ::testing::Not(::testing::ContainsRegex("Level 1[0-9]|error"));
  EXPECT_THAT(Said(server, kLibrary, "master"),
              ::testing::AllOf(HasSubstr("Now at the tables"), no_error));
  EXPECT_THAT(Said(server, kLibrary, "master"),
              ::testing::AllOf(HasSubstr("Dropping existing database"), no_error));
  EXPECT_EQ(server.Script("select title, last_name, lent from lent_titles\ngo\n"
                          "select card_id, phone from readers\ngo\n"
                          "select y.name from sys.columns c join sys.types y on y.user_type_id = "
                          "c.user_type_id where c.object_id = object_id('staff')\ngo\n",
                          "library"),
            "The Busy Shelf\tWhite\tSep 14 1994 12:00:00:000AM\n"
            "172-32\t408 496-7223\n213-46\tUNKNOWN\nstaffid\ntinyint\n");
  EXPECT_EQ(server.Script(kTraders, "traders"), "");
  EXPECT_EQ(server.Script("select \"LineID\", Total from \"Line Totals\" order by 1\ngo\n"
                          "select * from \"Dear Lines\"\ngo\n"
                          "select ClerkID, ReportsTo from Clerks order by 1\ngo\n",
                          "traders"),
            "10248\t168.0000\n10249\t9.8000\n10248\t14.0000\n2\t7\n7\tNULL\n");
}

// A server that lacks what others have, and shows its tables in lower case.
TEST(LackingServer, IsToldAtItsStart) {
  SandboxServer server({"shop"},
                       {"--without", "sp_help", "INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS",
                        "--lower-case-tables"});
  server.Script("create table Album (Id int primary key)\ngo\n", "shop");
  const auto said = [&](const std::string& batch) {
    return Said(server, batch + "\ngo\n", "shop");
  };
  EXPECT_THAT(said("exec sp_help Album"), HasSubstr("Could not find stored procedure 'sp_help'."));
  EXPECT_THAT(said("select * from INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS"),
              HasSubstr("Invalid object name 'INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS'."));
  EXPECT_EQ(said("exec sp_tables @table_type = \"'TABLE'\""), "shop\tdbo\talbum\tTABLE\tNULL\n");
  EXPECT_THAT(said("exec sp_columns Album"), ::testing::StartsWith("shop\tdbo\tAlbum\tId\t"));
  EXPECT_EQ(said("select name from sys.tables"), "Album\n");
}

}  // namespace
}  // namespace dorvane::test
