#include "platform/ado/odbc/default_expression.h"

#include <gtest/gtest.h>

#include "tests/support/table.h"

namespace dorvane::ado::odbc {

namespace {

TEST(DefaultExpression, IsReportedAsItsValue) {
  for (const auto& cells : test::ReadTable("platform/ado/odbc/default_expressions.txt")) {
    EXPECT_EQ(DefaultValue(cells.at(0)).value_or("none"), cells.at(1)) << cells[0];
  }
  EXPECT_EQ(DefaultValue("(' padded ')"), " padded ");
  EXPECT_EQ(DefaultValue(""), std::nullopt);
}

}  // namespace
}  // namespace dorvane::ado::odbc
