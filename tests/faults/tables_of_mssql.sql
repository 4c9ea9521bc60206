create table First (Id int identity(1,1) not null primary key, Note nvarchar(100) null, Amount
  decimal(12,2) null)
go
create table Big (Id int not null primary key, Note nvarchar(100) null, Amount decimal(12,2) null)
go
create index BigAmount on Big (Amount)
go
create table Loose (Id int null, Note nvarchar(100) null, Amount decimal(12,2) null)
go
create table Last (Id int not null primary key, Note nvarchar(100) null, Amount decimal(12,2) null)
go
create table Digits (d int not null)
go
insert into Digits values (0),(1),(2),(3),(4),(5),(6),(7),(8),(9)
go
insert into Big (Id, Note, Amount) select a.d + 10*b.d + 100*c.d + 1000*e.d + 10000*f.d, N'row ł '
  + replicate(N'x', 10*b.d), a.d * 1.25 + f.d from Digits a cross join Digits b cross join Digits c
  cross join Digits e cross join Digits f where f.d < 4
go
insert into Loose (Id, Note, Amount) select Id, Note, Amount from Big where Id < 3000
go
insert into First (Note, Amount) select Note, Amount from Big where Id < 500
go
insert into Last (Id, Note, Amount) select Id, Note, Amount from Big where Id < 500
go
