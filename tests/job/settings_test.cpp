#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "job/conversion_settings.h"
#include "job/last_settings.h"
#include "tests/support/plain_endpoint.h"
#include "tests/support/process.h"
#include "tests/support/refusal.h"
#include "tests/support/table.h"
#include "tests/support/temp_folder.h"

namespace dorvane {

namespace {

using test::NumberOf;
using test::PlainEndpoint;
using test::ReadFile;
using test::RefusalOf;
using test::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kSales =
    "1\r\nsqlhost\r\n1433\r\nsa\r\n\xE9\xF0-\xF5\r\nFalse\r\nSales\r\n"
    "localhost\r\n3306\r\nroot\r\n\r\n\r\nsales\r\n"
    "Customers:<:Order Details\r\nFalse\r\nTrue\r\n1\r\nFalse\r\n/var/log/s\xFC.txt\r\n";

ConversionSettings Read(const std::string& bytes) {
  const TempFolder folder;
  std::ofstream(folder / "file.dcs", std::ios::binary) << bytes;
  files::LineReader file(folder / "file.dcs");
  return ReadConversionSettings(
      file, [](ServerKind kind) { return std::make_unique<PlainEndpoint>(kind); });
}

std::string Write(const IDatabase& src, const IDatabase& dest, const NameList& tables,
                  const std::string& log) {
  return ConversionSettingsText(src, dest, tables, log);
}

std::string WithLine(int number, const std::string& line) {
  std::string text = kSales;
  std::size_t start = 0;
  for (int i = 1; i < number; ++i) start = text.find("\r\n", start) + 2;
  return text.replace(start, text.find("\r\n", start) - start, line);
}

TEST(ConversionSettings, ReadsNineteenLinesAndWritesThemBack) {
  EXPECT_EQ(Read(WithLine(3, "65535")).src->PortNo(), 65535) << "the highest";
  const ConversionSettings settings = Read(kSales);
  EXPECT_EQ(settings.src->Kind(), ServerKind::MsSql);
  EXPECT_EQ(settings.src->Password(), "pw-1");
  EXPECT_EQ(settings.dest->PortNo(), 3306);
  EXPECT_THAT(settings.tables, ElementsAre("Customers", "Order Details"));
  EXPECT_TRUE(settings.src->CopyTableContent());
  EXPECT_FALSE(settings.src->ReplaceSpaceWithUnderscore());
  EXPECT_EQ(settings.log_path, "/var/log/sü.txt");
  EXPECT_EQ(Write(*settings.src, *settings.dest, settings.tables, settings.log_path), kSales);
}

TEST(ConversionSettings, TheAuthenticationLineCountsForSqlServerAlone) {
  EXPECT_FALSE(Read(WithLine(6, "")).src->WinNTAuthentication());
  EXPECT_TRUE(Read(WithLine(6, "-1")).src->WinNTAuthentication());
  const ConversionSettings reversed = Read(WithLine(1, "2"));
  EXPECT_EQ(reversed.src->Kind(), ServerKind::MySql);  // its line 6, "False", was passed over
  EXPECT_THAT(Write(*reversed.src, *reversed.dest, {"t"}, "log"), HasSubstr("\r\n\r\nSales\r\n"));
}

TEST(ConversionSettings, SplitsTheTableLineAtEverySeparator) {
  EXPECT_THAT(Read(WithLine(14, "")).tables, ElementsAre());
  EXPECT_THAT(Read(WithLine(14, "a")).tables, ElementsAre("a"));
  EXPECT_THAT(Read(WithLine(14, "a:<::<:b:<:")).tables, ElementsAre("a", "", "b", ""));
}

TEST(ConversionSettings, BadLinesFailByKindAndAreNamed) {
  EXPECT_THROW(Read(WithLine(1, "3")), UnexpectedDirection);
  EXPECT_THROW(Read(WithLine(1, "1 ")), UnexpectedDirection);
  for (const auto& cells : test::ReadTable("job/bad_settings.txt")) {
    const int line = std::stoi(cells.at(0));
    const std::string& text = cells.at(1);
    const std::string bytes =
        line < 20 ? WithLine(line, text) : kSales + std::string(line - 20, '\n') + text;
    const auto [number, message] = RefusalOf([&] { Read(bytes); });
    EXPECT_EQ(number, std::stoi(cells.at(2))) << text;
    EXPECT_THAT(message, HasSubstr(cells.at(3)));
    EXPECT_THAT(message, testing::EndsWith(fmt::format("(line {} of file.dcs{}{})", line,
                                                       text.empty() ? "" : ": ", text)));
  }
  const std::string full = kSales;
  const auto last_line = full.rfind("\r\n", full.size() - 3) + 2;
  EXPECT_EQ(NumberOf([] { Read(""); }), run_time::kInputPastEnd);
  const auto [number, message] = RefusalOf([&] { Read(full.substr(0, last_line)); });
  EXPECT_EQ(number, run_time::kInputPastEnd);
  EXPECT_THAT(message, testing::EndsWith("(line 19 of file.dcs)"));
}

TEST(ConversionSettings, OptionsFollowTheLastLineAndAreWrittenBack) {
  const std::string options =
      "Encryption source=required\r\nEncryption destination=verified\r\n"
      "CA file destination=/etc/ca s\xFC.pem\r\nIdle limit=0\r\nTypes=exact\r\n"
      "Computed columns=generated\r\nSchemas=database\r\nTables at once=4\r\nVerify=values\r\n"
      "Report=/var/r.html\r\nReport=r.json\r\n";
  const ConversionSettings settings = Read(kSales + options);
  const ado::ConnectionSettings src = settings.src->Settings();
  const ado::ConnectionSettings dest = settings.dest->Settings();
  EXPECT_EQ(src.encryption, ado::Encryption::Required);
  EXPECT_EQ(dest.encryption, ado::Encryption::Verified);
  EXPECT_EQ(src.ca_file, "");
  EXPECT_EQ(dest.ca_file, "/etc/ca sü.pem");
  EXPECT_EQ(src.idle_limit, 0);
  EXPECT_EQ(dest.idle_limit, 0);
  EXPECT_EQ(settings.src->Options().types, TypeMapping::Exact);
  EXPECT_EQ(settings.src->Options().computed_columns, ComputedColumns::Generated);
  EXPECT_EQ(settings.src->Options().schemas, SchemaPolicy::Database);
  EXPECT_EQ(settings.src->Options().tables_at_once, 4);
  EXPECT_EQ(settings.src->Options().verification, Verification::Values);
  EXPECT_THAT(settings.src->Options().reports, testing::ElementsAre("/var/r.html", "r.json"));
  EXPECT_EQ(src.password, "pw-1");
  EXPECT_EQ(Write(*settings.src, *settings.dest, settings.tables, settings.log_path),
            kSales + options);
}

TEST(ConversionSettings, OptionsAreReadAsPeopleWriteThem) {
  const ConversionSettings settings =
      Read(kSales + std::string("\r\n encryption SOURCE = Verified \n\nIdle limit=30"));
  EXPECT_EQ(settings.src->Settings().encryption, ado::Encryption::Verified);
  EXPECT_EQ(settings.dest->Settings().encryption, ado::Encryption::Offered);
  EXPECT_EQ(settings.dest->Settings().idle_limit, 30);
}

TEST(ConversionSettings, RefusesWhatTheFileCouldNotGiveBack) {
  PlainEndpoint src(ServerKind::MsSql);
  PlainEndpoint dest(ServerKind::MySql);
  EXPECT_THROW(Write(src, dest, {}, "log"), RunTimeError);
  EXPECT_THROW(Write(src, dest, {"a:<:b"}, "log"), RunTimeError);
  EXPECT_THROW(Write(src, dest, {"a"}, "log\nfile"), RunTimeError);
  dest.SetPassword("pass\nword");
  const auto [number, message] = RefusalOf([&] { Write(src, dest, {"a"}, "log"); });
  EXPECT_NE(number, 0);
  EXPECT_THAT(message, testing::Not(HasSubstr("word\n")));
}

// Every value in turn needs UTF-8, which the mark tells; no other file has it.
TEST(ConversionSettings, NamesOfEveryScriptAreKept) {
  const std::string mark = "\xEF\xBB\xBF";
  const std::string odd = "таблица 漢 é";
  struct Case {
    ado::ConnectionSettings src;
    NameList tables{"a"};
    std::string log{"log"};
  };
  const Case cases[] = {
      {.src = {.server = odd}},          {.src = {.user_id = odd}},
      {.src = {.password = odd}},        {.src = {.password = "pässword ÀÝý 09azAZ"}},
      {.src = {.database = odd}},        {.src = {.ca_file = odd}},
      {.src = {}, .tables = {odd, "b"}}, {.src = {}, .log = odd}};
  for (const auto& [values, tables, log] : cases) {
    PlainEndpoint src(ServerKind::MsSql);
    PlainEndpoint dest(ServerKind::MySql);
    src.SetSettings(values);
    dest.SetPassword("é\x01");
    const std::string text = Write(src, dest, tables, log);
    EXPECT_THAT(text, testing::StartsWith(mark));
    const ConversionSettings read = Read(text);
    EXPECT_EQ(read.form, files::TextForm::Utf8);
    EXPECT_EQ(read.src->Server(), values.server);
    EXPECT_EQ(read.src->UserId(), values.user_id);
    EXPECT_EQ(read.src->Password(), values.password);
    EXPECT_EQ(read.src->DbName(), values.database);
    EXPECT_EQ(read.src->Settings().ca_file, values.ca_file);
    EXPECT_EQ(read.dest->Password(), "é\x01");
    EXPECT_EQ(read.tables, tables);
    EXPECT_EQ(read.log_path, log);
  }
  EXPECT_THAT(Write(PlainEndpoint(ServerKind::MsSql), PlainEndpoint(ServerKind::MySql), {"é"}, "ü"),
              testing::StartsWith("1\r\n"));
}

TEST(LastSettings, AreSavedForTheNextStart) {
  const TempFolder folder;
  PlainEndpoint src(ServerKind::MySql);
  PlainEndpoint dest(ServerKind::MsSql);
  src.SetPortNo(3307);
  src.SetServer("db");
  src.SetUserId("me");
  src.SetPassword("Geheim 1");
  dest.SetWinNTAuthentication(true);
  SaveLastSettings(folder.Path(), src, dest);
  EXPECT_THAT(ReadFile(folder / "config"), HasSubstr("mysql\r\ntrue\r\n3307\r\ndb\r\nme\r\n"));
  struct stat info {};
  stat((folder / "config").c_str(), &info);
  EXPECT_EQ(info.st_mode & 0777, 0600u);

  const LastSettings loaded = LoadLastSettings(folder.Path(), [](auto) { FAIL(); });
  EXPECT_EQ(loaded[LastSettings::kDirection], "mysql");
  EXPECT_NE(loaded[LastSettings::kSrcPassword], "Geheim 1");
  EXPECT_EQ(loaded.PlainPassword(LastSettings::kSrcPassword), "Geheim 1");
}

TEST(LastSettings, WhatTheFileCannotHoldIsLeftOut) {
  const TempFolder folder;
  for (const char* password : {"пароль", "pässword"}) {
    PlainEndpoint src(ServerKind::MySql);
    src.SetServer("сервер");
    src.SetUserId("üser");
    src.SetPassword(password);
    SaveLastSettings(folder.Path(), src, PlainEndpoint(ServerKind::MsSql));
    const LastSettings loaded = LoadLastSettings(folder.Path(), [](auto) { FAIL(); });
    EXPECT_EQ(loaded[LastSettings::kSrcServer], "");
    EXPECT_EQ(loaded[LastSettings::kSrcUser], "üser");
    EXPECT_EQ(loaded.PlainPassword(LastSettings::kSrcPassword), "") << password;
  }
}

TEST(LastSettings, AMissingFileGivesTheDefaultsQuietly) {
  const TempFolder folder;
  const LastSettings loaded = LoadLastSettings(folder.Path(), [](auto) { FAIL(); });
  EXPECT_THAT(loaded.elements, ElementsAre("mssql", "false", "1433", "localhost", "sa", "", "3306",
                                           "localhost", "root", ""));
}

TEST(LastSettings, AShortFileIsToldOnceAndKeepsItsLines) {
  const TempFolder folder;
  std::ofstream(folder / "config", std::ios::binary)
      << "mysql\r\ntrue\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n";
  std::vector<std::string> told;
  const LastSettings loaded =
      LoadLastSettings(folder.Path(), [&](std::string_view text) { told.emplace_back(text); });
  EXPECT_THAT(told, ElementsAre("Unkown error 62 - Input past end of file"));
  EXPECT_EQ(loaded[LastSettings::kDestUser], "7");
  EXPECT_EQ(loaded[LastSettings::kDestPassword], "");
}

}  // namespace
}  // namespace dorvane
