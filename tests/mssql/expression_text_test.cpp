#include <gtest/gtest.h>

#include "mssql/to_mysql/computed_columns.h"
#include "tests/endpoint/transfer_rig.h"
#include "tests/support/table.h"

namespace dorvane::to_mysql {

namespace {

/// "-" for what stays a plain column.
std::string Text(const std::string& type, const std::string& definition, bool is_exact = true) {
  const std::vector<ado::Column> columns = {
      test::ColumnOf("i", "int"),
      test::ColumnOf("tiny", "tinyint"),
      test::ColumnOf("n", "numeric", 10, 2),
      test::ColumnOf("m", "money"),
      test::ColumnOf("wide", "decimal", 30, 10),
      test::ColumnOf("f", "float"),
      test::ColumnOf("r", "real"),
      test::ColumnOf("a ] b", "nvarchar"),
      test::ColumnOf("c", "nchar"),
      test::ColumnOf("d", "datetime2"),
      test::ColumnOf("other", "datetimeoffset"),
  };
  ado::Column column = test::ColumnOf("x", type, 38, 4);
  column.kind.computed = definition;
  return ExpressionText(column, columns, is_exact,
                        [](std::string_view name) { return "`" + std::string(name) + "`"; })
      .value_or("-");
}

TEST(ExpressionToMySql, IsWhatBothServersComputeAlike) {
  for (const auto& cells : test::ReadTable("mssql/expressions.txt")) {
    EXPECT_EQ(Text(cells.at(0), cells.at(1)), cells.at(2)) << cells[1];
  }
  EXPECT_EQ(Text("int", "([tiny]-[i])", false), "(`tiny` - `i`)");
  EXPECT_EQ(Text("int", ""), "-");
  EXPECT_EQ(Text("int", std::string(5000, '(') + "1" + std::string(5000, ')')), "-");
}

}  // namespace
}  // namespace dorvane::to_mysql
