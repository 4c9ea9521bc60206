#include <gtest/gtest.h>

#include "mysql/to_mssql/computed_columns.h"
#include "tests/endpoint/transfer_rig.h"
#include "tests/support/table.h"

namespace dorvane::to_mssql {

namespace {

/// "-" for what stays a plain column.
std::string Text(const std::string& type, const std::string& expression, bool is_exact = true) {
  const std::vector<ado::Column> columns = {
      test::ColumnOf("i", "int(11) unsigned", 10),
      test::ColumnOf("n", "decimal(10,2)", 10, 2),
      test::ColumnOf("long", "decimal(50,2)", 50),
      test::ColumnOf("v", "varchar(20)"),
      test::ColumnOf("c", "char(20)"),
      test::ColumnOf("d", "date"),
      test::ColumnOf("bits", "bit(1)"),
      test::ColumnOf("a`b", "double"),
  };
  ado::Column column = test::ColumnOf("x", type, 20, 2);
  column.kind.computed = expression;
  column.kind.is_given = true;
  return ExpressionText(column, columns, is_exact,
                        [](std::string_view name) { return "[" + std::string(name) + "]"; })
      .value_or("-");
}

TEST(ExpressionToSqlServer, IsWhatBothServersComputeAlike) {
  for (const auto& cells : test::ReadTable("mysql/expressions.txt")) {
    EXPECT_EQ(Text(cells.at(0), cells.at(1)), cells.at(2)) << cells[1];
  }
  EXPECT_EQ(Text("varchar(20)", "`v` || 'x'"), "-");
  EXPECT_EQ(Text("int", ""), "-");
  // Days before 1753 have another year in the classic mapping.
  EXPECT_EQ(Text("int", "year(`d`)", false), "-");
}

}  // namespace
}  // namespace dorvane::to_mssql
