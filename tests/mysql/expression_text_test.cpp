#include <gtest/gtest.h>

#include <utility>

#include "mysql/to_mssql/computed_columns.h"
#include "tests/endpoint/transfer_rig.h"

namespace dorvane::to_mssql {

namespace {

ado::Column OfType(std::string name, std::string type, int digits = 0, int scale = 0) {
  ado::Column column = test::MakeColumn(std::move(name), ado::DataType::Integer);
  column.server_type = std::move(type);
  column.precision = digits;
  column.numeric_scale = scale;
  column.defined_size = 20;
  return column;
}

/// "-" for what stays a plain column.
std::string Text(const std::string& type, const std::string& expression, bool is_exact = true) {
  const std::vector<ado::Column> columns = {
      OfType("i", "int(11) unsigned", 10),
      OfType("n", "decimal(10,2)", 10, 2),
      OfType("long", "decimal(50,2)", 50),
      OfType("v", "varchar(20)"),
      OfType("c", "char(20)"),
      OfType("d", "date"),
      OfType("bits", "bit(1)"),
      OfType("a`b", "double"),
  };
  ado::Column column = OfType("x", type, 20, 2);
  column.kind.computed = expression;
  column.kind.is_given = true;
  return ExpressionText(column, columns, is_exact,
                        [](std::string_view name) { return "[" + std::string(name) + "]"; })
      .value_or("-");
}

TEST(ExpressionToSqlServer, KeepsWhatBothServersComputeAlike) {
  EXPECT_EQ(Text("bigint", "`i` + 2 * `i`"), "(convert(bigint, [i]) + (convert(bigint, 2) * [i]))");
  EXPECT_EQ(Text("decimal(20,2)", "(`n` * (1.05 - `i`))"), "([n] * (1.05 - [i]))");
  EXPECT_EQ(Text("double", "`a``b` * `n`"), "([a`b] * [n])");
  // As each of the servers shows its texts.
  EXPECT_EQ(Text("varchar(50)", "concat(`v`,' it''s ',ucase(`v`))"),
            "([v] + N' it''s ' + upper([v]))");
  EXPECT_EQ(Text("varchar(50)", "concat(`v`,_utf8mb4\\' it\\\\\\'s \\',upper(`v`))"),
            "([v] + N' it''s ' + upper([v]))");
  EXPECT_EQ(Text("int", "if((`n` > 5),year(`d`),ifnull(`i`,0))"),
            "(case when ([n] > 5) then year([d]) else coalesce([i], 0) end)");
}

TEST(ExpressionToSqlServer, LeavesWhatMayDiffer) {
  for (const auto& [type, expression] : {
           std::pair{"decimal(20,4)", "`i` / 2"},  // a fraction there
           {"int", "`i` DIV 2"},
           {"int", "`n`"},             // rounded there
           {"tinyint(1)", "`i` > 5"},  // a number there
           {"int", "if(`i`,1,0)"},
           {"int", "`v` + 1"},
           {"varchar(20)", "concat(`v`,`i`)"},
           {"varchar(20)", "concat(`c`,'x')"},
           {"varchar(20)", "`v` || 'x'"},
           {"int", "`v` = 'x'"},
           {"decimal(52,2)", "`long` + 1"},
           {"date", "`d` + interval 1 day"},
           {"int", "`bits` + 0"},
           {"varchar(20)", "json_unquote(`v`)"},
           {"timestamp(6)", "ROW START"},
           {"int", ""},
       }) {
    EXPECT_EQ(Text(type, expression), "-") << expression;
  }
  // Days before 1753 have another year in the classic mapping.
  EXPECT_EQ(Text("int", "year(`d`)", false), "-");
}

}  // namespace
}  // namespace dorvane::to_mssql
