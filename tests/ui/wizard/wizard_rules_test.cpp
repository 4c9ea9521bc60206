#include <gtest/gtest.h>

#include "job/encryptor.h"
#include "platform/text/code_page.h"
#include "ui/wizard/connection_rules.h"

namespace dorvane {

namespace {

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

}  // namespace
}  // namespace dorvane
