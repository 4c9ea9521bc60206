-- As scripts were written for the first versions of the server.
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
