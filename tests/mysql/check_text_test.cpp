#include "mysql/to_mssql/check_text.h"

#include <gtest/gtest.h>

#include <utility>

namespace dorvane::to_mssql {
namespace {

TEST(CheckTextToMsSql, TextsLoseTheirCharacterSetsAndWhatIsReadOtherwiseIsNothing) {
  for (const auto& [condition, text] : {
           std::pair{"(`price` >= 0)", "(`price` >= 0)"},
           {"`kind` in ('a','it\\'s')", ""},
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

}  // namespace
}  // namespace dorvane::to_mssql
