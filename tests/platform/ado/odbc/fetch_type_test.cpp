#include "platform/ado/odbc/fetch_type.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/ado/errors.h"
#include "platform/ado/odbc/utf16.h"

namespace dorvane::ado::odbc {

namespace {

TEST(Utf16, CarriesEveryCharacterThereAndBack) {
  for (const std::string text : {"", "plain", "café €", "漢字", "\xF0\x9F\x98\x80 end",
                                 "\xF4\x8F\xBF\xBF", "\xEE\x80\x80", "\x01\x7F\xC2\x80"}) {
    EXPECT_EQ(ToUtf8(ToUtf16(text)), text);
  }
  EXPECT_EQ(ToUtf16("\xF0\x9F\x98\x80"), u"\xD83D\xDE00");
}

TEST(Utf16, ReplacesWhatIsNoText) {
  EXPECT_EQ(ToUtf8(u"a\xD83D"), "a\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(u"\xDE00z"), "\xEF\xBF\xBDz");
  EXPECT_EQ(ToUtf8(u"\xD83D\xD83D\xDE00"), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
  EXPECT_EQ(ToUtf16("a\xFFz"), u"a\xFFFDz");
  EXPECT_EQ(ToUtf16("\xE2\x82"), u"\xFFFD\xFFFD");            // cut off
  EXPECT_EQ(ToUtf16("\xC0\xAF"), u"\xFFFD\xFFFD");            // a longer form than needed
  EXPECT_EQ(ToUtf16("\xED\xA0\x80"), u"\xFFFD\xFFFD\xFFFD");  // a surrogate
}

TEST(FetchedTime, ThatIsNoneIsAnError) {
  Arena storage;
  for (const std::string text : {"", "12:3", "ab:cd:ef", "12:30:00.x"}) {
    EXPECT_THROW(ToValue(FetchType::Time, text, storage), ProviderError) << text;
  }
}

}  // namespace
}  // namespace dorvane::ado::odbc
