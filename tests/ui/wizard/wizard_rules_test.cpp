#include <gtest/gtest.h>

#include "job/encryptor.h"
#include "platform/text/code_page.h"
#include "tests/ui/wizard/scripted_endpoint.h"
#include "ui/wizard/connection_rules.h"
#include "ui/wizard/tables_page.h"
#include "ui/wizard/wizard_steps.h"

namespace dorvane {

namespace {

constexpr auto kMsSql = ServerKind::MsSql;
constexpr auto kMySql = ServerKind::MySql;

TEST(Steps, LeadAlongTheDirectionAndBack) {
  const std::vector<std::int16_t> paths[] = {{0, 1, 2, 5, 6}, {0, 3, 4, 5, 6}};
  for (const auto& path : paths) {
    const ServerKind source = path[1] == 1 ? kMsSql : kMySql;
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
      EXPECT_EQ(NextPage(source, path[i]), path[i + 1]);
      EXPECT_EQ(PreviousPage(source, path[i + 1]), path[i]);
    }
  }
}

TEST(Steps, AnyOtherCombinationLeadsToTheFirstPage) {
  EXPECT_EQ(NextPage(kMsSql, 3), 0);
  EXPECT_EQ(NextPage(kMySql, 2), 0);
  EXPECT_EQ(PreviousPage(kMsSql, 4), 0);
  EXPECT_EQ(NextPage(kMsSql, 6), 0);
  EXPECT_EQ(PreviousPage(kMsSql, 0), 0);
  EXPECT_EQ(NextPage(kMsSql, 77), 0);
  EXPECT_EQ(PreviousPage(kMySql, page::kPreview), page::kTransfer);
}

TEST(Steps, HelpAndCaptionsFollowStepAndDirection) {
  EXPECT_EQ(HelpContext(0, kMySql), 0);
  EXPECT_EQ(HelpContext(3, kMsSql), 3);
  EXPECT_EQ(HelpContext(3, kMySql), 7);
  EXPECT_EQ(HelpContext(4, kMySql), 8);
  EXPECT_EQ(WindowCaption(0, kMySql), "Dorvane");
  EXPECT_EQ(WindowCaption(1, kMySql), "Convert from MySQL to MS SQL");
  EXPECT_EQ(WindowCaption(2, kMySql), std::nullopt);
  EXPECT_EQ(StepOfPage(8), std::nullopt);
  EXPECT_EQ(StepOfPage(-1), std::nullopt);
}

// As the lines of "config" are held: in UTF-8.
std::string Scrambled(std::string_view plain) {
  return text::FromAnsi(Encryptor().Encrypt(plain));
}

LastSettings LastRun(std::string direction) {
  LastSettings last;
  last.elements = {std::move(direction), "true", "1500",     "srchost",  "srcuser",
                   Scrambled("src pw"),  "3400", "desthost", "destuser", Scrambled("dest pw")};
  return last;
}

TypedSettings PresetOf(std::int16_t page, const LastSettings& last) {
  TypedSettings typed;
  PresetFields(TraitsOf(page), last, typed);
  return typed;
}

void ExpectFields(const TypedSettings& typed, const char* host, const char* user,
                  const char* password, const char* port) {
  EXPECT_EQ(typed.settings.server, host);
  EXPECT_EQ(typed.settings.user_id, user);
  EXPECT_EQ(typed.settings.password, password);
  EXPECT_EQ(typed.port, port);
}

TEST(Presets, ComeFromARunOfTheSameDirectionElseFromDefaults) {
  const LastSettings from_ms_sql = LastRun("mssql"), from_my_sql = LastRun("mysql");
  ExpectFields(PresetOf(1, from_ms_sql), "srchost", "srcuser", "src pw", "1500");
  ExpectFields(PresetOf(1, from_my_sql), "localhost", "sa", "", "1433");
  ExpectFields(PresetOf(2, from_ms_sql), "desthost", "destuser", "dest pw", "3400");
  ExpectFields(PresetOf(2, from_my_sql), "localhost", "root", "", "3306");
  ExpectFields(PresetOf(3, from_my_sql), "srchost", "srcuser", "src pw", "1500");
  ExpectFields(PresetOf(3, from_ms_sql), "localhost", "root", "", "3306");
  ExpectFields(PresetOf(4, from_my_sql), "desthost", "destuser", "dest pw", "3400");
  ExpectFields(PresetOf(4, from_ms_sql), "localhost", "sa", "", "1433");
}

TEST(Presets, LeaveAnyTextAlone) {
  TypedSettings typed{.settings = {.server = "mine", .user_id = " ", .password = "x"}};
  PresetFields(TraitsOf(1), LastRun("mssql"), typed);
  ExpectFields(typed, "mine", " ", "x", "1500");
}

TEST(FieldCheck, PortMustBeDigitsWithBlanksAround) {
  TypedSettings typed{.settings = {.server = "h", .user_id = "u"}};
  for (const char* bad : {"", "   ", "abc", "14 33", "-1", "+1", "1.5", "0x10", "1e3"}) {
    typed.port = bad;
    const auto refusal = CheckFields(TraitsOf(2), typed, std::nullopt);
    ASSERT_TRUE(refusal) << bad;
    EXPECT_STREQ(refusal->message, "Please enter a valid port number");
    EXPECT_EQ(refusal->style, 64);
    EXPECT_EQ(refusal->field, FieldRefusal::kPort);
  }
  for (const char* good : {"0", " 1433 ", "65535", "99999"}) {
    typed.port = good;
    EXPECT_FALSE(CheckFields(TraitsOf(2), typed, std::nullopt)) << good;
  }
}

TEST(FieldCheck, UserIsNeededByPageAndLogin) {
  const auto refused = [&](std::int16_t page, bool windows_login) {
    const TypedSettings typed{
        {.server = "h", .user_id = "  ", .integrated_security = windows_login}, "1"};
    return CheckFields(TraitsOf(page), typed, std::nullopt).has_value();
  };
  EXPECT_TRUE(refused(1, false));
  EXPECT_FALSE(refused(1, true));
  EXPECT_FALSE(refused(2, false));
  EXPECT_TRUE(refused(3, false));
  EXPECT_TRUE(refused(4, false));
  EXPECT_FALSE(refused(4, true));
}

TEST(ApplyFields, CopiesUntrimmedAndRefusesPortsThatNoServerHas) {
  test::Script script;
  test::ScriptedEndpoint my_sql(kMySql, script), ms_sql(kMsSql, script);
  my_sql.SetDbName("kept");
  ApplyFields({{.server = " h ", .user_id = " u ", .password = " p "}, " 3306 "}, my_sql);
  EXPECT_EQ(my_sql.Server(), " h ");
  EXPECT_EQ(my_sql.UserId(), " u ");
  EXPECT_EQ(my_sql.Password(), " p ");
  EXPECT_EQ(my_sql.PortNo(), 3306);
  EXPECT_EQ(my_sql.DbName(), "kept");
  ApplyFields({{.server = "h", .integrated_security = true}, "65535"}, ms_sql);
  EXPECT_TRUE(ms_sql.WinNTAuthentication());
  EXPECT_EQ(ms_sql.PortNo(), 65535);
  for (const char* port : {"65536", "99999999"}) {
    try {
      ApplyFields({{.server = "h"}, port}, ms_sql);
      ADD_FAILURE() << port;
    } catch (const RunTimeError& error) {
      EXPECT_EQ(error.Number(), run_time::kOverflow);
    }
  }
}

TEST(FailureText, IsThePagesOwn) {
  EXPECT_EQ(FailureText(TraitsOf(1), 6, "Overflow"), "Can not connect to server: Overflow");
  EXPECT_EQ(FailureText(TraitsOf(2), 6, "Overflow"),
            "Error number 6 - Can not connect to the server Overflow");
  EXPECT_EQ(FailureText(TraitsOf(3), 6, "Overflow"), "Can not connect to server: Overflow");
  EXPECT_EQ(FailureText(TraitsOf(4), 6, "Overflow"), "Unkown Error number 6 - Overflow");
}

TEST(TableLists, MovingOneKeepsThePlaceAndSelectsTheMovedOne) {
  TableLists lists{{{"a", "b", "c", "d", "e"}, 2}, {{"x"}, -1}};
  MoveToSelected(lists);
  EXPECT_EQ(lists.available, (TableList{{"a", "b", "d", "e"}, 2}));
  EXPECT_EQ(lists.selected, (TableList{{"x", "c"}, 1}));
  lists.available.current = 3;
  MoveToSelected(lists);
  EXPECT_EQ(lists.available, (TableList{{"a", "b", "d"}, 2})) << "the last one moved";
}

TEST(TableLists, MovingWithNothingSelectedMovesNothing) {
  TableLists lists{{{"a", "b"}, -1}, {{"x", "y"}, -1}};
  MoveToSelected(lists);
  EXPECT_EQ(lists.available, (TableList{{"a", "b"}, -1}));
  MoveBack(lists);
  EXPECT_EQ(lists.selected, (TableList{{"x", "y"}, 1})) << "the last entry becomes current";
  EXPECT_EQ(lists.available.names.size(), 2u);
}

TEST(TableLists, MovingBackAppendsAndMovingTheLastLeavesNone) {
  TableLists lists{{{"a"}, 0}, {{"x", "y", "z"}, 0}};
  MoveBack(lists);
  EXPECT_EQ(lists.available, (TableList{{"a", "x"}, 1}));
  EXPECT_EQ(lists.selected, (TableList{{"y", "z"}, 1}));
  MoveBack(lists);
  MoveBack(lists);
  EXPECT_EQ(lists.selected, (TableList{{}, -1}));
  EXPECT_EQ(lists.available, (TableList{{"a", "x", "z", "y"}, 3}));
}

TEST(TableLists, MovingAllKeepsTheirOrderBehindTheSelected) {
  TableLists lists{{{"a", "b"}, 0}, {{"x"}, 0}};
  MoveAllToSelected(lists);
  EXPECT_EQ(lists.available, TableList{});
  EXPECT_EQ(lists.selected, (TableList{{"x", "a", "b"}, 2}));
}

}  // namespace
}  // namespace dorvane
