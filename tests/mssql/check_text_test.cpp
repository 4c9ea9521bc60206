#include "mssql/to_mysql/check_text.h"

#include <gtest/gtest.h>

#include "tests/support/table.h"

namespace dorvane::to_mysql {

namespace {

TEST(CheckTextToMySql, NamesAreQuotedAndWhatIsReadOtherwiseIsNothing) {
  const auto quoted = [](std::string_view name) { return "`" + std::string(name) + "`"; };
  for (const auto& cells : test::ReadTable("mssql/checks.txt")) {
    EXPECT_EQ(CheckText(cells.at(0), quoted), cells.at(1) == "-" ? "" : cells[1]) << cells[0];
  }
}

}  // namespace
}  // namespace dorvane::to_mysql
