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
