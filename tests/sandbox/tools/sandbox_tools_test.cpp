#include <fmt/format.h>
#include <gmock/gmock.h>

#include <fstream>
#include <memory>

#include "tests/support/process.h"
#include "tests/support/servers.h"
#include "tests/support/temp_folder.h"

namespace dorvane::test {

namespace {

using ::testing::HasSubstr;

constexpr char kTables[] = R"(
create table Everything (
  Id int identity(10,5) not null primary key,
  Bi bit null, Ti tinyint null, Si smallint null, Bg bigint null,
  De decimal(9,3) null, Nu numeric(38,0) null, Sm smallmoney null, Mo money null,
  Re real null, Fl float null, Sd smalldatetime null, Dt datetime null, D2 datetime2(3) null,
  Dx datetimeoffset(3) null, Da date null, Tm time(3) null,
  Ch char(5) null, Vc varchar(20) null, Vm varchar(max) null, Tx text null,
  Nc nchar(3) null, Nv nvarchar(20) null, Nm nvarchar(max) null, Nt ntext null, Xm xml null,
  Bn binary(4) null, Vb varbinary(8) null, Wm varbinary(max) null, Im image null,
  Gu uniqueidentifier null, Ts timestamp, Va sql_variant null)
GO
insert into Everything (Bi, Ti, Si, Bg, De, Nu, Sm, Mo, Re, Fl, Sd, Dt, D2, Dx, Da, Tm,
  Ch, Vc, Vm, Tx, Nc, Nv, Nm, Nt, Xm, Bn, Vb, Wm, Im, Gu, Va) values
 (1, 255, -32768, 9223372036854775807, 123456.789, 12345678901234567890123456789012345678,
  -1.5, 922337203685477.5807, 1.5, 0.1, '2026-02-28 12:34', '2026-02-28T12:34:56.997',
  '2026-02-28 12:34:56.123', '2026-02-28 12:34:56.123 +05:30', '2026-02-28', '12:34:56.789',
  'ab', 'it''s', 'long', 'text', N'日本', N'Zürich 🙂', N'ж', N'ntext', N'<a/>',
  0x0102, 0xff, 0xdead, 0xbeef, '6F9619FF-8B86-D011-B42D-00C04FC964FF', N'v'),
 (0, null, null, null, null, null, null, null, null, null, null, null, null, null, null, null,
  null, '', null, null, null, null, null, null, null, null, null, null, null, null, null)
go
create table Orders (
  Number int not null constraint PK_Orders primary key,
  Ref int null references Everything(Id) on delete cascade,
  Code varchar(8) not null constraint UQ_Code unique,
  Qty int not null constraint DF_Qty default (1) check (Qty > 0))
go

-- one row, then several
insert Orders (Number, Ref, Code) values (1, 10, 'a')
insert Orders (Number, Ref, Code, Qty) values (2, 15, 'b', 7), (3, null, 'c;d', 9)
go
create table Others (Id int identity primary key, Line varchar(3) null)
create index IX_Line on Others (Line desc)
Go
)";

/// Sessions of the usual tools with one practice server that has loaded the script above.
class SandboxTools : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = std::make_unique<SandboxServer>(std::vector<std::string>{"shop"});
    loaded_ = server_->Script(kTables, "shop");
  }
  static void TearDownTestSuite() { server_.reset(); }

  SandboxTools() {
    std::ofstream(folder_ / "freetds.conf") << fmt::format(
        "[tds7.4]\nhost = 127.0.0.1\nport = {}\ntds version = 7.4\nclient charset = UTF-8\n",
        server_->Port());
  }

  /// What a tool shows for a script on its standard input.
  std::string Session(const std::string& command, const std::string& script) {
    std::ofstream(folder_ / "script.sql") << script;
    return Shell(command + " < '" + (folder_ / "script.sql").string() + "'");
  }
  std::string Tsql(const std::string& script) {
    return Session("tsql -o fhq -S tds7.4 -U sa -P secret -D shop 2>&1", script);
  }
  std::string Copy(const std::string& table, const std::string& direction,
                   const std::string& file) {
    return Shell("freebcp shop.dbo." + table + " " + direction + " '" + (folder_ / file).string() +
                 "' -c -t '|' -S tds7.4 -U sa -P secret");
  }
  std::string Shell(const std::string& command) {
    return test::Run({"sh", "-c", command}, std::chrono::minutes(1),
                     {{"FREETDSCONF", (folder_ / "freetds.conf").string()}, {"LC_ALL", "C.UTF-8"}})
        .output;
  }

  static std::unique_ptr<SandboxServer> server_;
  static std::string loaded_;
  TempFolder folder_;
};

