#include <gtest/gtest.h>

#include <utility>

#include "mssql/to_mysql/computed_columns.h"
#include "tests/endpoint/transfer_rig.h"

namespace dorvane::to_mysql {

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
std::string Text(const std::string& type, const std::string& definition, bool is_exact = true) {
  const std::vector<ado::Column> columns = {
      OfType("i", "int"),       OfType("tiny", "tinyint"),         OfType("n", "numeric", 10, 2),
      OfType("m", "money"),     OfType("wide", "decimal", 30, 10), OfType("f", "float"),
      OfType("r", "real"),      OfType("a ] b", "nvarchar"),       OfType("c", "nchar"),
      OfType("d", "datetime2"), OfType("other", "datetimeoffset"),
  };
  ado::Column column = OfType("x", type, 38, 4);
  column.kind.computed = definition;
  return ExpressionText(column, columns, is_exact,
                        [](std::string_view name) { return "`" + std::string(name) + "`"; })
      .value_or("-");
}

TEST(ExpressionToMySql, KeepsWhatBothServersComputeAlike) {
  EXPECT_EQ(Text("int", "([i]+(2)*-(3))"), "(`i` + (2 * (-3)))");
  EXPECT_EQ(Text("decimal", "([n]*((1.05)-[i]))"), "(`n` * (1.05 - `i`))");
  EXPECT_EQ(Text("int", "([tiny]-[i])"), "(cast(`tiny` as signed) - `i`)");
  EXPECT_EQ(Text("int", "([tiny]-[i])", false), "(`tiny` - `i`)");
  EXPECT_EQ(Text("nvarchar", "(([a ]] b]+N', it''s ')+upper([a ]] b]))"),
            "concat(concat(`a ] b`, ', it''s '), upper(`a ] b`))");
  EXPECT_EQ(Text("int", "(datepart(year,[d])*(100)+datepart(month,[d]))"),
            "((cast(year(`d`) as signed) * 100) + cast(month(`d`) as signed))");
  EXPECT_EQ(Text("money", "(isnull([m]*[i],(0.00)))"), "coalesce((`m` * `i`), 0.00)");
  EXPECT_EQ(Text("varchar",
                 "(case when [n]>=(5) AND NOT [other] IS NULL then 'a' else left([a ]] "
                 "b],(3)) end)"),
            "(case when ((`n` >= 5) and (not (`other` is null))) then 'a' else left(`a ] b`, 3) "
            "end)");
}

TEST(ExpressionToMySql, LeavesWhatMayDiffer) {
  for (const auto& [type, definition] : {
           std::pair{"int", "([i]/(2))"},  // whole numbers there
           {"int", "([i]%[i])"},           // of zero
           {"datetime2", "([d]+(1))"},     // a day there
           {"int", "([d]-[d])"},
           {"nvarchar", "([a ]] b]+[i])"},  // a number there
           {"nvarchar", "([c]+'x')"},       // blanks at its end
           {"nvarchar", "([a ]] b]+'x\\y')"},
           {"money", "([m]*[m])"},          // rounded there
           {"decimal", "([wide]*[wide])"},  // of more than 38 digits
           {"float", "([r]*(2))"},
           {"int", "(case when [a ]] b]='x' then (1) else (0) end)"},  // by a collation
           {"nvarchar", "(isnull([a ]] b],N'longer than its twenty'))"},
           {"int", "(isnull([i],(0.5)))"},
           {"datetime2", "(getdate())"},
           {"int", "([dbo].[f]([i]))"},
           {"int", "(CONVERT([int],[n]))"},
           {"int", "([x]+(1))"},
           {"int", "(1e)"},
           {"int", "([i]+(1)"},
           {"int", ""},
       }) {
    EXPECT_EQ(Text(type, definition), "-") << definition;
  }
  EXPECT_EQ(Text("int", std::string(5000, '(') + "1" + std::string(5000, ')')), "-");
}

}  // namespace
}  // namespace dorvane::to_mysql
