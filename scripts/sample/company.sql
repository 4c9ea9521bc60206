-- A small company's database: every column type, keys and rules of every kind, awkward names and
-- awkward text. Loads with any client that knows "go".

create table Departments (
  DepartmentId int identity(1,1) not null,
  Name nvarchar(60) not null,
  CostCentre char(6) not null constraint DF_Departments_CostCentre default ('CC0000'),
  Budget money null constraint DF_Departments_Budget default ((0)),
  constraint PK_Departments primary key (DepartmentId),
  constraint UQ_Departments_Name unique (Name)
)
go
create table Employees (
  EmployeeId int identity(100,5) not null primary key,
  DepartmentId int null,
  FirstName nvarchar(40) not null,
  LastName nvarchar(40) not null,
  Email varchar(120) null,
  HiredOn datetime not null default (getdate()),
  LeftOn smalldatetime null,
  Salary decimal(10,2) not null default ((1000.50)),
  Bonus smallmoney null,
  Rating real null default ((0)),
  Active bit not null default ((1)),
  Remarks nvarchar(max) null,
  constraint FK_Employees_Departments foreign key (DepartmentId)
    references Departments (DepartmentId) on delete set null on update no action
)
go
create index IX_Employees_Name on Employees (LastName, FirstName)
go
create unique index UX_Employees_Email on Employees (Email)
go
create table Countries (
  Code char(2) not null primary key,
  Name nvarchar(80) not null,
  Greeting nvarchar(200) null default (N'Hello')
)
go
create table Warehouses (
  Country char(2) not null,
  Number smallint not null,
  City nvarchar(60) not null,
  Capacity bigint not null default ((100000)),
  constraint PK_Warehouses primary key (Country, Number),
  constraint FK_Warehouses_Countries foreign key (Country)
    references Countries (Code) on delete no action on update cascade
)
go
create table Products (
  ProductId int not null primary key,
  Title nvarchar(100) not null,
  Price decimal(18,4) not null default ((9.99)),
  Weight float null default ((0)),
  Stock int not null default ((-1)),
  Discontinued bit not null default ((0)),
  Grade tinyint not null default ((3)),
  ReleasedOn datetime not null default ('2001-02-03 04:05:06'),
  Code varchar(20) not null default ('10'),
  Motto varchar(100) null default ('It''s "good" \ cheap'),
  Barcode varbinary(16) null default (0x0AFF),
  Tracking uniqueidentifier not null default (newid()),
  constraint CK_Products_Price check (Price >= 0)
)
go
create index [IX Products by title] on Products (Title)
go
create table Stocks (
  Country char(2) not null,
  Number smallint not null,
  ProductId int not null,
  Quantity int not null default ((0)),
  CountedOn datetime2(7) null,
  constraint PK_Stocks primary key (Country, Number, ProductId),
  constraint FK_Stocks_Warehouses foreign key (Country, Number)
    references Warehouses (Country, Number) on delete cascade on update cascade,
  constraint FK_Stocks_Products foreign key (ProductId)
    references Products (ProductId) on delete cascade on update no action
)
go
create table Shipments (
  ShipmentId bigint identity(1,1) not null primary key,
  Country char(2) null,
  Number smallint null,
  SentOn date not null,
  SentAt time(3) null,
  constraint FK_Shipments_Warehouses foreign key (Country, Number)
    references Warehouses (Country, Number) on delete set null on update set null
)
go
create table Couriers (
  CourierId int not null primary key,
  HomeCountry char(2) null default ('DE'),
  HomeNumber smallint null default ((1)),
  constraint FK_Couriers_Warehouses foreign key (HomeCountry, HomeNumber)
    references Warehouses (Country, Number) on delete set default on update set default
)
go
create table [Order Details] (
  [Order No] int not null,
  [Line No] smallint not null,
  ProductId int not null,
  [Unit Price] money not null default ((0)),
  [Select] nvarchar(30) null,
  constraint [PK Order Details] primary key ([Order No], [Line No]),
  constraint FK_OrderDetails_Products foreign key (ProductId)
    references Products (ProductId) on delete no action on update no action
)
go
create unique index [UX Order Details] on [Order Details] (ProductId, [Order No], [Line No])
go
create table [Every Type] (
  Id int not null primary key,
  ABigInt bigint null,
  AnInt int null,
  ASmallInt smallint null,
  ATinyInt tinyint null,
  ABit bit null,
  ADecimal decimal(38,10) null,
  ANumeric numeric(9,3) null,
  AMoney money null,
  ASmallMoney smallmoney null,
  AFloat float null,
  AReal real null,
  ADateTime datetime null,
  ASmallDateTime smalldatetime null,
  ADateTime2 datetime2(6) null,
  ADate date null,
  ATime time(6) null,
  AChar char(10) null,
  AVarChar varchar(200) null,
  ALongVarChar varchar(8000) null,
  AVarCharMax varchar(max) null,
  AText text null,
  AnNChar nchar(10) null,
  AnNVarChar nvarchar(200) null,
  ALongNVarChar nvarchar(4000) null,
  AnNVarCharMax nvarchar(max) null,
  AnNText ntext null,
  AnXml xml null,
  ABinary binary(8) null,
  AVarBinary varbinary(100) null,
  AVarBinaryMax varbinary(max) null,
  AnImage image null,
  AGuid uniqueidentifier null,
  AVariant sql_variant null,
  ARowVersion rowversion not null
)
go
create table Pictures (
  PictureId int identity(0,1) not null primary key,
  Title nvarchar(80) not null,
  Picture image null
)
go
create table Suggestions (
  SuggestionId int identity(1,1) not null primary key,
  Body nvarchar(500) not null
)
go
create table Readings (
  ReadingId int not null primary key,
  TakenOn datetime not null,
  Sensor varchar(20) not null,
  Reading float not null,
  Note nvarchar(50) null
)
go

