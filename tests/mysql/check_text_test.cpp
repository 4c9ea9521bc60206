#include "mysql/to_mssql/check_text.h"

#include <gtest/gtest.h>

#include <utility>

namespace dorvane::to_mssql {

namespace {

TEST(CheckTextToMsSql, TextsLoseTheirCharacterSetsAndWhatIsReadOtherwiseIsNothing) {
  for (const auto& [condition, text] : {
           std::pair{"(`price` >= 0)", "(`price` >= 0)"},
           {"`kind` in ('a','it\\'s')", "`kind` in (N'a',N'it''s')"},
           {"`kind` = _utf8mb4\\'it\\\\\\'s\\'", "`kind` = N'it''s'"},
           {"`kind` = 'a\\\\b'", ""},
           {"(`kind` in (_utf8mb4\\'a\\',_utf8mb4\\'it\\'\\'s\\'))", "(`kind` in (N'a',N'it''s'))"},
           {"`kind` = 'it''s' or `a/b` = 1", "`kind` = N'it''s' or `a/b` = 1"},
           {"`kind` = _latin1'a'", "`kind` = N'a'"},
           {"`_utf8` = 1", "`_utf8` = 1"},
           {"`a` / 2 > 1", ""},
           {"`a` || `b` = 'ab'", ""},
           {"`a` like '[0-9]%'", ""},
           {"`a` = 'unfinished", ""},
       }) {
    EXPECT_EQ(CheckText(condition), text) << condition;
  }
}

TEST(CheckTextToMsSql, BytesThatTheCatalogShowsAsCharactersAreReadAsTheTextTheyAre) {
  for (const auto& [shown, meant] : {
           std::pair{"`na\u00C3\u00AFve` <> _utf8mb4\\'\u00E4\u00B8\u0096\\'",
                     "`na\u00EFve` <> _utf8mb4\\'\u4E16\\'"},
           {"`k` <> _latin1\\'\u00E4\\'", "`k` <> _latin1\\'\u00E4\\'"},
           {"`k` <> '\u4E16'", "`k` <> '\u4E16'"},
           {"`k` <> '\xFF'", "`k` <> '\xFF'"},
       }) {
    EXPECT_EQ(FromCatalog(shown), meant);
  }
}

}  // namespace
}  // namespace dorvane::to_mssql
