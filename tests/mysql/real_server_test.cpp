// Tables of a real MySQL or MariaDB, and the statements that a scripted SQL Server gets for them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/endpoint/transfer_rig.h"
#include "tests/support/servers.h"

namespace dorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct FromMySql : testing::Test {
  FromMySql() {
    Server().Query("drop database if exists shop; create database shop character set utf8mb4");
    src.SetListener(&events);
    src.SetServer("127.0.0.1");
    src.SetPortNo(Server().Port());
    src.SetUserId("root");
    src.SetPassword(Server().Password());
    src.SetDbName("shop");
    src.SetCopyTableContent(true);
  }
  static test::PrivateMySql& Server() {
    static test::PrivateMySql server;
    return server;
  }
  void Convert(const std::string& setup, const NameList& tables) {
    Server().Query(setup, "shop");
    src.TransferToDest(dst, tables);
    EXPECT_THAT(host.connection_failures, IsEmpty());
  }

  test::ScriptedServer dest;
  test::HostRecorder host;
  test::EventRecorder events;
  MySqlDatabase src{host};
  MsSqlDatabase dst{host, dest.Lookup()};
};

TEST_F(FromMySql, EveryTypeWithItsDefaultAndValue) {
  struct Column {
    const char* definition;  // MySQL's
    const char* value;       // inserted
    const char* expected;    // SQL Server's definition
    const char* literal;
  };
  const Column columns[] = {
      {"int auto_increment primary key", "1", "BigInt NOT NULL Identity", "1"},
      {"tinyint unsigned not null default 7", "255", "Tinyint NOT NULL Default 7", "255"},
      {"smallint", "-5", "int NULL", "-5"},
      {"bigint unsigned", "18446744073709551615", "numeric(20,0) NULL", "18446744073709551615"},
      {"bit(1) not null default b'1'", "b'0'", "bit NOT NULL Default 1", "0"},
      {"bit(12)", "b'101000000001'", "binary(2) NULL", "0x0A01"},
      {"float not null default 0", "0.1", "real NOT NULL Default  0.0", " 0.1"},
      {"double", "0.12345678901234568", "float NULL", " 1.2345678901234568e-01"},
      {"decimal(10,2) not null default 1.50", "-12.30", "numeric(10,2) NOT NULL Default  1.5",
       "-12.30"},
      {"date", "'1700-05-05'", "datetime NULL", "'1753-01-01 00:00:00'"},
      {"time", "'-01:00:00'", "datetime NULL", "'1899-12-29 23:00:00'"},
      {"datetime(6) not null default current_timestamp(6)", "'2020-02-29 23:59:59.999999'",
       "datetime NOT NULL Default getdate()", "'2020-02-29 23:59:59'"},
      {"datetime not null default '2020-01-31 10:20:30'", "'2021-01-01'",
       "datetime NOT NULL Default '2020-01-31 10:20:30'", "'2021-01-01 00:00:00'"},
      {"year", "2020", "int NULL", "2020"},
      {"char(5) character set latin1 not null default 'O\\'B'", "'it''s'",
       "varchar(5) NOT NULL Default 'O''B'", "'it''s'"},
      {"varchar(20) character set utf8mb4 unique", "'\u4E16'", "nvarchar(20) NULL Unique",
       "N'\u4E16'"},
      {"varchar(30) not null default 'now()'", "'caf\u00E9'",
       "nvarchar(30) NOT NULL Default 'now()'", "N'caf\u00E9'"},
      {"varchar(36) not null default (uuid())", "'x'", "nvarchar(36) NOT NULL", "'x'"},
      {"text character set latin1", "'\\\\'", "text NULL", "'\\'"},
      {"longtext", "''", "nvarchar(max) NULL", "''"},
      {"binary(3)", "0x0AFF", "binary(3) NULL", "0x0AFF00"},
      {"varbinary(9)", "''", "varbinary(9) NULL", "0x"},
      {"blob", "0xFF", "image NULL", "0xFF"},
      {"enum('a','bcd') character set latin1", "'bcd'", "varchar(3) NULL", "'bcd'"},
      {"int as (1 + 1) stored", "default", "BigInt NULL", "2"},
  };
  std::string create;
  std::string insert;
  std::string expected;
  std::string literals;
  int number = 0;
  for (const Column& column : columns) {
    const std::string name = fmt::format("c{}", number++);
    const char* comma = number == 1 ? "" : ", ";
    create += fmt::format("{}{} {}", comma, name, column.definition);
    insert += fmt::format("{}{}", comma, column.value);
    expected += fmt::format("{}[{}] {}", comma, name, column.expected);
    literals += fmt::format("{}{}", comma, column.literal);
  }
  Convert("create table t (" + create + "); insert t values (" + insert + ")", {"t"});
  EXPECT_THAT(events.Errors(), IsEmpty());
  ASSERT_THAT(dest.Sent("Create Table"), ElementsAre("Create Table [t](" + expected + ")"));
  const auto sent = dest.Sent("set identity_insert [t] On;INSERT INTO [t] ([c0]");
  ASSERT_EQ(sent.size(), 1u) << "the one row, sent by itself";
  EXPECT_NE(sent[0].find(" VALUES(" + literals + ")"), std::string::npos) << sent[0];
}

