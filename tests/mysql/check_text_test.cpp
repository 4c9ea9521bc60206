#include "mysql/to_mssql/check_text.h"

#include <gtest/gtest.h>

#include <utility>

#include "tests/support/table.h"

namespace dorvane::to_mssql {

namespace {

TEST(CheckTextToMsSql, TextsLoseTheirCharacterSetsAndWhatIsReadOtherwiseIsNothing) {
  for (const auto& cells : test::ReadTable("mysql/checks.txt")) {
    EXPECT_EQ(CheckText(cells.at(0)), cells.at(1) == "-" ? "" : cells[1]) << cells[0];
  }
  EXPECT_EQ(CheckText("`a` || `b` = 'ab'"), "");
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