std::unique_ptr<SandboxServer> SandboxTools::server_;
std::string SandboxTools::loaded_;

TEST_F(SandboxTools, BsqldbShowsWhatWasLoaded) {
  // The tool itself knows no sql_variant, no uniqueidentifier and no type of date but datetime, and
  // has room for 21 digits.
  EXPECT_EQ(
      Session(
          "bsqldb -q -t '|' -S tds7.4 -U sa -P secret -D shop",
          "select Id, Bi, Ti, Si, Bg, De, convert(varchar(38), Nu), Sm, Mo, Re, Fl\n"
          "from Everything\ngo\n"
          "select convert(varchar(40), D2), convert(varchar(40), Dx), convert(varchar(40), Da),\n"
          "  convert(varchar(40), Tm), Ch, Vc, Tx, Nc, Nv, Nt, Xm, Bn, Vb, Wm, Im, Ts,\n"
          "  convert(varchar(36), Gu), convert(varchar(9), Va)\n"
          "from Everything where Id = 10\ngo\n"),
      "10|1|255|-32768|9223372036854775807|123456.789|"
      "12345678901234567890123456789012345678|-1.5000|922337203685477.5807|1.5|"
      "0.10000000000000001\n"
      "15|0|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL\n"
      "2026-02-28 12:34:56.123|2026-02-28 12:34:56.123 +05:30|2026-02-28|12:34:56.789|"
      "ab|it's|text|日本|Zürich 🙂|ntext|<a/>|0x01020000|0xff|0xdead|0xbeef|"
      "0x00000000000007d1|6F9619FF-8B86-D011-B42D-00C04FC964FF|v\n");
  EXPECT_EQ(loaded_, "") << "the script loads without a word";
}

TEST_F(SandboxTools, ErrorsAreShownAsTheServerWordsThem) {
  const std::string shown = Tsql(
      "select 1\ninsert Orders values 1\ngo\n"
      "\ninsert Orders (Number, Code, Ref) values (9, 'z', 99)\ngo\n"
      "drop table nothing\ngo\n");
  EXPECT_THAT(shown, HasSubstr("Msg 102 (severity 15, state 1) from SANDBOX Line 2:\n"
                               "\t\"Incorrect syntax near '1'.\""));
  EXPECT_THAT(shown,
              HasSubstr("Msg 547 (severity 16, state 0) from SANDBOX Line 2:\n"
                        "\t\"The INSERT statement conflicted with the FOREIGN KEY constraint "
                        "\"FK__Orders__"));
  EXPECT_THAT(shown, HasSubstr("Msg 3701 (severity 11, state 5) from SANDBOX Line 1:\n"
                               "\t\"Cannot drop the table 'nothing', because it does not exist or "
                               "you do not have permission.\""));
  EXPECT_EQ(Tsql("select count(*) from Orders\ngo\n"), "3\n");
}

TEST_F(SandboxTools, FreebcpCopiesATableOutAndIn) {
  // The tool itself copies no sql_variant and no xml.
  const std::string columns = R"((Id int not null primary key,
    Bi bit null, Ti tinyint null, Si smallint null, Bg bigint null,
    De decimal(9,3) null, Nu numeric(38,0) null, Sm smallmoney null, Mo money null,
    Re real null, Fl float null, Sd smalldatetime null, Dt datetime null, D2 datetime2(3) null,
    Dx datetimeoffset(3) null, Da date null, Tm time(3) null,
    Ch char(5) null, Vc varchar(20) null, Vm varchar(max) null, Tx text null,
    Nc nchar(3) null, Nv nvarchar(20) null, Nm nvarchar(max) null, Nt ntext null,
    Bn binary(4) null, Vb varbinary(8) null, Wm varbinary(max) null, Im image null,
    Gu uniqueidentifier null)