insert into Departments (Name, CostCentre, Budget) values
  (N'Purchasing', 'CC0001', 120000.5),
  (N'Größe & Maß', 'CC0002', null),
  (N'Отдел продаж', 'CC0003', -99.9999),
  (N'営業部', 'CC0004', 922337203685477.5807)
go
insert into Employees (DepartmentId, FirstName, LastName, Email, HiredOn, LeftOn, Salary, Bonus, Rating, Active, Remarks)
values
  (1, N'Ada', N'O''Neill', 'ada@example.org', '2010-01-15 08:30:00', null, 5200.75, 12.5, 4.5, 1, N'She said: "back\slash"'),
  (2, N'Jürgen', N'Weiß', 'juergen@example.org', '2012-12-31 23:59:59', '2020-06-30 12:00:00', 4100.00, null, null, 0, null),
  (3, N'Анна', N'Петрова', 'anna@example.org', '2015-05-05 00:00:00', null, 3900.10, 0, -0.25, 1, N'Строка
с переводом строки'),
  (null, N'太郎', N'山田', 'taro@example.org', '1999-09-09 09:09:09', null, 99999999.99, 214748.3647, 3.4e38, 1, N'絵文字 😀 と𝄞'),
  (4, N'Μαρία', N'Παπαδοπούλου', null, '2021-02-28 10:00:00', null, 0.01, -214748.3648, 1.17549435e-38, 1, N'')
go
insert into Countries (Code, Name, Greeting) values
  ('DE', N'Deutschland', N'Guten Tag'), ('GR', N'Ελλάδα', N'Γειά σου'),
  ('JP', N'日本', N'こんにちは'), ('EG', N'مصر', N'مرحبا'), ('IL', N'ישראל', N'שלום')
go
insert into Countries (Code, Name) values ('US', N'United States')
go
insert into Warehouses (Country, Number, City, Capacity) values
  ('DE', 1, N'Köln', 9223372036854775807), ('DE', 2, N'Lübeck', 5000), ('JP', 1, N'大阪', 0)
go
insert into Warehouses (Country, Number, City) values ('US', 1, N'St. Paul')
go
insert into Products (ProductId, Title, Price, Weight, Stock, Discontinued, Grade, ReleasedOn, Code, Motto, Barcode) values
  (1, N'Screw, 4 mm', 0.0199, 0.001, 2147483647, 0, 1, '1753-01-01 00:00:00', 'S-4', null, 0x),
  (2, N'Nail "long"', 99999999999999.9999, 1.7976931348623157e308, -2147483648, 1, 127, '9999-12-31 23:59:59', 'N\L', 'quote '' and " and \', 0x00FF10),
  (3, N'Tab	and line
break', 1, 2.2250738585072014e-308, 0, 0, 0, '2024-02-29 12:34:56', '', '', null)
go
insert into Products (ProductId, Title) values (4, N'All defaults')
go
insert into Stocks (Country, Number, ProductId, Quantity, CountedOn) values
  ('DE', 1, 1, 10, '2024-01-02 03:04:05.1234567'), ('DE', 1, 2, 0, null),
  ('DE', 2, 1, -5, '0001-01-01 00:00:00'), ('JP', 1, 3, 77, '9999-12-31 23:59:59.999999')
go
insert into Shipments (Country, Number, SentOn, SentAt) values
  ('DE', 1, '2024-03-01', '00:00:00'), ('JP', 1, '1000-01-01', '23:59:59.999'),
  (null, null, '9999-12-31', null)
go
insert into Couriers (CourierId, HomeCountry, HomeNumber) values (1, 'DE', 2), (2, null, null)
go
insert into Couriers (CourierId) values (3)
go
insert into [Order Details] ([Order No], [Line No], ProductId, [Unit Price], [Select]) values
  (1, 1, 1, 0.0199, N'first'), (1, 2, 2, 1234.5, null), (2, 1, 4, -1, N'from where')
go
insert into [Every Type] (Id, ABigInt, AnInt, ASmallInt, ATinyInt, ABit, ADecimal, ANumeric, AMoney,
  ASmallMoney, AFloat, AReal, ADateTime, ASmallDateTime, ADateTime2, ADate, ATime, AChar, AVarChar,
  ALongVarChar, AVarCharMax, AText, AnNChar, AnNVarChar, ALongNVarChar, AnNVarCharMax, AnNText,
  AnXml, ABinary, AVarBinary, AVarBinaryMax, AnImage, AGuid, AVariant)
values
  (1, -9223372036854775808, -2147483648, -32768, 0, 0, -1234567890123456789012345678.0123456789,
   -999999.999, -922337203685477.5808, -214748.3648, -1.5e-300, -3.25, '1753-01-01 00:00:00',
   '1900-01-01 00:00:00', '1000-01-01 00:00:00.000001', '1000-01-01', '00:00:00.000001', 'a', 'b',
   'c', 'd', 'e', N'ж', N'я', N'ü', N'漢', N'字', N'<a b="c">d</a>', 0x01, 0x, 0x00, 0x00,
   '00000000-0000-0000-0000-000000000001', convert(sql_variant, 42)),
  (2, 9223372036854775807, 2147483647, 32767, 127, 1, 1234567890123456789012345678.0123456789,
   999999.999, 922337203685477.5807, 214748.3647, 0.1, 16777216, '9999-12-31 23:59:59',
   '2079-06-06 23:59:00', '9999-12-31 23:59:59.999999', '9999-12-31', '23:59:59.999999', '0123456789',
   'it''s', 'back\slash', 'line
break', 'tab	tab', N'0123456789', N'😀', N'€uro', N'Ελλάδα', N'Ωmega', N'<x/>',
   0x0102030405060708, 0xDEADBEEF, 0x0D0A1A00, 0xFF00FF,
   'FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF', convert(sql_variant, N'text in a variant'))
go
insert into [Every Type] (Id) values (3)
go
insert into Pictures (Title, Picture) values
  (N'small', convert(varbinary(max), replicate(convert(varchar(max), '0123456789'), 250))),
  (N'large', convert(varbinary(max), replicate(convert(varchar(max), 'Dorvane '), 655360))),
  (N'none', null)
go

create table Digits (Digit int not null)
go
insert into Digits values (0), (1), (2), (3), (4), (5), (6), (7), (8), (9)
go
insert into Readings (ReadingId, TakenOn, Sensor, Reading, Note)
select n.ReadingId, dateadd(minute, n.ReadingId, '2024-01-01 00:00:00'),
       'sensor ' + convert(varchar(10), n.ReadingId % 17), n.ReadingId / 8.0,
       case when n.ReadingId % 10 = 0 then null else N'Messung № ' + convert(nvarchar(10), n.ReadingId) end
from (select a.Digit + 10 * b.Digit + 100 * c.Digit + 1000 * d.Digit + 10000 * e.Digit + 1 as ReadingId
      from Digits a cross join Digits b cross join Digits c cross join Digits d cross join Digits e
      where e.Digit < 2) n
go
drop table Digits
go
