#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/text/code_page.h"
#include "platform/text/number_text.h"
#include "platform/text/utf8.h"
#include "tests/support/refusal.h"

namespace dorvane::text {

namespace {

using test::NumberOf;

TEST(CodePage, KeepsEveryByteOnTheWayToUtf8AndBack) {
  std::string every_byte;
  for (int code = 0; code < 256; ++code) every_byte.push_back(static_cast<char>(code));
  EXPECT_EQ(ToAnsi(FromAnsi(every_byte)), every_byte);
  EXPECT_TRUE(FitsAnsi(FromAnsi(every_byte)));
}

TEST(CodePage, KnowsWhatItCannotHold) {
  EXPECT_EQ(ToAnsi("a€ü"), "a\x80\xFC");
  EXPECT_EQ(ToAnsi("Отд 😀!"), "??? ?!");
  EXPECT_FALSE(FitsAnsi("ok 漢"));
  EXPECT_EQ(ToAnsi("\xFF\xC3"), "??");                           // no UTF-8 at all
  EXPECT_EQ(ToAnsi("\xC0\x80\xE0\x81\xBF"), "?????");            // longer forms than needed
  EXPECT_EQ(ToAnsi("\xED\xA0\x80\xF4\x90\x80\x80"), "???????");  // no characters
  EXPECT_FALSE(FitsAnsi("cut \xE2\x82"));
}

TEST(VisibleText, NothingInItSteersALogOrATerminal) {
  EXPECT_EQ(Visible("a\r\nDone!\tb"), "a\\r\\nDone!\\tb");
  EXPECT_EQ(Visible("\x1B[2Jé\x7F\u009B1"), "\\x1B[2Jé\\x7F\\x9B1");
  EXPECT_EQ(Visible(std::string_view("nul\0 \xFF", 6)), "nul\\x00 \xFF");
  EXPECT_EQ(FirstCharacters("añ漢b", 3), "añ漢");
  EXPECT_EQ(FirstCharacters("ab", 80), "ab");
}

TEST(NumberText, NumericIsWhatAPersonWritesAsANumber) {
  for (const char* text : {"0", " -12 ", "+1.5", ".5", "5.", "1e5", "-1.5E-3"}) {
    EXPECT_TRUE(IsNumeric(text)) << text;
  }
  for (const char* text : {"", " ", "-", ".", "1e", "1,5", "0x10", "12a", "1 2", "e5", "--1"}) {
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
}

TEST(NumberText, SixteenBitNumbersFailByKind) {
  EXPECT_EQ(ParseInt16(" 3306 "), 3306);
  EXPECT_EQ(ParseInt16("-32768"), -32768);
  EXPECT_EQ(NumberOf([] { ParseInt16("32768"); }), run_time::kOverflow);
  for (const char* text : {"", "abc", "33x", "1.5", "+-3"}) {
    EXPECT_EQ(NumberOf([&] { ParseInt16(text); }), run_time::kTypeMismatch) << text;
  }
}

TEST(NumberText, BooleansAreWordsInAnyCaseOrNumbers) {
  for (const char* text : {"True", "TRUE", "true", "1", "-1", "0.5", "7"}) {
    EXPECT_TRUE(ParseBoolean(text)) << text;
  }
  for (const char* text : {"False", "fALSE", "0", "0.0", "0e5"}) {
    EXPECT_FALSE(ParseBoolean(text)) << text;
  }
  for (const char* text : {"", "yes", "Truee"}) {
    EXPECT_EQ(NumberOf([&] { ParseBoolean(text); }), run_time::kTypeMismatch) << text;
  }
}

}  // namespace
}  // namespace dorvane::text
