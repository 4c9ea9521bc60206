create table First (Id int not null auto_increment primary key, Note varchar(100), Amount
  decimal(12,2));
create table Big (Id int not null primary key, Note varchar(100), Amount decimal(12,2), key
  BigAmount (Amount));
create table Loose (Id int, Note varchar(100), Amount decimal(12,2));
create table Last (Id int not null primary key, Note varchar(100), Amount decimal(12,2));
insert into Big with recursive n(i) as (select 0 union all select i + 1 from n where i < 39999)
  select i, concat('row ł ', repeat('x', i % 91)), (i % 97) * 1.25 from n;
insert into Loose select * from Big where Id < 3000;
insert into First (Note, Amount) select Note, Amount from Big where Id < 500;
insert into Last select * from Big where Id < 500;
