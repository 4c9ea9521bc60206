// Servers that lack what SQL Server has.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;

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
  EXPECT_THROW(server.Script("exec sp_help Artist\ngo\n", "music"), std::runtime_error);
  EXPECT_THROW(server.Script("select * from sys.foreign_keys\ngo\n", "music"), std::runtime_error);
  EXPECT_THAT(server.Script("exec sp_tables @table_type = \"'TABLE'\"\ngo\n", "music"),
              HasSubstr("\talbum\t"));
  EXPECT_THAT(server.Script("select name from sys.tables\ngo\n", "music"), HasSubstr("Album"));
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
