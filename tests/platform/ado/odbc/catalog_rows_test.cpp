#include "platform/ado/odbc/catalog_rows.h"

#include <gtest/gtest.h>

namespace dorvane::ado::odbc {

namespace {

/// The schemas of the rows that are the table "t"'s, of rows "schema.table".
std::string SchemasOf(const std::vector<std::pair<std::string, std::string>>& names) {
  std::vector<CatalogRow> rows;
  for (const auto& [schema, table] : names) {
    rows.emplace_back(std::map<std::string, std::string>{{"SCHEMA", schema}, {"TABLE", table}});
  }
  std::string schemas;
  for (const CatalogRow& row : RowsOfTable(std::move(rows), {"TABLE", "SCHEMA"}, "t", "dbo")) {
    schemas += row.Text("SCHEMA") + " ";
  }
  return schemas;
}

TEST(CatalogRows, AreThoseOfOneSchema) {
  EXPECT_EQ(SchemasOf({{"a", "t"}, {"dbo", "t"}, {"dbo", "t"}, {"b", "t"}}), "dbo dbo ");
  EXPECT_EQ(SchemasOf({{"dbo", "T"}, {"b", "t"}, {"a", "t"}, {"b", "t"}}), "b b ");
  EXPECT_EQ(SchemasOf({{"dbo", "other"}}), "");
}

}  // namespace
}  // namespace dorvane::ado::odbc