go
)";
  const std::string names =
      "Id, Bi, Ti, Si, Bg, De, Nu, Sm, Mo, Re, Fl, Sd, Dt, D2, Dx, Da, Tm, Ch, Vc, Vm, Tx, Nc, Nv, "
      "Nm, Nt, Bn, Vb, Wm, Im, Gu";
  server_->Script("create table Original " + columns + "create table Copied " + columns +
                      "insert Original (" + names + ") select " + names + " from Everything\ngo\n",
                  "shop");
  EXPECT_THAT(Copy("Original", "out", "out.txt"), HasSubstr("2 rows copied."));
  EXPECT_THAT(Copy("Copied", "in", "out.txt"), HasSubstr("2 rows copied."));
  const std::string original = Tsql("select * from Original\ngo\n");
  EXPECT_THAT(original, HasSubstr("Zürich 🙂\tж\tntext\t01020000"));
  EXPECT_EQ(Tsql("select * from Copied\ngo\n"), original);
  EXPECT_THAT(Copy("Copied", "out", "again.txt"), HasSubstr("2 rows copied."));
  EXPECT_EQ(ReadFile(folder_ / "again.txt"), ReadFile(folder_ / "out.txt"));

  EXPECT_THAT(Copy("Copied", "in", "out.txt"),
              HasSubstr("Violation of PRIMARY KEY constraint 'PK__Copied__"));
  EXPECT_EQ(Tsql("select count(*) from Copied\ngo\n"), "2\n");
}

TEST_F(SandboxTools, ALoginWorksInItsOwnSchema) {
  server_->Script(
      "create schema sales\ngo\ncreate login clerk with password = 'pw'\n"
      "create user clerk for login clerk with default_schema = sales\ngo\n"
      "create table sales.Orders (Number int not null, Code varchar(8) null)\ngo\n",
      "shop");
  std::ofstream(folder_ / "orders.txt") << "7|seven\n8|\n";
  const std::string load = " in '" + (folder_ / "orders.txt").string() + "' -c -t '|' -S tds7.4";
  EXPECT_THAT(Shell("freebcp '[shop].[sales].[Orders]'" + load + " -U sa -P secret"),
              HasSubstr("2 rows copied."));
  EXPECT_THAT(Shell("freebcp Orders" + load + " -U clerk -P pw -D shop"),
              HasSubstr("2 rows copied."));
  const std::string clerk = "tsql -o fhq -S tds7.4 -U clerk -D shop 2>&1 -P ";
  EXPECT_EQ(Session(clerk + "pw", "select count(*), max(Number) from Orders\ngo\n"), "4\t8\n");
  EXPECT_THAT(Session(clerk + "wrong", "select 1\ngo\n"), HasSubstr("Login failed"));
}

TEST_F(SandboxTools, WhatWasStoredOutlivesAKilledServer) {
  const std::string everything =
      "select * from Everything\nselect * from Orders\n"
      "select name from sys.indexes where name like 'IX%'\ngo\n";
  const std::string before = Tsql(everything);
  EXPECT_THAT(before, HasSubstr("IX_Line"));
  // What is not committed goes with the session.
  Tsql("begin transaction\ndelete Orders\ngo\n");
  server_->Restart();
  EXPECT_EQ(Tsql(everything), before);
  EXPECT_THAT(Tsql("insert Orders (Number, Code) values (1, 'z')\ngo\n"), HasSubstr("Msg 2627"));
  EXPECT_EQ(Tsql("insert Others (Line) values ('x')\nselect * from Others\ngo\n"), "1\tx\n");
}

}  // namespace
}  // namespace dorvane::test