TEST_F(FromMySql, KeysAndRelationshipsAsTheServerDescribesThem) {
  src.SetConvertRelationships(true);
  Convert(
      "create table p (a int, b int, primary key (a, b)) engine=InnoDB;"
      "create table c (id int primary key, a int, b int, name varchar(50), txt text,"
      " key `by a` (a, b), unique key name (name), key part (name(10)), fulltext key ft (txt),"
      " constraint `fk, two` foreign key (a, b) references p (a, b) on delete cascade,"
      " constraint self foreign key (a) references c (id) on delete set null on update cascade)"
      " engine=InnoDB",
      {"p", "c"});
  EXPECT_THAT(events.Errors(), IsEmpty());
  EXPECT_THAT(host.notes, ElementsAre("Table c: index ft was not carried: full text"));
  EXPECT_THAT(dest.Sent("alter table"), ElementsAre("alter table [p] add primary key ([a],[b])",
                                                    "alter table [c] add primary key ([id])"));
  EXPECT_THAT(dest.Sent("Create unique"), ElementsAre("Create unique index name on [c](name)"));
  EXPECT_THAT(dest.Sent("Create index"),
              testing::UnorderedElementsAre("Create index [by a] on [c](a,b)",
                                            "Create index [part] on [c](name)"));
  EXPECT_THAT(
      dest.Sent("Alter Table"),
      testing::UnorderedElementsAre(
          "Alter Table [c] add CONSTRAINT [fk, two] Foreign Key ([a], [b]) References [p] ([a], "
          "[b]) On Delete CASCADE On Update No Action",
          "Alter Table [c] add CONSTRAINT [self] Foreign Key ([a]) References [c] ([id]) On Delete "
          "No Action On Update CASCADE"));
}

TEST_F(FromMySql, AServerThatDiesInTheMiddleEndsTheCopyOnce) {
  test::PrivateMySql mortal;
  mortal.Query(
      "create database shop; use shop; create table t (k int, v varchar(2000)); "
      "insert t select seq, repeat('x', 2000) from " +
      test::Sequence(1, 30000) + " s");
  src.SetPortNo(mortal.Port());
  struct Killer : test::EventRecorder {
    test::PrivateMySql* server = nullptr;
    void TableRecordConverted() override {
      test::EventRecorder::TableRecordConverted();
      if (rows == 1500) server->Kill();
    }
  } killer;
  killer.server = &mortal;
  src.SetListener(&killer);
  src.TransferToDest(dst, {"t", "u"});
  ASSERT_GE(killer.Errors().size(), 1u);
  EXPECT_TRUE(killer.Errors()[0].starts_with(
      "error 16 [MS SQL Server] Unexpected error while transfering data of table [t] - "));
  EXPECT_EQ(killer.events.back(), "ended");
}

}  // namespace
}  // namespace dorvane
