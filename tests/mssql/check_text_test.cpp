#include "mssql/to_mysql/check_text.h"

#include <gtest/gtest.h>

#include <utility>

namespace dorvane::to_mysql {

namespace {

TEST(CheckTextToMySql, NamesAreQuotedAndWhatIsReadOtherwiseIsNothing) {
  const auto quoted = [](std::string_view name) { return "`" + std::string(name) + "`"; };
  for (const auto& [condition, text] : {
           std::pair{"([Price]>=(0))", "(`Price`>=(0))"},
           {"([a ]] b]='it''s [x' OR [c] IS NULL)", ""},
           {"([a ]] b]='it''s' OR [c] IS NULL)", "(`a ] b`='it''s' OR `c` IS NULL)"},
           {"([Kind]=N'\u4E16')", "(`Kind`=N'\u4E16')"},
           {"([a]/(2)>(1))", ""},
           {"([a]+[b]='ab')", ""},
           {"([a] like '[0-9]%')", ""},
           {"([a] like 'x\\%')", ""},
           {"([a]<>'/+')", "(`a`<>'/+')"},
       }) {
    EXPECT_EQ(CheckText(condition, quoted), text) << condition;
  }
}

}  // namespace
}  // namespace dorvane::to_mysql
